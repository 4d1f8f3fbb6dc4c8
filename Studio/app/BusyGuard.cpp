#include "BusyGuard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace ka::studio {

BusyGuard::BusyGuard(QWidget& exempt, QObject* parent) : QObject(parent), _exempt(exempt) {}

void BusyGuard::begin() {
    if (!_isActive)
        QCoreApplication::instance()->installEventFilter(this);
    _isActive = true;
}

void BusyGuard::end() {
    QCoreApplication::instance()->removeEventFilter(this);
    _isActive = false;
}

bool BusyGuard::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            emit endWanted();
        return true;
    case QEvent::Close:
        event->ignore();
        emit endWanted();
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return watched->isWidgetType() && watched != &_exempt;
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TabletPress:
    case QEvent::TouchBegin:
        return true;
    default:
        return false;
    }
}

} // namespace ka::studio
