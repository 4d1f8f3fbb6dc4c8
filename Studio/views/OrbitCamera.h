#pragma once

#include <QMatrix4x4>
#include <QPointF>
#include <QSizeF>
#include <QVector3D>
#include <optional>

namespace ka::studio {

/// A camera that looks at a point from a distance and turns about it. Angles in degrees, lengths in the
/// scene's unit.
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
    void setTarget(const QVector3D& target) { _target = target; }
    const QVector3D& target() const { return _target; }
    float distance() const { return _distance; }
    void setZUp(bool zUp) { _isZUp = zUp; }
    bool isZUp() const { return _isZUp; }
    QVector3D up() const { return _isZUp ? QVector3D(0, 0, 1) : QVector3D(0, 1, 0); }
    QVector3D eye() const;
    QVector3D direction() const { return (_target - eye()).normalized(); }

    QMatrix4x4 viewMatrix() const;
    /// Where a place is seen, in pixels; none behind the camera.
    std::optional<QPointF> project(const QVector3D& place, const QSizeF& view) const;
    /// Length in the scene that a pixel covers at a place's depth.
    float unitsPerPixel(const QVector3D& place, const QSizeF& view) const;

  private:
    QVector3D _target{0, 0, 0};
    float _distance = 100.0F, _turn = 35.0F, _lift = 20.0F;
    bool _isZUp = false;
};

} // namespace ka::studio
