#include "Gizmo.h"

#include <QtMath>
#include <algorithm>
#include <cmath>

namespace ka::studio {

namespace {

constexpr float Length = 70.0F; ///< Pixels.
constexpr double Reach = 7.0;   ///< Pixels beside a line within which it is taken hold of.
constexpr int RingParts = 72;

QVector3D across(const QVector3D& normal) {
    const QVector3D any = std::abs(normal.y()) < 0.9F ? QVector3D(0, 1, 0) : QVector3D(1, 0, 0);
    return QVector3D::crossProduct(normal, any).normalized();
}

} // namespace

double distanceToLine(const QPointF& pixel, const QPointF& from, const QPointF& to) {
    const QPointF way = to - from, off = pixel - from;
    const double length = QPointF::dotProduct(way, way);
    const double t = length > 0 ? std::clamp(QPointF::dotProduct(off, way) / length, 0.0, 1.0) : 0.0;
    const QPointF rest = off - way * t;
    return std::hypot(rest.x(), rest.y());
}

Gizmo::Gizmo(Kind kind, const QVector3D& place, const std::array<QVector3D, 3>& axes,
             const Viewpoint& viewpoint, const QSizeF& view)
    : _kind(kind),
      _place(place),
      _axes(axes),
      _viewpoint(viewpoint),
      _view(view),
      _length(Length * viewpoint.unitsPerPixel(place, view)) {}

QPointF Gizmo::seen(const QVector3D& place) const {
    return _viewpoint.project(place, _view).value_or(QPointF(-1e4, -1e4));
}

std::vector<QVector3D> Gizmo::line(int axis) const {
    const QVector3D normal = this->axis(axis);
    if (_kind == Kind::Arrows)
        return {_place, _place + normal * _length};
    std::vector<QVector3D> ring;
    const QVector3D arm = across(normal) * _length, other = QVector3D::crossProduct(normal, arm);
    for (int i = 0; i <= RingParts; ++i) {
        const float angle = 2 * static_cast<float>(M_PI) * static_cast<float>(i) / RingParts;
        ring.push_back(_place + arm * std::cos(angle) + other * std::sin(angle));
    }
    return ring;
}

QPointF Gizmo::centre() const {
    return seen(_place);
}

QPointF Gizmo::handle(int axis) const {
    return seen(_kind == Kind::Arrows ? line(axis).back() : line(axis).front());
}

int Gizmo::axisAt(const QPointF& pixel) const {
    int nearest = -1;
    double best = Reach;
    for (int axis = 0; axis < 3; ++axis) {
        const std::vector<QVector3D> points = line(axis);
        const QPointF whole = seen(points.back()) - centre();
        if (_kind == Kind::Arrows && std::hypot(whole.x(), whole.y()) < 2 * Reach)
            continue; // it points at the viewer: no way of the hand would be along it
        for (std::size_t i = 1; i < points.size(); ++i) {
            // The foot of an arrow belongs to all three.
            const QPointF from =
                _kind == Kind::Arrows ? seen(points[0] * 0.7F + points[1] * 0.3F) : seen(points[i - 1]);
            const double distance = distanceToLine(pixel, from, seen(points[i]));
            if (distance < best) {
                best = distance;
                nearest = axis;
            }
        }
    }
    return nearest;
}

QVector3D Gizmo::moved(int axis, const QPointF& from, const QPointF& to) const {
    const QPointF along = seen(_place + this->axis(axis) * _length) - centre();
    const double length = QPointF::dotProduct(along, along);
    if (length < 1.0)
        return {};
    const double part = QPointF::dotProduct(to - from, along) / length;
    return this->axis(axis) * _length * static_cast<float>(part);
}

float Gizmo::turned(int axis, const QPointF& from, const QPointF& to) const {
    const QPointF before = from - centre(), after = to - centre();
    const double angle = std::atan2(-after.y(), after.x()) - std::atan2(-before.y(), before.x());
    const double degrees = std::remainder(qRadiansToDegrees(angle), 360.0);
    const bool facesAway = QVector3D::dotProduct(this->axis(axis), _place - _viewpoint.eye()) > 0;
    return static_cast<float>(facesAway ? -degrees : degrees);
}

} // namespace ka::studio
