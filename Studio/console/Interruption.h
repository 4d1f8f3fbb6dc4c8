#pragma once

#include <QElapsedTimer>
#include <QObject>

class QWidget;

namespace ka::studio {

/// Keeps the window alive while a command runs in its thread: what is drawn stays drawn and the command can be
/// stopped, and nothing else gets through, neither keys and mouse nor timers, so that nobody comes between a
/// command and what it works on.
class Interruption : public QObject {
    Q_OBJECT

  public:
    /// @param stop  the one widget that is listened to.
    explicit Interruption(QWidget& stop);
    ~Interruption() override;

    /// Looks what the window system has to say; not in the first moments, which short commands end in.
    /// @return false once the command is to be stopped.
    bool goOn();
    void request() { _isRequested = true; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget& _stop;
    QElapsedTimer _running;
    bool _isRequested = false;
};

} // namespace ka::studio
