#include "OrbitCamera.h"

#include <QtMath>
#include <algorithm>
#include <cmath>

namespace ka::studio {

namespace {

constexpr float HalfField = 20.0F; ///< Degrees from the middle of the view to its upper edge.

float focalLength(const QSizeF& view) {
    return static_cast<float>(view.height()) / 2 / std::tan(qDegreesToRadians(HalfField));
}

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

QMatrix4x4 OrbitCamera::viewMatrix() const {
    QMatrix4x4 matrix;
    matrix.lookAt(eye(), _target, up());
    return matrix;
}

void OrbitCamera::pan(const QPointF& pixels, const QSizeF& view) {
    const QMatrix4x4 matrix = viewMatrix();
    const QVector3D right = matrix.row(0).toVector3D(), above = matrix.row(1).toVector3D();
    const float units = unitsPerPixel(_target, view);
    _target += (above * static_cast<float>(pixels.y()) - right * static_cast<float>(pixels.x())) * units;
}

void OrbitCamera::frame(const QVector3D& low, const QVector3D& high) {
    _target = (low + high) / 2;
    const float radius = std::max((high - low).length() / 2, 1e-2F);
    _distance = std::clamp(radius / std::sin(qDegreesToRadians(HalfField)), 1e-3F, 1e7F);
}

std::optional<QPointF> OrbitCamera::project(const QVector3D& place, const QSizeF& view) const {
    const QVector3D seen = viewMatrix().map(place);
    if (!(seen.z() < -1e-4F * _distance))
        return std::nullopt;
    const float scale = focalLength(view) / -seen.z();
    return QPointF(view.width() / 2 + static_cast<double>(seen.x() * scale),
                   view.height() / 2 - static_cast<double>(seen.y() * scale));
}

float OrbitCamera::unitsPerPixel(const QVector3D& place, const QSizeF& view) const {
    return std::max(-viewMatrix().map(place).z(), 1e-4F) / focalLength(view);
}

} // namespace ka::studio
