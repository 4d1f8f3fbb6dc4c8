#pragma once

#include <QPlainTextEdit>
#include <QStringList>

namespace ka::studio {

/// Where commands are typed: Enter sends, Shift+Enter begins a line, Up and Down bring former commands, Tab
/// completes.
class ConsoleInput : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit ConsoleInput(QWidget* parent = nullptr);

    /// Adds a command to those that Up brings, and empties the field.
    void remember(const QString& command);
    /// Puts a completion in place of the last word before the cursor.
    void complete(const QString& whole);
    QString lineToCursor() const;
    QSize sizeHint() const override;

  signals:
    void sent(const QString& source);
    void completionWanted(const QString& line);
    void cleared(); ///< Ctrl+L

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    bool bring(int step);

    QStringList _former;
    int _shown = 0; ///< in `_former`; behind it: what is being typed
    QString _typed;
};

} // namespace ka::studio
