#include "TimeView.h"

#include "PlayHead.h"
#include "Ticks.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

namespace ka::studio {

namespace {

constexpr double WheelStep = 1.2; ///< Zoom of one notch of the wheel.

} // namespace

TimeView::TimeView(TimeAxis& axis, PlayHead& head, QWidget* parent)
    : QWidget(parent), _axis(axis), _head(head) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(160, 80);
    connect(&axis, &TimeAxis::changed, this, [this] { update(); });
    connect(&head, &PlayHead::moved, this, [this] { update(); });
}

QRect TimeView::contentRect() const {
    return rect().adjusted(0, RulerHeight, 0, 0);
}

QString TimeView::label(double frame) const {
    if (!_axis.isInSeconds())
        return QString::number(frame, 'g', 10);
    return QString::number(frame / static_cast<double>(_head.framesPerSecond()), 'g', 6) +
           QStringLiteral(" s");
}

void TimeView::drawRuler(QPainter& painter) const {
    const QRect ruler(0, 0, width(), RulerHeight);
    painter.fillRect(ruler, palette().color(QPalette::Button));
    painter.setPen(palette().color(QPalette::ButtonText));
    const double unit = _axis.isInSeconds() ? static_cast<double>(_head.framesPerSecond()) : 1.0;
    const double distance = 70.0 / std::abs(_axis.map().scale()) / unit; // room for a label
    for (const double tick : niceTicks(frameAt(0) / unit, frameAt(width()) / unit, distance)) {
        const int x = static_cast<int>(std::lround(pixelOf(tick * unit)));
        painter.drawLine(x, RulerHeight - 7, x, RulerHeight);
        painter.drawText(QRect(x + 3, 2, 90, RulerHeight - 6), Qt::AlignLeft | Qt::AlignVCenter,
                         label(tick * unit));
    }
    painter.drawLine(0, RulerHeight - 1, width(), RulerHeight - 1);
}

void TimeView::drawHead(QPainter& painter) const {
    const double x = pixelOf(static_cast<double>(_head.frame()));
    if (x < -40 || x > width() + 40)
        return;
    const QColor color(220, 60, 50);
    painter.setPen(QPen(color, 1));
    painter.drawLine(QPointF(x, RulerHeight), QPointF(x, height()));
    const QString text = label(static_cast<double>(std::round(_head.frame() * 100) / 100));
    const int wide = painter.fontMetrics().horizontalAdvance(text) + 8;
    const QRectF flag(x - wide / 2.0, 2, wide, RulerHeight - 5);
    painter.setBrush(color);
    painter.drawRoundedRect(flag, 3, 3);
    painter.setPen(Qt::white);
    painter.drawText(flag, Qt::AlignCenter, text);
    painter.setBrush(Qt::NoBrush);
}

void TimeView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.save();
    painter.setClipRect(contentRect());
    drawContent(painter);
    painter.restore();
    drawRuler(painter);
    drawHead(painter);
    if (_box.has_value()) {
        QColor fill = palette().color(QPalette::Highlight);
        painter.setPen(fill);
        fill.setAlpha(50);
        painter.setBrush(fill);
        painter.drawRect(_box->normalized());
    }
}

void TimeView::scrubTo(const QPoint& position) {
    float frame = static_cast<float>(frameAt(position.x()));
    if (_axis.snapsFrames())
        frame = std::round(frame);
    _head.scrub(frame);
}

void TimeView::startBox(const QPoint& from) {
    _drag = Drag::Box;
    _box = QRect(from, from);
    update();
}

void TimeView::mousePressEvent(QMouseEvent* event) {
    _last = event->pos();
    if (_drag != Drag::None)
        return; // a second button while one drags
    if (event->button() == Qt::MiddleButton) {
        _drag = Drag::Pan;
        setCursor(Qt::ClosedHandCursor);
    } else if (event->button() == Qt::LeftButton && event->pos().y() < RulerHeight) {
        _drag = Drag::Scrub;
        scrubTo(event->pos());
    } else if (event->button() == Qt::LeftButton) {
        _drag = Drag::Content;
        pressContent(event);
    }
}

void TimeView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint moved = event->pos() - _last;
    _last = event->pos();
    switch (_drag) {
    case Drag::Pan:
        panContent(moved.y());
        _axis.pan(moved.x());
        break;
    case Drag::Scrub:
        scrubTo(event->pos());
        break;
    case Drag::Box:
        _box->setBottomRight(event->pos());
        update();
        break;
    case Drag::Content:
        moveContent(event);
        break;
    case Drag::None:
        break;
    }
}

void TimeView::mouseReleaseEvent(QMouseEvent* event) {
    const bool isEnd = event->button() == (_drag == Drag::Pan ? Qt::MiddleButton : Qt::LeftButton);
    if (!isEnd || _drag == Drag::None)
        return;
    const Drag ended = _drag;
    _drag = Drag::None;
    if (ended == Drag::Pan)
        unsetCursor();
    if (ended == Drag::Content)
        releaseContent(event);
    if (ended == Drag::Box) {
        QRect box = _box->normalized();
        box.setTop(std::max(box.top(), RulerHeight));
        _box.reset();
        selectBox(box, IdSelection::byModifiers(event->modifiers(), false));
    }
    emit hint(QString());
    update();
}

void TimeView::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    const double factor = std::pow(WheelStep, (turned.y() != 0 ? turned.y() : turned.x()) / 120.0);
    const bool onlyTime = event->modifiers().testFlag(Qt::ShiftModifier);
    const bool onlyContent = event->modifiers().testFlag(Qt::ControlModifier);
    if (!onlyTime)
        zoomContent(event->position().y(), factor);
    if (!onlyContent)
        _axis.zoom(event->position().x(), factor);
    update();
    event->accept();
}

} // namespace ka::studio
