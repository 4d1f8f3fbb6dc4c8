#include "Interruption.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace ka::studio {

namespace {

constexpr qint64 Patience = 200; ///< milliseconds after which a command counts as long

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::TabletMove:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

Interruption::Interruption(QWidget& stop) : _stop(stop) {
    _running.start();
    qApp->installEventFilter(this);
}

Interruption::~Interruption() {
    qApp->removeEventFilter(this);
}

bool Interruption::goOn() {
    if (!_isRequested && _running.elapsed() > Patience)
        QApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
    return !_isRequested;
}

bool Interruption::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::Shortcut || (type == QEvent::Timer && !watched->isWindowType() && watched != &_stop))
        return true; // timers come again until they are heard
    if (!watched->isWidgetType() || watched == &_stop || !isInput(type))
        return false;
    if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
        _isRequested = true;
    event->ignore(); // a window that is to be closed stays
    return true;
}

} // namespace ka::studio
