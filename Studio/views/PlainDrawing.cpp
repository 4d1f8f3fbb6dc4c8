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

void PlainDrawing::drawFigure(QPainter& painter, const SceneShot& shot, const std::vector<QVector3D>& places,
                              int alpha) {
    const std::vector<Figure::Joint>& joints = shot.figure->joints();
    if (places.size() != joints.size())
        return;
    const bool isGhost = alpha<255, isLarge = joints.size()> Many;
    std::vector<std::optional<QPointF>> seen;
    seen.reserve(places.size());
    for (const QVector3D& place : places)
        seen.push_back(shot.viewpoint.project(place, shot.size));
    for (std::size_t i = 0; i < joints.size(); ++i) {
        const int parent = joints[i].parent;
        if (parent < 0 || !(*shot.isBone)[i] || !seen[i].has_value() ||
            !seen[static_cast<std::size_t>(parent)].has_value())
            continue;
        const QPointF from = *seen[static_cast<std::size_t>(parent)], way = *seen[i] - from;
        const double length = std::hypot(way.x(), way.y());
        if (length < 0.5)
            continue;
        const bool isPicked = !isGhost && parent == shot.picked;
        QColor color(BoneColors[isPicked ? 3 : static_cast<std::size_t>(boneColorOf(joints[i].name))]);
        color.setAlpha(alpha);
        painter.setPen(isGhost ? QPen(Qt::NoPen) : QPen(color.darker(170), 1));
        if (isLarge) {
            painter.drawLine(from, *seen[i]);
            continue;
        }
        const QPointF across = QPointF(-way.y(), way.x()) / length * std::min(length * 0.12, 7.0);
        const QPointF wide = from + way * 0.2;
        const QPointF bone[] = {from, wide + across, *seen[i], wide - across};
        painter.setBrush(color);
        painter.drawPolygon(bone, 4);
    }
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(QColor(BoneColors[4]));
    for (std::size_t i = 0; i < joints.size() && !isGhost && !isLarge; ++i)
        if (seen[i].has_value())
            painter.drawEllipse(*seen[i], 2.5, 2.5);
}

} // namespace ka::studio
