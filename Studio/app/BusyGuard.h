#pragma once

#include <QObject>

class QWidget;

namespace ka::studio {

/// Keeps every input of a user back while work goes on that everything else depends on, but for one widget by
/// which it can be given up; Escape and closing a window do that as well. What is drawn goes on being drawn.
class BusyGuard : public QObject {
    Q_OBJECT

  public:
    /// @param exempt  the widget that goes on taking clicks.
    explicit BusyGuard(QWidget& exempt, QObject* parent = nullptr);

    void begin();
    void end();

    bool eventFilter(QObject* watched, QEvent* event) override;

  signals:
    void endWanted(); ///< Escape, or a window that was to be closed.

  private:
    QWidget& _exempt;
    bool _isActive = false;
};

} // namespace ka::studio
