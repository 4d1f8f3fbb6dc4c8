#pragma once

#include "Interruption.h"
#include "PythonEngine.h"

#include <QWidget>
#include <functional>
#include <memory>

class QPlainTextEdit;
class QToolButton;

namespace ka::studio {

class ConsoleInput;
class CurveEditor;
class IdSelection;
class PlayHead;
class Session;
class Transport;

/// The parts of the window that a script can see and use.
struct ConsoleParts {
    Session& session;
    Transport& transport;
    PlayHead& head;
    IdSelection& keys;
    IdSelection& bars;
    CurveEditor& curves;
};

/// Python on what is open: a field for commands, what they print, and a way to stop one. Every command, and
/// every script that a menu runs, is one step of the history, whatever it has changed.
///
/// Python itself is loaded when it is first used; where it is missing the panel says so.
class ConsolePanel : public QWidget, private StudioForPython {
    Q_OBJECT

  public:
    explicit ConsolePanel(const ConsoleParts& parts, QWidget* parent = nullptr);
    ~ConsolePanel() override;

    /// Has Python ready. @return false where there is none, which the panel says.
    bool start();
    /// Runs a command as if it had been typed; the begin of one is left in the field.
    /// @return whether it ran to its end.
    bool run(const QString& source);
    /// Runs a file, which sees `project`, `studio` and `kaanimation`, likewise.
    bool runScript(const QString& path);
    bool isRunning() const { return _interruption != nullptr; }
    void stop(); ///< Interrupts what runs.

    QString printed() const; ///< Everything in the panel.

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void write(const QString& text, bool isError) override;
    bool breathe() override;
    float frame() const override;
    void setFrame(float frame) override;
    bool isPlaying() const override;
    void play(bool reverse) override;
    void pause() override;
    std::vector<kaUID> selectedKeys() const override;
    std::vector<kaUID> selectedBars() const override;
    std::vector<kaUID> shownCurves() const override;
    void selectKeys(std::vector<kaUID> keys) override;
    void selectBars(std::vector<kaUID> bars) override;

    void join();
    bool perform(const QString& name, const std::function<bool()>& work);
    void complete(const QString& line);

    ConsoleParts _parts;
    PythonEngine* _engine = nullptr;
    std::unique_ptr<Interruption> _interruption; ///< while something runs
    QPlainTextEdit* _output = nullptr;
    ConsoleInput* _input = nullptr;
    QToolButton* _stop = nullptr;
};

} // namespace ka::studio
