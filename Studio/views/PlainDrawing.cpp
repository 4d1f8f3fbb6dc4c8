#include "PlainDrawing.h"

#include <QPainter>
#include <cmath>

namespace ka::studio {

namespace {

constexpr std::size_t Many = 3000; ///< Joints from which on they are drawn fast rather than smooth.

} // namespace

void PlainDrawing::setScene(const SpaceScene& scene) {
    _hasMeshes = !scene.parts.empty();
}

QString PlainDrawing::note() const {
    const QString how =
        _hasMeshes ? tr("drawn without OpenGL, meshes are not shown") : tr("drawn without OpenGL");
    return _reason.isEmpty() ? how : how + QStringLiteral(": ") + _reason;
}

void PlainDrawing::paint(QPainter& painter, const SceneShot& shot) {
    if (!shot.hasBones)
        return;
    const bool isLarge = shot.figure->joints().size() > Many;
    painter.setRenderHint(QPainter::Antialiasing, !isLarge);
    for (const std::vector<QVector3D>& ghost : *shot.ghosts)
        drawFigure(painter, shot, ghost, 60);
    drawFigure(painter, shot, shot.figure->places(), 255);
    painter.setRenderHint(QPainter::Antialiasing);
}

namespace {

using Pixels = std::vector<std::optional<QPointF>>;

/// All bones as thin lines of one colour.
void drawLines(QPainter& painter, const SceneShot& shot, const Pixels& seen, int alpha) {
    const std::vector<Figure::Joint>& joints = shot.figure->joints();
    QVector<QLineF> lines, picked;
    for (std::size_t i = 0; i < joints.size(); ++i) {
        const int parent = joints[i].parent;
        if (parent >= 0 && (*shot.isBone)[i] && seen[i].has_value() && seen[static_cast<std::size_t>(parent)])
            (parent == shot.picked ? picked : lines)
                .append({*seen[static_cast<std::size_t>(parent)], *seen[i]});
    }
    QColor color = QColor(BoneColors[0]).darker(130);
    color.setAlpha(alpha);
    painter.setPen(QPen(color, 0));
    painter.drawLines(lines);
    painter.setPen(QPen(QColor(BoneColors[3]), 0));
    painter.drawLines(picked);
}

void drawBone(QPainter& painter, const QPointF& from, const QPointF& to, const QColor& color, bool hasEdge) {
    const QPointF way = to - from;
    const double length = std::hypot(way.x(), way.y());
    if (length < 0.5)
        return;
    painter.setPen(hasEdge ? QPen(color.darker(170), 1) : QPen(Qt::NoPen));
    const QPointF across = QPointF(-way.y(), way.x()) / length * std::min(length * 0.12, 7.0);
    const QPointF wide = from + way * 0.2;
    const QPointF bone[] = {from, wide + across, to, wide - across};
    painter.setBrush(color);
    painter.drawPolygon(bone, 4);
}

} // namespace

void PlainDrawing::drawFigure(QPainter& painter, const SceneShot& shot, const std::vector<QVector3D>& places,
                              int alpha) {
    const std::vector<Figure::Joint>& joints = shot.figure->joints();
    if (places.size() != joints.size())
        return;
    const bool isGhost = alpha < 255;
    Pixels seen;
    seen.reserve(places.size());
    for (const QVector3D& place : places)
        seen.push_back(shot.viewpoint.project(place, shot.size));
    if (joints.size() > Many)
        return drawLines(painter, shot, seen, alpha);
    for (std::size_t i = 0; i < joints.size(); ++i) {
        const int parent = joints[i].parent;
        if (parent < 0 || !(*shot.isBone)[i] || !seen[i].has_value() ||
            !seen[static_cast<std::size_t>(parent)])
            continue;
        const bool isPicked = !isGhost && parent == shot.picked;
        QColor color(BoneColors[isPicked ? 3 : static_cast<std::size_t>(boneColorOf(joints[i].name))]);
        color.setAlpha(alpha);
        drawBone(painter, *seen[static_cast<std::size_t>(parent)], *seen[i], color, !isGhost);
    }
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(QColor(BoneColors[4]));
    for (std::size_t i = 0; i < joints.size() && !isGhost; ++i)
        if (seen[i].has_value())
            painter.drawEllipse(*seen[i], 2.5, 2.5);
}

} // namespace ka::studio
