#pragma once

#include <QMatrix4x4>
#include <QPointF>
#include <QSizeF>
#include <QVector3D>
#include <optional>

namespace ka::studio {

/// From where the world is seen, in which direction and how wide. Pixels are those of a view, from its upper left.
class Viewpoint {
  public:
    Viewpoint() = default;
    /// @param view  from the world to the axes of the eye, which looks along -Z with Y up.
    /// @param halfField  degrees from the middle of the view to its upper edge.
    /// @param distance  of what is looked at; what is closer than a small part of it is not seen.
    Viewpoint(const QMatrix4x4& view, float halfField, float distance);

    const QMatrix4x4& view() const { return _view; }
    QMatrix4x4 projection(const QSizeF& view) const;
    QVector3D eye() const { return _eye; }
    QVector3D direction() const { return -_view.row(2).toVector3D().normalized(); }
    float distance() const { return _distance; }

    /// Where a place is seen; none behind the eye.
    std::optional<QPointF> project(const QVector3D& place, const QSizeF& view) const;
    /// The direction in which a pixel looks, of length 1.
    QVector3D ray(const QPointF& pixel, const QSizeF& view) const;
    /// Length in the scene that a pixel covers at a place's depth.
    float unitsPerPixel(const QVector3D& place, const QSizeF& view) const;

    bool operator==(const Viewpoint& other) const {
        return _view == other._view && _tangent == other._tangent && _distance == other._distance;
    }

  private:
    QMatrix4x4 _view;
    QVector3D _eye;
    float _tangent = 1.0F; ///< of the half field
    float _distance = 1.0F;
};

} // namespace ka::studio
