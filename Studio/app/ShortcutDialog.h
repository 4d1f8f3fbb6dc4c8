#pragma once

#include <QDialog>
#include <QList>

class QAction;
class QKeySequence;
class QKeySequenceEdit;
class QLabel;
class QLineEdit;
class QTableWidget;

namespace ka::studio {

/// Lists actions with their shortcuts, to be searched and changed. What is changed holds at once and for later
/// starts; a shortcut that another action has is refused.
class ShortcutDialog : public QDialog {
    Q_OBJECT

  public:
    /// @param actions  named ones, each with the shortcut it comes with as property `OwnKeys`.
    ShortcutDialog(const QList<QAction*>& actions, QWidget* parent = nullptr);

    static constexpr const char* OwnKeys = "ownKeys";
    /// The shortcut that an action of this name is to have: the one that was chosen, else `own`.
    static QKeySequence keysOf(const QString& name, const QKeySequence& own);

    QKeySequenceEdit& editOf(const QString& action); ///< The field of the action of this name.
    QLineEdit& search() { return *_search; }

  private:
    void addRow(QAction& action);
    void change(QAction& action, QKeySequenceEdit& edit);
    void resetAll();
    void filter(const QString& text);

    QList<QAction*> _actions;
    QLineEdit* _search;
    QTableWidget* _table;
    QLabel* _note;
};

} // namespace ka::studio
