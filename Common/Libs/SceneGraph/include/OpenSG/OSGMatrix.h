#pragma once

#include <OpenSG/OSGQuaternion.h>

namespace osg {

/// A 4x4 matrix of floats that transforms column vectors: `m * p`. Stored by columns: `m[column][row]`, so
/// that `m[3]` is the translation. The identity by default. Text and the 16-number forms go row by row.
class KA_SCENEGRAPH_API Matrix {
  public:
    using VectorType = Vec4f;

    Matrix();
    /// Row by row: the 4th, 8th and 12th number are the translation.
    Matrix(Real32 m00, Real32 m01, Real32 m02, Real32 m03, Real32 m10, Real32 m11, Real32 m12, Real32 m13,
           Real32 m20, Real32 m21, Real32 m22, Real32 m23, Real32 m30, Real32 m31, Real32 m32, Real32 m33);

    static Matrix identity() { return Matrix(); }
    void setIdentity() { *this = Matrix(); }
    void setValue(const Matrix& other) { *this = other; }
    /// 16 numbers, row by row.
    void setValueTransposed(const Real32* rows);

    Vec4f& operator[](UInt32 column) { return _columns[column]; }
    const Vec4f& operator[](UInt32 column) const { return _columns[column]; }
    /// 16 numbers, column by column.
    const Real32* getValues() const { return _columns[0].getValues(); }

    /// @name Composition
    /// The matrix that scales first, then rotates, then translates: T · R · S. The forms with more parts give
    /// T · C · R · SO · S · SO⁻¹ · C⁻¹: scale along the axes turned by `scaleOrientation`, about `center`.
    /// @{
    void setTranslate(const Vec3f& translation);
    void setTranslate(Real32 x, Real32 y, Real32 z);
    void setScale(const Vec3f& scale);
    void setScale(Real32 x, Real32 y, Real32 z);
    void setRotate(const Quaternion& rotation);
    void setTransform(const Vec3f& translation);
    void setTransform(const Quaternion& rotation);
    void setTransform(const Vec3f& translation, const Quaternion& rotation);
    void setTransform(const Vec3f& translation, const Quaternion& rotation, const Vec3f& scale);
    void setTransform(const Vec3f& translation, const Quaternion& rotation, const Vec3f& scale,
                      const Quaternion& scaleOrientation);
    void setTransform(const Vec3f& translation, const Quaternion& rotation, const Vec3f& scale,
                      const Quaternion& scaleOrientation, const Vec3f& center);
    /// @}

    /// Splits an affine matrix so that setTransform of the parts gives it back. A mirroring matrix has three
    /// negated scale factors. Of a singular matrix the rotation is some rotation that fits.
    void getTransform(Vec3f& translation, Quaternion& rotation, Vec3f& scale,
                      Quaternion& scaleOrientation) const;
    void getTransform(Vec3f& translation, Quaternion& rotation, Vec3f& scale, Quaternion& scaleOrientation,
                      const Vec3f& center) const;

    /// this = this * right: `right` is applied first.
    void mult(const Matrix& right);
    /// this = left * this: `left` is applied last.
    void multLeft(const Matrix& left);

    /// @name Points and directions
    /// Affine: the last row is taken as 0 0 0 1. The full form divides by the fourth component.
    /// @{
    void mult(const Pnt3f& source, Pnt3f& result) const { multMatrixPnt(source, result); }
    void mult(const Vec3f& source, Vec3f& result) const { multMatrixVec(source, result); }
    void multMatrixPnt(const Pnt3f& source, Pnt3f& result) const;
    void multFullMatrixPnt(const Pnt3f& source, Pnt3f& result) const;
    void multMatrixVec(const Vec3f& source, Vec3f& result) const;
    /// @}

    Real32 det() const;
    void transpose();
    /// @return false for a singular matrix, which stays as it is.
    bool invert();
    /// `result` becomes the inverse; @return false for a singular matrix, `result` is then left alone.
    bool inverse(Matrix& result) const;
    bool inverseFrom(const Matrix& source);

    /// True when no element differs by more than `tolerance`.
    bool equals(const Matrix& other, Real32 tolerance) const;
    friend bool operator==(const Matrix& a, const Matrix& b) { return a._columns == b._columns; }
    friend bool operator!=(const Matrix& a, const Matrix& b) { return !(a == b); }

  private:
    std::array<Vec4f, 4> _columns;
};

} // namespace osg
