#pragma once

#include "document/ContainerEdits.h"

#include <QWidget>
#include <map>

class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;

namespace ka::studio {

class IdSelection;
class Session;

/// What there is to know of the clips, blocks and markers that are selected, and of the node that is picked; what
/// can be changed is changed for all of the selected ones.
class Properties : public QWidget {
    Q_OBJECT

  public:
    /// What a field shows.
    enum class Field { Name, Begin, End, CustomBegin, CustomEnd };

    Properties(Session& session, IdSelection& bars, QWidget* parent = nullptr);

    void showNode(unsigned int node); ///< 0 for none.
    QLineEdit& field(Field field) { return *_fields.at(field); }
    QCheckBox& flag(ObjectFlag flag) { return *_flags.at(flag); }
    QLabel& nodeText() { return *_node; }

  signals:
    void refused(const QString& why);

  private:
    void addField(Field field, const QString& label, const QString& tip);
    void addFlag(ObjectFlag flag, const QString& label, const QString& tip);
    void refresh();
    void refreshLinks();
    void refreshNode();
    void apply(Field field);
    bool change(kaUID id, Field field, const QString& text);
    std::vector<kaAnimationObject*> selected() const;

    Session& _session;
    IdSelection& _bars;
    unsigned int _shownNode = 0;
    QFormLayout* _form;
    QLabel *_what, *_node;
    QListWidget* _links;
    std::map<Field, QLineEdit*> _fields;
    std::map<ObjectFlag, QCheckBox*> _flags;
};

} // namespace ka::studio
