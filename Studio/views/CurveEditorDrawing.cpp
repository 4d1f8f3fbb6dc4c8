#include "CurveEditor.h"
#include "timebased/PlayHead.h"
#include "timebased/Ticks.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <unordered_set>

namespace ka::studio {

namespace {

constexpr double KeySize = 6.0;          ///< Pixels of a key's square.
constexpr double KeyDistance = 5.0;      ///< Pixels between keys from which on they are told apart and drawn.
constexpr std::size_t SmoothCurves = 16; ///< Up to so many are drawn with smooth edges.

void drawKey(QPainter& painter, const QPointF& at, const QColor& color, bool isSelected) {
    const QRectF square(at.x() - KeySize / 2, at.y() - KeySize / 2, KeySize, KeySize);
    painter.setPen(isSelected ? QPen(Qt::black, 1) : QPen(color.darker(160), 1));
    painter.setBrush(isSelected ? QColor(255, 200, 40) : color);
    painter.drawRect(square);
}

/// The keys of one curve where they are far enough apart.
void drawKeys(QPainter& painter, const CurveTrace& curve, const ValueScale& scale, const AxisMap& time,
              const AxisMap& values, int width, const QColor& color) {
    const auto [first, last] = curve.within(time.toValue(-KeySize), time.toValue(width + KeySize));
    if (last <= first || static_cast<double>(last - first) * KeyDistance > width)
        return;
    for (std::size_t i = first; i < last; ++i)
        drawKey(painter,
                {time.toPixel(static_cast<double>(curve.frames()[i])),
                 values.toPixel(scale.toView(static_cast<double>(curve.values()[i])))},
                color, false);
}

} // namespace

void CurveEditor::drawContent(QPainter& painter) {
    if (_isLayerStale)
        drawLayer();
    painter.drawPixmap(0, 0, _layer);
    drawGhosts(painter);
    const bool onDark = palette().color(QPalette::Base).lightness() < 128;
    for (const kaUID id : _moving) {
        const QColor color = _scene.colorOf(id, onDark);
        const QVector<QPointF> line =
            _scene.trace(id).line(axis().map(), _values, _scene.scaleOf(id), width());
        // Edges of a line with several points a pixel cannot be seen to be smooth, and cost most of the drawing.
        const bool smooth = _moving.size() <= SmoothCurves && line.size() < width() * 3 / 2;
        painter.setRenderHint(QPainter::Antialiasing, smooth);
        painter.setPen(QPen(color, smooth ? 1.6 : 1.0));
        painter.drawPolyline(line);
        painter.setRenderHint(QPainter::Antialiasing, false);
        drawKeys(painter, _scene.trace(id), _scene.scaleOf(id), axis().map(), _values, width(), color);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    drawHandles(painter);
    drawScaleFrame(painter);
    if (_scene.curves().empty()) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
        painter.drawText(contentRect(), Qt::AlignCenter, tr("Choose channels to see their curves"));
    }
}

void CurveEditor::drawLayer() {
    const qreal ratio = devicePixelRatioF();
    _layer = QPixmap(size() * ratio);
    _layer.setDevicePixelRatio(ratio);
    _layer.fill(palette().color(QPalette::Base));
    QPainter painter(&_layer);
    painter.setFont(font());
    drawGrid(painter);
    const bool onDark = palette().color(QPalette::Base).lightness() < 128;
    const std::unordered_set<kaUID> moving(_moving.begin(), _moving.end());
    for (const kaUID id : _scene.curves()) {
        if (moving.count(id) != 0)
            continue;
        const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
        QColor color = _scene.colorOf(id, onDark);
        color.setAlpha(curve != nullptr && !curve->isActive() ? 90 : 255);
        const bool smooth = _scene.curves().size() <= SmoothCurves;
        painter.setRenderHint(QPainter::Antialiasing, smooth);
        painter.setPen(QPen(color, smooth ? 1.6 : 1.0, isLocked(id) ? Qt::DashLine : Qt::SolidLine));
        painter.drawPolyline(_scene.trace(id).line(axis().map(), _values, _scene.scaleOf(id), width()));
        painter.setRenderHint(QPainter::Antialiasing, false);
        drawKeys(painter, _scene.trace(id), _scene.scaleOf(id), axis().map(), _values, width(), color);
    }
    _isLayerStale = false;
}

void CurveEditor::drawGrid(QPainter& painter) const {
    QColor line = palette().color(QPalette::Text);
    line.setAlpha(30);
    QColor strong = palette().color(QPalette::Text);
    strong.setAlpha(90);
    const double unit = axis().isInSeconds() ? 25.0 : 1.0;
    painter.setPen(line);
    for (const double tick :
         niceTicks(frameAt(0) / unit, frameAt(width()) / unit, 70.0 / axis().map().scale() / unit))
        painter.drawLine(QPointF(pixelOf(tick * unit), RulerHeight), QPointF(pixelOf(tick * unit), height()));
    const double low = _values.toValue(height()), high = _values.toValue(RulerHeight);
    for (const double tick : niceTicks(low, high, 34.0 / std::abs(_values.scale()))) {
        const double y = _values.toPixel(tick);
        painter.setPen(tick == 0.0 ? strong : line);
        painter.drawLine(QPointF(0, y), QPointF(width(), y));
        QColor text = palette().color(QPalette::Text);
        text.setAlpha(150);
        painter.setPen(text);
        painter.drawText(QPointF(4, y - 2), QString::number(tick, 'g', 6));
    }
    painter.drawText(QRect(4, RulerHeight + 2, width() - 8, 18), Qt::AlignRight, unitText());
}

QString CurveEditor::unitText() const {
    if (_scene.isNormalised())
        return tr("normalised");
    bool angles = false, others = false;
    for (const kaUID id : _scene.curves()) {
        const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
        const kaAnimationField* field =
            curve != nullptr ? kaAnimationManager::the()->getField(curve->getField()) : nullptr;
        const bool isAngle = field != nullptr && field->attribute.rfind("rotation", 0) == 0;
        (isAngle ? angles : others) = true;
    }
    if (angles && others)
        return tr("degrees and scene units");
    return angles ? tr("degrees") : others ? tr("scene units") : QString();
}

void CurveEditor::drawGhosts(QPainter& painter) const {
    QColor color = palette().color(QPalette::Text);
    color.setAlpha(90);
    painter.setPen(QPen(color, 1, Qt::DotLine));
    constexpr std::size_t Enough = 8; // of more curves the former ones would only be in the way
    if (_ghosts.size() <= Enough)
        for (const QVector<QPointF>& ghost : _ghosts)
            painter.drawPolyline(ghost);
}

void CurveEditor::drawHandles(QPainter& painter) const {
    constexpr std::size_t MaximumShown = 200; // handles of more keys hide each other
    std::unordered_set<std::uint64_t> drawn;  // cells of pixels: of the keys in one, the first
    const bool withHandles = _selection.size() <= MaximumShown;
    std::unordered_set<kaUID> shown(_scene.curves().begin(), _scene.curves().end());
    const QRectF view = QRectF(contentRect()).adjusted(-KeySize, -KeySize, KeySize, KeySize);
    for (const kaUID id : _selection.ids()) {
        const kaAnimationCurve2D* curve = curveOf(id);
        if (curve == nullptr || shown.count(curve->getId()) == 0)
            continue;
        const QPointF at = pixelOfKey(id);
        if (withHandles)
            for (const HandleDrag::Side side : {HandleDrag::Side::In, HandleDrag::Side::Out}) {
                const QPointF end = pixelOfHandle(id, side);
                painter.setRenderHint(QPainter::Antialiasing);
                painter.setPen(QPen(palette().color(QPalette::Text), 1));
                painter.drawLine(at, end);
                painter.setBrush(palette().color(QPalette::Base));
                painter.drawEllipse(end, 3.5, 3.5);
                painter.setRenderHint(QPainter::Antialiasing, false);
            }
        if (!view.contains(at))
            continue;
        const auto cell =
            (static_cast<std::uint64_t>(at.x() / 2 + 64) << 32) | static_cast<std::uint64_t>(at.y() / 2 + 64);
        if (drawn.insert(cell).second)
            drawKey(painter, at, Qt::yellow, true);
    }
}

QRectF CurveEditor::selectionFrame() const {
    double left = 1e30, right = -1e30, top = 1e30, bottom = -1e30;
    for (const kaUID id : freeSelection()) {
        const QPointF at = pixelOfKey(id);
        left = std::min(left, at.x());
        right = std::max(right, at.x());
        top = std::min(top, at.y());
        bottom = std::max(bottom, at.y());
    }
    if (!(right - left >= 2.0))
        return {};
    return QRectF(left, top, right - left, bottom - top).adjusted(-10, -10, 10, 10);
}

void CurveEditor::drawScaleFrame(QPainter& painter) const {
    const QRectF frame = _isScaling ? selectionFrame() : QRectF();
    if (frame.isNull())
        return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    painter.setBrush(palette().color(QPalette::Highlight));
    const QPointF middle = frame.center();
    for (const QPointF& at : {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight(),
                              QPointF(frame.left(), middle.y()), QPointF(frame.right(), middle.y()),
                              QPointF(middle.x(), frame.top()), QPointF(middle.x(), frame.bottom())})
        painter.drawRect(QRectF(at.x() - 3, at.y() - 3, 6, 6));
}

} // namespace ka::studio
