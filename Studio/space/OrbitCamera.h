#pragma once

#include "Viewpoint.h"

namespace ka::studio {

/// A camera that looks at a point from a distance and turns about it. Angles in degrees, lengths in the scene's unit.
class OrbitCamera {
  public:
    enum class Side { Front, Back, Left, Right, Top, Bottom, Corner };

    void orbit(float turn, float lift); ///< Degrees; it never tips over.
    /// Moves what it looks at, so that what is there goes along with a hand that moves by so many pixels.
    void pan(const QPointF& pixels, const QSizeF& view);
    void zoom(float factor); ///< Above 1 comes closer.
    /// Looks at a box from the side it is on, with all of it in view.
    void frame(const QVector3D& low, const QVector3D& high);
    void look(Side side);
    /// Stands where a viewpoint is and looks along with it, upright.
    void standAt(const Viewpoint& viewpoint);
    void setTarget(const QVector3D& target) { _target = target; }
    const QVector3D& target() const { return _target; }
    float distance() const { return _distance; }
    void setZUp(bool zUp) { _isZUp = zUp; }
    bool isZUp() const { return _isZUp; }
    QVector3D up() const { return _isZUp ? QVector3D(0, 0, 1) : QVector3D(0, 1, 0); }
    QVector3D eye() const;

    Viewpoint viewpoint() const;

  private:
    QVector3D _target{0, 0, 0};
    float _distance = 100.0F, _turn = 35.0F, _lift = 20.0F;
    bool _isZUp = false;
};

} // namespace ka::studio
