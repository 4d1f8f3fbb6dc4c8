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
constexpr int BandHeight = 5;     ///< Pixels of the range at the foot of the ruler.
constexpr double RangeReach =
    6.0; ///< Pixels beside an end of the range within which a press takes hold of it.

} // namespace

TimeView::TimeView(TimeAxis& axis, PlayHead& head, QWidget* parent)
    : QWidget(parent), _axis(axis), _head(head) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(160, 80);
    connect(&axis, &TimeAxis::changed, this, [this] { update(); });
    connect(&axis, &TimeAxis::rangeChanged, this, [this] { update(); });
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
    drawRange(painter);
    painter.setPen(palette().color(QPalette::ButtonText));
    const QRectF flag = headFlag();
    const double unit = _axis.isInSeconds() ? static_cast<double>(_head.framesPerSecond()) : 1.0;
    const double distance = 70.0 / std::abs(_axis.map().scale()) / unit; // room for a label
    for (const double tick : niceTicks(frameAt(0) / unit, frameAt(width()) / unit, distance)) {
        const int x = static_cast<int>(std::lround(pixelOf(tick * unit)));
        painter.drawLine(x, RulerHeight - 7, x, RulerHeight);
        const QString text = label(tick * unit);
        const QRect place(x + 3, 2, painter.fontMetrics().horizontalAdvance(text), RulerHeight - 6);
        if (!flag.intersects(place)) // the playhead says where it is itself
            painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, text);
    }
    painter.drawLine(0, RulerHeight - 1, width(), RulerHeight - 1);
}

/// A band at the foot of the ruler, with an end on each side to take hold of.
void TimeView::drawRange(QPainter& painter) const {
    const double begin = pixelOf(_axis.rangeBegin()), end = pixelOf(_axis.rangeEnd());
    if (!(begin < end))
        return;
    QColor color = palette().color(QPalette::Highlight);
    color.setAlpha(110);
    const double left = std::max(begin, -10.0), right = std::min(end, width() + 10.0);
    painter.fillRect(QRectF(left, RulerHeight - BandHeight, std::max(0.0, right - left), BandHeight), color);
    color.setAlpha(255);
    for (const double x : {begin, end})
        if (x > -10 && x < width() + 10)
            painter.fillRect(QRectF(x - 2, RulerHeight - BandHeight - 2, 4, BandHeight + 2), color);
}

QString TimeView::headText() const {
    return label(static_cast<double>(std::round(_head.frame() * 100) / 100));
}

QRectF TimeView::headFlag() const {
    const double x = pixelOf(static_cast<double>(_head.frame()));
    if (x < -40 || x > width() + 40)
        return {};
    const int wide = fontMetrics().horizontalAdvance(headText()) + 8;
    return {x - wide / 2.0, 1, static_cast<double>(wide), RulerHeight - BandHeight - 2};
}

void TimeView::drawHead(QPainter& painter) const {
    const QRectF flag = headFlag();
    if (flag.isNull())
        return;
    const double x = flag.center().x();
    const QColor color(220, 60, 50);
    painter.setPen(QPen(color, 1));
    painter.drawLine(QPointF(x, flag.bottom()), QPointF(x, height()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(color);
    painter.drawRoundedRect(flag, 3, 3);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::white);
    painter.drawText(flag, Qt::AlignCenter, headText());
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

double TimeView::wholeFrameAt(const QPoint& position) const {
    const double frame = frameAt(position.x());
    return _axis.snapsFrames() ? std::round(frame) : frame;
}

void TimeView::scrubTo(const QPoint& position) {
    _head.scrub(static_cast<float>(wholeFrameAt(position)));
}

/// The ends of the range are taken at the foot of the ruler; Shift begins another one anywhere.
void TimeView::pressRuler(const QMouseEvent& event) {
    const QPoint at = event.pos();
    const bool isAtFoot = at.y() >= RulerHeight - BandHeight - 3 && _axis.rangeBegin() < _axis.rangeEnd();
    const double toBegin = std::abs(pixelOf(_axis.rangeBegin()) - at.x());
    const double toEnd = std::abs(pixelOf(_axis.rangeEnd()) - at.x());
    if (event.modifiers().testFlag(Qt::ShiftModifier)) {
        _rangeStart = wholeFrameAt(at);
        _drag = Drag::Range;
    } else if (isAtFoot && std::min(toBegin, toEnd) <= RangeReach) {
        _drag = Drag::Range;
        _rangeStart = toBegin < toEnd ? _axis.rangeEnd() : _axis.rangeBegin();
    } else {
        _drag = Drag::Scrub;
        scrubTo(at);
    }
}

void TimeView::dragRange(const QPoint& position) {
    const double other = wholeFrameAt(position);
    const double begin = std::min(_rangeStart, other), end = std::max(_rangeStart, other);
    if (begin < end)
        _axis.askForRange(begin, end);
    emit hint(tr("Plays from %1 to %2").arg(label(begin), label(end)));
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
        pressRuler(*event);
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
    case Drag::Range:
        dragRange(event->pos());
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
