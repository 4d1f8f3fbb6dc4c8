#include "ConsoleInput.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QRegularExpression>
#include <QSettings>
#include <QTextBlock>

namespace ka::studio {

namespace {

const char FormerKey[] = "python/former";
constexpr int FormerCount = 200;

} // namespace

ConsoleInput::ConsoleInput(QWidget* parent)
    : QPlainTextEdit(parent), _former(QSettings().value(FormerKey).toStringList()) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabChangesFocus(false);
    setToolTip(tr("Enter runs a command, Shift+Enter begins a line, Tab completes, Up brings former ones"));
    setPlaceholderText(tr("project.clips[0].name"));
    _shown = _former.size();
}

QSize ConsoleInput::sizeHint() const {
    return {200, fontMetrics().lineSpacing() * 3 + 8};
}

QString ConsoleInput::lineToCursor() const {
    const QTextCursor cursor = textCursor();
    return cursor.block().text().left(cursor.positionInBlock());
}

void ConsoleInput::remember(const QString& command) {
    if (_former.isEmpty() || _former.last() != command)
        _former.append(command);
    while (_former.size() > FormerCount)
        _former.removeFirst();
    QSettings().setValue(FormerKey, _former);
    _shown = _former.size();
    _typed.clear();
    clear();
}

void ConsoleInput::complete(const QString& whole) {
    static const QRegularExpression word(QStringLiteral("[\\w.]*$"));
    QTextCursor cursor = textCursor();
    cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor,
                        word.match(lineToCursor()).capturedLength());
    cursor.insertText(whole);
    setTextCursor(cursor);
}

bool ConsoleInput::bring(int step) {
    const int shown = _shown + step;
    if (shown < 0 || shown > _former.size())
        return false;
    if (_shown == _former.size())
        _typed = toPlainText();
    _shown = shown;
    setPlainText(shown == _former.size() ? _typed : _former.at(shown));
    moveCursor(QTextCursor::End);
    return true;
}

void ConsoleInput::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier;
    const QTextCursor cursor = textCursor();
    if (isPlain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        emit sent(toPlainText());
    else if (isPlain && event->key() == Qt::Key_Up && cursor.blockNumber() == 0)
        bring(-1);
    else if (isPlain && event->key() == Qt::Key_Down && cursor.blockNumber() == blockCount() - 1)
        bring(1);
    else if (isPlain && event->key() == Qt::Key_Tab && lineToCursor().trimmed().isEmpty())
        insertPlainText(QStringLiteral("    "));
    else if (isPlain && event->key() == Qt::Key_Tab)
        emit completionWanted(lineToCursor());
    else if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_L)
        emit cleared();
    else
        QPlainTextEdit::keyPressEvent(event);
}

} // namespace ka::studio
