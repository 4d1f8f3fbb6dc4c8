#pragma once

#include "document/KeyEdits.h"
#include "timebased/IdSelection.h"

#include <QWidget>
#include <map>

class QComboBox;
class QLabel;
class QLineEdit;

namespace ka::studio {

/// The numbers of the selected keys, to be typed: frame, value, handles, tangent type and length mode. A
/// field whose keys differ is empty; what is typed goes to all of them, a sum ("+=5") to each from its own
/// number.
class KeyFields : public QWidget {
    Q_OBJECT

  public:
    KeyFields(Document& document, IdSelection& selection, QWidget* parent = nullptr);

    QLineEdit& field(KeyNumber number) { return *_fields.at(number); }
    QComboBox& tangentType() { return *_type; }
    QComboBox& lengthMode() { return *_length; }

  signals:
    void refused(const QString& why);

  private:
    void addField(KeyNumber number, const QString& label, const QString& tip);
    void refresh();
    void apply(KeyNumber number);

    Document& _document;
    IdSelection& _selection;
    std::map<KeyNumber, QLineEdit*> _fields;
    QComboBox* _type;
    QComboBox* _length;
    QLabel* _count;
};

} // namespace ka::studio
