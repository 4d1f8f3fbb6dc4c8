#include "SceneView.h"
#include "playback/Transport.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <kaMotion/FigureSheet.h>

namespace ka::studio {

namespace {

const QColor AxisColors[] = {QColor(220, 70, 70), QColor(80, 180, 80), QColor(70, 120, 230)};

QColor boneColor(const QString& name) {
    switch (ka::motion::sideOfName(name.toStdString())) {
    case ka::motion::BodySide::Left:
        return {70, 140, 220};
    case ka::motion::BodySide::Right:
        return {225, 120, 60};
    default:
        return {150, 150, 165};
    }
}

} // namespace

void SceneView::paintEvent(QPaintEvent* /*event*/) {
    if (_isSampleStale && _drag != Drag::Gizmo)
        sampleMotion();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, height());
    const bool onDark = palette().color(QPalette::Base).lightness() < 128;
    sky.setColorAt(0, onDark ? QColor(48, 52, 60) : QColor(214, 222, 232));
    sky.setColorAt(1, onDark ? QColor(28, 30, 34) : QColor(240, 242, 245));
    painter.fillRect(rect(), sky);
    if (!_places.empty())
        drawGround(painter);
    for (const std::vector<QVector3D>& ghost : _ghosts)
        drawFigure(painter, ghost, 60);
    drawTrail(painter);
    drawFigure(painter, _places, 255);
    drawGizmo(painter);
    drawAxes(painter);
    painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
    if (_places.empty())
        drawWelcome(painter);
    else
        painter.drawText(rect().adjusted(8, 4, -8, -4), Qt::AlignRight | Qt::AlignBottom,
                         tr("%n joint(s), drawn without OpenGL", nullptr, static_cast<int>(_places.size())));
    if (_picked >= 0)
        painter.drawText(rect().adjusted(8, 4, -8, -4), Qt::AlignRight | Qt::AlignTop,
                         _figure.joints()[static_cast<std::size_t>(_picked)].name);
}

void SceneView::drawLine(QPainter& painter, const QVector3D& from, const QVector3D& to) const {
    const std::optional<QPointF> a = seen(from), b = seen(to);
    if (a.has_value() && b.has_value())
        painter.drawLine(*a, *b);
}

/// What a first start shows.
void SceneView::drawWelcome(QPainter& painter) const {
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(
        rect(), Qt::AlignCenter,
        tr("1.  Open a motion: drop a file here, File, Open, or Help, Open the sample motion\n\n"
           "2.  Click a joint: its curves are shown below; Space plays\n\n"
           "3.  Drag keys and handles, or the joint itself (W moves, E turns); Ctrl+Z takes it back"));
}

/// Squares of a round size around what is looked at, in short lines so that those behind the viewer can be
/// left out.
void SceneView::drawGround(QPainter& painter) const {
    const float step = std::pow(10.0F, std::round(std::log10(std::max(_size, 1e-3F) / 4)));
    constexpr int Lines = 12, Piece = 3; // squares; a line is drawn in pieces of so many
    const bool zUp = _camera.isZUp();
    const QVector3D middle = _camera.target();
    const float u0 = std::round(middle.x() / step) * step;
    const float v0 = std::round((zUp ? middle.y() : middle.z()) / step) * step;
    const auto place = [zUp](float u, float v) { return zUp ? QVector3D(u, v, 0) : QVector3D(u, 0, v); };
    QColor color = palette().color(QPalette::WindowText);
    for (int i = -Lines; i <= Lines; ++i) {
        const float at = static_cast<float>(i) * step;
        for (int j = -Lines; j < Lines; j += Piece) {
            const float far = static_cast<float>(std::max(std::abs(i), std::abs(j))) / Lines;
            color.setAlphaF(0.25 * static_cast<double>(1 - far * far));
            painter.setPen(QPen(color, 1));
            const float from = static_cast<float>(j) * step, to = from + Piece * step;
            drawLine(painter, place(u0 + at, v0 + from), place(u0 + at, v0 + to));
            drawLine(painter, place(u0 + from, v0 + at), place(u0 + to, v0 + at));
        }
    }
}

