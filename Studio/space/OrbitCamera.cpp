#include "OrbitCamera.h"

#include <QtMath>
#include <algorithm>
#include <cmath>

namespace ka::studio {

namespace {

constexpr float HalfField = 20.0F; ///< Degrees from the middle of the view to its upper edge.

} // namespace

void OrbitCamera::orbit(float turn, float lift) {
    _turn = std::fmod(_turn + turn, 360.0F);
    _lift = std::clamp(_lift + lift, -89.0F, 89.0F);
}

void OrbitCamera::zoom(float factor) {
    if (std::isfinite(factor) && factor > 0.0F)
        _distance = std::clamp(_distance / factor, 1e-3F, 1e7F);
}

void OrbitCamera::look(Side side) {
    const std::pair<float, float> angles[] = {{0, 0},  {180, 0}, {-90, 0}, {90, 0},
                                              {0, 89}, {0, -89}, {35, 20}};
    std::tie(_turn, _lift) = angles[static_cast<int>(side)];
}

QVector3D OrbitCamera::eye() const {
    const float turn = qDegreesToRadians(_turn), lift = qDegreesToRadians(_lift);
    const QVector3D ahead(std::sin(turn) * std::cos(lift), std::sin(lift), std::cos(turn) * std::cos(lift));
    const QVector3D off = _isZUp ? QVector3D(ahead.x(), -ahead.z(), ahead.y()) : ahead;
    return _target + off * _distance;
}

void OrbitCamera::standAt(const Viewpoint& viewpoint) {
    const QVector3D off = -viewpoint.direction();
    const QVector3D ahead = _isZUp ? QVector3D(off.x(), off.z(), -off.y()) : off;
    _turn = qRadiansToDegrees(std::atan2(ahead.x(), ahead.z()));
    _lift = std::clamp(qRadiansToDegrees(std::asin(std::clamp(ahead.y(), -1.0F, 1.0F))), -89.0F, 89.0F);
    _distance = std::clamp(viewpoint.distance(), 1e-3F, 1e7F);
    _target = viewpoint.eye() - off * _distance;
}

Viewpoint OrbitCamera::viewpoint() const {
    QMatrix4x4 matrix;
    matrix.lookAt(eye(), _target, up());
    return Viewpoint(matrix, HalfField, _distance);
}

void OrbitCamera::pan(const QPointF& pixels, const QSizeF& view) {
    const Viewpoint seen = viewpoint();
    const QVector3D right = seen.view().row(0).toVector3D(), above = seen.view().row(1).toVector3D();
    const float units = seen.unitsPerPixel(_target, view);
    _target += (above * static_cast<float>(pixels.y()) - right * static_cast<float>(pixels.x())) * units;
}

void OrbitCamera::frame(const QVector3D& low, const QVector3D& high) {
    _target = (low + high) / 2;
    const float radius = std::max((high - low).length() / 2, 1e-2F);
    _distance = std::clamp(radius / std::sin(qDegreesToRadians(HalfField)), 1e-3F, 1e7F);
}

} // namespace ka::studio
