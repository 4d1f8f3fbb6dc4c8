#include "Viewpoint.h"

#include <QtMath>
#include <algorithm>
#include <cmath>

namespace ka::studio {

namespace {

constexpr float Nearest = 1e-2F; ///< Of the distance: what is closer is not seen.
constexpr float Farthest = 1e3F;

float pixels(qreal height) {
    return static_cast<float>(height) / 2;
}

} // namespace

Viewpoint::Viewpoint(const QMatrix4x4& view, float halfField, float distance)
    : _view(view),
      _eye(view.inverted().map(QVector3D())),
      _tangent(std::tan(qDegreesToRadians(std::clamp(halfField, 0.5F, 85.0F)))),
      _distance(std::max(distance, 1e-3F)) {}

QMatrix4x4 Viewpoint::projection(const QSizeF& view) const {
    const float nearest = Nearest * _distance, farthest = Farthest * _distance;
    const float high = nearest * _tangent;
    const float wide = high * static_cast<float>(view.width() / std::max(view.height(), 1.0));
    QMatrix4x4 matrix;
    matrix.frustum(-wide, wide, -high, high, nearest, farthest);
    return matrix;
}

std::optional<QPointF> Viewpoint::project(const QVector3D& place, const QSizeF& view) const {
    const QVector3D seen = _view.map(place);
    if (!(seen.z() < -Nearest * _distance))
        return std::nullopt;
    const float scale = pixels(view.height()) / _tangent / -seen.z();
    return QPointF(view.width() / 2 + static_cast<double>(seen.x() * scale),
                   view.height() / 2 - static_cast<double>(seen.y() * scale));
}

QVector3D Viewpoint::ray(const QPointF& pixel, const QSizeF& view) const {
    const float scale = _tangent / pixels(view.height());
    const QVector3D seen(static_cast<float>(pixel.x() - view.width() / 2) * scale,
                         static_cast<float>(view.height() / 2 - pixel.y()) * scale, -1.0F);
    return _view.inverted().mapVector(seen).normalized();
}

float Viewpoint::unitsPerPixel(const QVector3D& place, const QSizeF& view) const {
    return std::max(-_view.map(place).z(), 1e-4F) * _tangent / pixels(view.height());
}

} // namespace ka::studio