/// The directions of the world in the corner; the one that is up is told by name.
void SceneView::drawAxes(QPainter& painter) const {
    const QMatrix4x4 view = _camera.viewMatrix();
    const QPointF corner(44, height() - 44);
    const char* names[] = {"X", "Y", "Z"};
    for (int axis = 0; axis < 3; ++axis) {
        QVector3D own;
        own[axis] = 1.0F;
        const QVector3D turned = view.mapVector(own);
        const QPointF end =
            corner + QPointF(static_cast<double>(turned.x()), -static_cast<double>(turned.y())) * 28;
        painter.setPen(QPen(AxisColors[axis], 2));
        painter.drawLine(corner, end);
        const bool isUp = axis == (_camera.isZUp() ? 2 : 1);
        painter.drawText(end + QPointF(3, 4), isUp ? QString::fromLatin1(names[axis]) + tr(" up")
                                                   : QString::fromLatin1(names[axis]));
    }
}

void SceneView::drawFigure(QPainter& painter, const std::vector<QVector3D>& places, int alpha) const {
    const std::vector<Figure::Joint>& joints = _figure.joints();
    if (places.size() != joints.size())
        return;
    const bool isGhost = alpha < 255;
    for (std::size_t i = 0; i < joints.size(); ++i) {
        if (joints[i].parent < 0)
            continue;
        const auto from = seen(places[static_cast<std::size_t>(joints[i].parent)]), to = seen(places[i]);
        if (!from.has_value() || !to.has_value())
            continue;
        const QPointF way = *to - *from;
        const double length = std::hypot(way.x(), way.y());
        if (length < 0.5)
            continue;
        QColor color = boneColor(joints[i].name);
        color.setAlpha(alpha);
        const QPointF across = QPointF(-way.y(), way.x()) / length * std::min(length * 0.12, 7.0);
        const QPointF wide = *from + way * 0.2;
        const QPointF bone[] = {*from, wide + across, *to, wide - across};
        const bool isPicked = !isGhost && joints[i].parent == _picked;
        painter.setPen(isGhost ? QPen(Qt::NoPen) : QPen(color.darker(170), 1));
        painter.setBrush(isPicked ? QColor(255, 200, 40) : color);
        painter.drawPolygon(bone, 4);
    }
    for (std::size_t i = 0; i < joints.size() && !isGhost; ++i)
        if (const auto at = seen(places[i])) {
            const bool isPicked = static_cast<int>(i) == _picked;
            painter.setPen(QPen(Qt::black, 1));
            painter.setBrush(isPicked ? QColor(255, 200, 40) : QColor(235, 235, 240));
            painter.drawEllipse(*at, isPicked ? 5.0 : 2.5, isPicked ? 5.0 : 2.5);
        }
}

void SceneView::drawTrail(QPainter& painter) const {
    painter.setPen(QPen(QColor(200, 60, 160), 1.5));
    for (std::size_t i = 1; i < _trail.size(); ++i)
        drawLine(painter, _trail[i - 1], _trail[i]);
    painter.setBrush(QColor(255, 200, 40));
    painter.setPen(QPen(Qt::black, 0.8));
    for (const std::size_t i : _trailKeys)
        if (const auto at = seen(_trail[i]))
            painter.drawRect(QRectF(at->x() - 2, at->y() - 2, 4, 4));
}

void SceneView::drawGizmo(QPainter& painter) const {
    if (_picked < 0 || _tool == Tool::Select)
        return;
    const QVector3D at = _places[static_cast<std::size_t>(_picked)];
    for (int axis = 0; axis < 3; ++axis) {
        painter.setPen(QPen(AxisColors[axis], axis == _axis && _drag == Drag::Gizmo ? 4 : 2.5));
        const QVector3D normal = gizmoAxis(axis);
        if (_tool == Tool::Move) {
            drawLine(painter, at, at + normal * gizmoLength());
            painter.setBrush(AxisColors[axis]);
            painter.drawEllipse(pixelOfGizmo(axis), 5, 5);
            continue;
        }
        const QVector3D any = std::abs(normal.y()) < 0.9F ? QVector3D(0, 1, 0) : QVector3D(1, 0, 0);
        QVector3D arm = QVector3D::crossProduct(normal, any).normalized() * gizmoLength();
        QMatrix4x4 turn;
        turn.rotate(7.5F, normal);
        for (int i = 0; i < 48; ++i) {
            const QVector3D next = turn.mapVector(arm);
            drawLine(painter, at + arm, at + next);
            arm = next;
        }
    }
}

} // namespace ka::studio
