#pragma once

#include <OpenSG/OSGVector.h>

namespace osg {

class Matrix;

/// A rotation, stored as x, y, z, w; the identity by default.
class KA_SCENEGRAPH_API Quaternion {
  public:
    Quaternion() = default;
    /// @param radians  angle about `axis`; see setValueAsAxisRad.
    Quaternion(const Vec3f& axis, Real32 radians) { setValueAsAxisRad(axis, radians); }

    static Quaternion identity() { return Quaternion(); }
    void setIdentity() { *this = Quaternion(); }

    /// Sets the rotation by `radians` about `axis`, which need not have length 1. An axis of length 0 gives
    /// the identity.
    void setValueAsAxisRad(const Vec3f& axis, Real32 radians);
    void setValueAsAxisRad(Real32 x, Real32 y, Real32 z, Real32 radians);
    void setValueAsAxisDeg(const Vec3f& axis, Real32 degrees);
    void setValueAsAxisDeg(Real32 x, Real32 y, Real32 z, Real32 degrees);

    /// The axis (length 1; 0 0 1 for the identity) and the angle in [0, 2π], in radians.
    void getValueAsAxisRad(Vec3f& axis, Real32& radians) const;
    void getValueAsAxisRad(Real32& x, Real32& y, Real32& z, Real32& radians) const;
    void getValueAsAxisDeg(Vec3f& axis, Real32& degrees) const;

    void setValueAsQuat(Real32 x, Real32 y, Real32 z, Real32 w);

    /// Sets the rotation that the upper left 3x3 part of `matrix` describes; it must be a pure rotation.
    void setValue(const Matrix& matrix);
    /// Writes the rotation into the upper left 3x3 part of `matrix`; the rest becomes the identity's.
    void getValue(Matrix& matrix) const;

    Real32& operator[](UInt32 i) { return _values[i]; }
    Real32 operator[](UInt32 i) const { return _values[i]; }
    Real32 x() const { return _values[0]; }
    Real32 y() const { return _values[1]; }
    Real32 z() const { return _values[2]; }
    Real32 w() const { return _values[3]; }
    const Real32* getValues() const { return _values.data(); }

    Real32 length() const;
    /// Scales to length 1; the zero quaternion becomes the identity.
    void normalize();
    void invert();
    Quaternion inverse() const;

    /// this = this * other: `other` is applied first.
    void mult(const Quaternion& other);
    void multVec(const Vec3f& source, Vec3f& result) const;

    /// The rotation `t` of the way from `a` (t = 0) to `b` (t = 1) at constant speed along the shorter arc.
    static Quaternion slerp(const Quaternion& a, const Quaternion& b, Real32 t);

    friend bool operator==(const Quaternion& a, const Quaternion& b) { return a._values == b._values; }
    friend bool operator!=(const Quaternion& a, const Quaternion& b) { return !(a == b); }

  private:
    std::array<Real32, 4> _values{0.0F, 0.0F, 0.0F, 1.0F};
};

} // namespace osg
