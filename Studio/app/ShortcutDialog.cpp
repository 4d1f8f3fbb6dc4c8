#include "ShortcutDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>
#include <QVBoxLayout>

namespace ka::studio {

namespace {

enum Column { What, Keys, ColumnCount };

QString settingOf(const QString& action) {
    return QStringLiteral("shortcuts/") + action;
}

QString plainText(const QAction& action) {
    return action.text().remove(QLatin1Char('&')).remove(QStringLiteral("..."));
}

} // namespace

QKeySequence ShortcutDialog::keysOf(const QString& name, const QKeySequence& own) {
    return QSettings().value(settingOf(name), own).value<QKeySequence>();
}

ShortcutDialog::ShortcutDialog(const QList<QAction*>& actions, QWidget* parent)
    : QDialog(parent),
      _actions(actions),
      _search(new QLineEdit(this)),
      _table(new QTableWidget(0, ColumnCount, this)),
      _note(new QLabel(this)) {
    setWindowTitle(tr("Shortcuts"));
    _search->setPlaceholderText(tr("Search actions"));
    _search->setClearButtonEnabled(true);
    _table->setHorizontalHeaderLabels({tr("Action"), tr("Shortcut")});
    _table->horizontalHeader()->setSectionResizeMode(What, QHeaderView::Stretch);
    _table->horizontalHeader()->resizeSection(Keys, 180);
    _table->verticalHeader()->hide();
    _table->setSelectionMode(QAbstractItemView::NoSelection);
    for (QAction* action : _actions)
        addRow(*action);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close | QDialogButtonBox::RestoreDefaults, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this,
            &ShortcutDialog::resetAll);
    connect(_search, &QLineEdit::textChanged, this, &ShortcutDialog::filter);
    _note->setWordWrap(true);
    _note->setText(tr("Click into a shortcut and press the keys that it is to have."));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_search);
    layout->addWidget(_table);
    layout->addWidget(_note);
    layout->addWidget(buttons);
    resize(720, 640);
}

void ShortcutDialog::addRow(QAction& action) {
    const int row = _table->rowCount();
    _table->insertRow(row);
    auto* item = new QTableWidgetItem(plainText(action) + QStringLiteral(" - ") + action.toolTip());
    item->setFlags(Qt::ItemIsEnabled);
    _table->setItem(row, What, item);
    auto* edit = new QKeySequenceEdit(action.shortcut(), _table);
    edit->setObjectName(action.objectName());
    _table->setCellWidget(row, Keys, edit);
    connect(edit, &QKeySequenceEdit::editingFinished, this, [this, &action, edit] { change(action, *edit); });
}

void ShortcutDialog::change(QAction& action, QKeySequenceEdit& edit) {
    const QKeySequence keys = edit.keySequence();
    if (keys == action.shortcut())
        return;
    for (const QAction* other : _actions)
        if (other != &action && !keys.isEmpty() && other->shortcut() == keys) {
            _note->setText(tr("%1 already belongs to \"%2\".")
                               .arg(keys.toString(QKeySequence::NativeText), plainText(*other)));
            edit.setKeySequence(action.shortcut());
            return;
        }
    action.setShortcut(keys);
    QSettings().setValue(settingOf(action.objectName()), keys);
    _note->setText(
        keys.isEmpty()
            ? tr("\"%1\" has no shortcut any more.").arg(plainText(action))
            : tr("\"%1\" is %2 now.").arg(plainText(action), keys.toString(QKeySequence::NativeText)));
}

void ShortcutDialog::resetAll() {
    for (QAction* action : _actions) {
        const auto own = action->property(OwnKeys).value<QKeySequence>();
        action->setShortcut(own);
        QSettings().remove(settingOf(action->objectName()));
        editOf(action->objectName()).setKeySequence(own);
    }
    _note->setText(tr("All shortcuts are as they came."));
}

void ShortcutDialog::filter(const QString& text) {
    for (int row = 0; row < _table->rowCount(); ++row)
        _table->setRowHidden(row, !_table->item(row, What)->text().contains(text, Qt::CaseInsensitive));
}

QKeySequenceEdit& ShortcutDialog::editOf(const QString& action) {
    return *_table->findChild<QKeySequenceEdit*>(action);
}

} // namespace ka::studio
