#pragma once

#include "Viewpoint.h"

#include <array>
#include <vector>

namespace ka::studio {

/// Three arrows or three rings at a place, always of the same size in the view, that a hand takes hold of.
class Gizmo {
  public:
    enum class Kind { Arrows, Rings };

    /// @param axes  of length 1, in the world.
    Gizmo(Kind kind, const QVector3D& place, const std::array<QVector3D, 3>& axes, const Viewpoint& viewpoint,
          const QSizeF& view);

    Kind kind() const { return _kind; }
    const QVector3D& place() const { return _place; }
    const QVector3D& axis(int axis) const { return _axes[static_cast<std::size_t>(axis)]; }
    /// An arrow from its foot to its tip, or a ring closed.
    std::vector<QVector3D> line(int axis) const;
    QPointF centre() const;         ///< In pixels; far outside where it is not seen.
    QPointF handle(int axis) const; ///< The tip of an arrow, or a pixel of a ring.
    /// The arrow or ring at a pixel; -1 for none.
    int axisAt(const QPointF& pixel) const;

    /// How far along an axis a hand has gone that went from one pixel to another; 0 along the line of sight.
    QVector3D moved(int axis, const QPointF& from, const QPointF& to) const;
    /// How far about an axis it has turned, in degrees, by the right hand; from -180 to 180.
    float turned(int axis, const QPointF& from, const QPointF& to) const;

  private:
    QPointF seen(const QVector3D& place) const;

    Kind _kind;
    QVector3D _place;
    std::array<QVector3D, 3> _axes;
    Viewpoint _viewpoint;
    QSizeF _view;
    float _length;
};

/// Distance of a pixel from a line between two others.
double distanceToLine(const QPointF& pixel, const QPointF& from, const QPointF& to);

} // namespace ka::studio
