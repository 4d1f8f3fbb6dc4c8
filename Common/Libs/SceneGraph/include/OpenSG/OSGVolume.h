#pragma once

#include <OpenSG/OSGMatrix.h>

namespace osg {

/// What a node and all below it fill, as a box along the axes or as a sphere; empty by default.
class KA_SCENEGRAPH_API DynamicVolume {
  public:
    enum Type { BOX_VOLUME = 0, SPHERE_VOLUME = 1 };

    bool isEmpty() const { return _empty; }
    void setEmpty() { *this = DynamicVolume(); }
    Type getType() const { return _type; }

    void setBox(const Pnt3f& minimum, const Pnt3f& maximum);
    void setSphere(const Pnt3f& center, Real32 radius);

    /// The corners of the box around the volume; both 0 0 0 when it is empty.
    void getBounds(Pnt3f& minimum, Pnt3f& maximum) const;
    Pnt3f getCenter() const;
    /// Radius of a sphere; of a box half its diagonal.
    Real32 getRadius() const;

    /// Widens to a box that also holds `point`; points with a component that is not finite are left out.
    void extendBy(const Pnt3f& point);
    /// Widens to a box that also holds `other`; nothing happens when that is empty.
    void extendBy(const DynamicVolume& other);
    /// Becomes the box around the eight moved corners.
    void transform(const Matrix& matrix);

    friend bool operator==(const DynamicVolume& a, const DynamicVolume& b) {
        return a._type == b._type && a._empty == b._empty && a._minimum == b._minimum &&
               a._maximum == b._maximum;
    }
    friend bool operator!=(const DynamicVolume& a, const DynamicVolume& b) { return !(a == b); }

  private:
    Type _type = BOX_VOLUME;
    bool _empty = true;
    Pnt3f _minimum; ///< box: lower corner; sphere: centre
    Pnt3f _maximum; ///< box: upper corner; sphere: the radius in x
};

} // namespace osg
