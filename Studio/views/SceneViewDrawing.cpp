#include "PlainDrawing.h"
#include "SceneView.h"
#include "SpaceDrawing.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace ka::studio {

namespace {

const QColor AxisColors[] = {QColor(220, 70, 70), QColor(80, 180, 80), QColor(70, 120, 230)};

} // namespace

void SceneView::paintEvent(QPaintEvent* /*event*/) {
    sampleMotion();
    if (!isDrawnByOpenGL() || _space->isFree())
        lookAgain();
    SceneShot wanted = shot();
    if (_space != nullptr)
        _space->request(wanted);
    wanted.isBone = &shownBones();
    SceneDrawing* drawing = isDrawnByOpenGL() ? static_cast<SceneDrawing*>(_space.get()) : _plain.get();
    const Viewpoint from = drawing->paintedFrom(wanted);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, height());
    const bool onDark = palette().color(QPalette::Base).lightness() < 128;
    sky.setColorAt(0, onDark ? QColor(48, 52, 60) : QColor(214, 222, 232));
    sky.setColorAt(1, onDark ? QColor(28, 30, 34) : QColor(240, 242, 245));
    painter.fillRect(rect(), sky);
    if (_figure.joints().empty() && _meshes.parts.empty())
        return drawWelcome(painter);
    drawGround(painter, from);
    drawing->paint(painter, wanted);
    drawFixtures(painter, from);
    drawTrail(painter, from);
    drawPicked(painter, from);
    drawGizmo(painter, from);
    drawAxes(painter, from);
    drawNotes(painter);
}

void SceneView::drawLine(QPainter& painter, const Viewpoint& from, const QVector3D& a,
                         const QVector3D& b) const {
    const std::optional<QPointF> begin = from.project(a, size()), end = from.project(b, size());
    if (begin.has_value() && end.has_value())
        painter.drawLine(*begin, *end);
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

/// What it is, how it is seen, and what is picked.
void SceneView::drawNotes(QPainter& painter) const {
    QColor ink = palette().color(QPalette::WindowText);
    ink.setAlphaF(0.6);
    painter.setPen(ink);
    const QRect inside = rect().adjusted(8, 4, -8, -4);
    QString content = tr("%n joint(s)", nullptr, static_cast<int>(_figure.joints().size()));
    if (!_meshes.parts.empty())
        content += tr(", %L1 triangles").arg(_triangles);
    painter.drawText(inside, Qt::AlignRight | Qt::AlignBottom, content + QStringLiteral(", ") + note());
    painter.setPen(palette().color(QPalette::WindowText));
    for (const SceneCamera& camera : _fixtures.cameras())
        if (camera.setting == _through)
            painter.drawText(inside, Qt::AlignLeft | Qt::AlignTop, tr("Through %1").arg(camera.name));
    if (_picked >= 0)
        painter.drawText(inside, Qt::AlignRight | Qt::AlignTop,
                         _figure.joints()[static_cast<std::size_t>(_picked)].name);
}

/// Squares of a round size around what is looked at, in short lines so that those behind the viewer can be
/// left out.
void SceneView::drawGround(QPainter& painter, const Viewpoint& from) const {
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
            const float begin = static_cast<float>(j) * step, end = begin + Piece * step;
            drawLine(painter, from, place(u0 + at, v0 + begin), place(u0 + at, v0 + end));
            drawLine(painter, from, place(u0 + begin, v0 + at), place(u0 + end, v0 + at));
        }
    }
}

/// The directions of the world in the corner; the one that is up is told by name.
void SceneView::drawAxes(QPainter& painter, const Viewpoint& from) const {
    const QPointF corner(44, height() - 44);
    const char* names[] = {"X", "Y", "Z"};
    for (int axis = 0; axis < 3; ++axis) {
        QVector3D own;
        own[axis] = 1.0F;
        const QVector3D turned = from.view().mapVector(own);
        const QPointF end =
            corner + QPointF(static_cast<double>(turned.x()), -static_cast<double>(turned.y())) * 28;
        painter.setPen(QPen(AxisColors[axis], 2));
        painter.drawLine(corner, end);
        const bool isUp = axis == (_camera.isZUp() ? 2 : 1);
        painter.drawText(end + QPointF(3, 4), isUp ? QString::fromLatin1(names[axis]) + tr(" up")
                                                   : QString::fromLatin1(names[axis]));
    }
}

/// Lamps as small suns, cameras as what they see.
void SceneView::drawFixtures(QPainter& painter, const Viewpoint& from) const {
    const QColor ink = palette().color(QPalette::WindowText);
    for (const SceneLight& light : _fixtures.lights()) {
        const std::optional<QVector3D> place = SceneFixtures::placeOf(light);
        const std::optional<QPointF> at = place.has_value() ? from.project(*place, size()) : std::nullopt;
        if (!at.has_value())
            continue;
        painter.setPen(QPen(ink, 1.2));
        painter.setBrush(QColor(255, 220, 90));
        painter.drawEllipse(*at, 4.5, 4.5);
        for (int i = 0; i < 8; ++i) {
            const QPointF ray(std::cos(i * M_PI / 4), std::sin(i * M_PI / 4));
            painter.drawLine(*at + ray * 6.5, *at + ray * 9.5);
        }
    }
    painter.setBrush(Qt::NoBrush);
    for (const SceneCamera& camera : _fixtures.cameras()) {
        const auto seen = SceneFixtures::viewpointOf(camera, _size);
        if (camera.setting == _through || !seen.has_value())
            continue;
        painter.setPen(QPen(ink, 1.2));
        const float length = std::max(0.12F * _size, 30 * from.unitsPerPixel(seen->eye(), size()));
        QVector3D corners[4];
        for (int i = 0; i < 4; ++i) // of a picture as wide as usual
            corners[i] =
                seen->eye() + seen->ray(QPointF(i == 0 || i == 3 ? 0 : 16, i < 2 ? 0 : 9), {16, 9}) * length;
        for (int i = 0; i < 4; ++i) {
            drawLine(painter, from, seen->eye(), corners[i]);
            drawLine(painter, from, corners[i], corners[(i + 1) % 4]);
        }
    }
}

void SceneView::drawTrail(QPainter& painter, const Viewpoint& from) const {
    painter.setPen(QPen(QColor(200, 60, 160), 1.5));
    const std::vector<QVector3D>& way = _trail.way();
    for (std::size_t i = 1; i < way.size(); ++i)
        drawLine(painter, from, way[i - 1], way[i]);
    painter.setBrush(QColor(255, 200, 40));
    painter.setPen(QPen(Qt::black, 0.8));
    for (const QVector3D& key : _trail.keys())
        if (const auto at = from.project(key, size()))
            painter.drawRect(QRectF(at->x() - 2, at->y() - 2, 4, 4));
}

void SceneView::drawPicked(QPainter& painter, const Viewpoint& from) const {
    if (_picked < 0)
        return;
    if (const auto at = from.project(_figure.places()[static_cast<std::size_t>(_picked)], size())) {
        painter.setPen(QPen(Qt::black, 1));
        painter.setBrush(QColor(BoneColors[3]));
        painter.drawEllipse(*at, 5.0, 5.0);
    }
}

void SceneView::drawGizmo(QPainter& painter, const Viewpoint& from) const {
    const std::optional<Gizmo> shown = gizmo(from);
    for (int axis = 0; shown.has_value() && axis < 3; ++axis) {
        painter.setPen(QPen(AxisColors[axis], axis == _axis && _drag == Drag::Gizmo ? 4 : 2.5));
        const std::vector<QVector3D> line = shown->line(axis);
        for (std::size_t i = 1; i < line.size(); ++i)
            drawLine(painter, from, line[i - 1], line[i]);
        if (shown->kind() == Gizmo::Kind::Arrows) {
            painter.setBrush(AxisColors[axis]);
            painter.drawEllipse(shown->handle(axis), 5, 5);
        }
    }
}

} // namespace ka::studio
