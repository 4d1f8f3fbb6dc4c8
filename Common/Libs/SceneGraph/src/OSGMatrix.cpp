#include <OpenSG/OSGMatrix.h>
#include <cmath>
#include <utility>

namespace osg {

namespace {

Matrix product(const Matrix& left, const Matrix& right) {
    Matrix result;
    for (UInt32 column = 0; column < 4; ++column) {
        for (UInt32 row = 0; row < 4; ++row) {
            Real32 sum = 0.0F;
            for (UInt32 k = 0; k < 4; ++k)
                sum += left[k][row] * right[column][k];
            result[column][row] = sum;
        }
    }
    return result;
}

using Square = double[4][4];

void swapRows(Square& m, UInt32 a, UInt32 b) {
    for (UInt32 column = 0; column < 4; ++column)
        std::swap(m[a][column], m[b][column]);
}

UInt32 pivotRow(const Square& m, UInt32 step) {
    UInt32 best = step;
    for (UInt32 row = step + 1; row < 4; ++row) {
        if (std::fabs(m[row][step]) > std::fabs(m[best][step]))
            best = row;
    }
    return best;
}

/// Gauss-Jordan with row pivots; turns `m` into the identity and `inverse` (the identity before) into its
/// inverse. @return false for a singular matrix.
bool eliminate(Square& m, Square& inverse) {
    for (UInt32 step = 0; step < 4; ++step) {
        const UInt32 pivot = pivotRow(m, step);
        if (!(std::fabs(m[pivot][step]) > 0.0))
            return false;
        swapRows(m, pivot, step);
        swapRows(inverse, pivot, step);
        const double scale = 1.0 / m[step][step];
        for (UInt32 column = 0; column < 4; ++column) {
            m[step][column] *= scale;
            inverse[step][column] *= scale;
        }
        for (UInt32 row = 0; row < 4; ++row) {
            const double factor = row == step ? 0.0 : m[row][step];
            for (UInt32 column = 0; column < 4; ++column) {
                m[row][column] -= factor * m[step][column];
                inverse[row][column] -= factor * inverse[step][column];
            }
        }
    }
    return true;
}

} // namespace

Matrix::Matrix() {
    for (UInt32 i = 0; i < 4; ++i)
        _columns[i][i] = 1.0F;
}

Matrix::Matrix(Real32 m00, Real32 m01, Real32 m02, Real32 m03, Real32 m10, Real32 m11, Real32 m12, Real32 m13,
               Real32 m20, Real32 m21, Real32 m22, Real32 m23, Real32 m30, Real32 m31, Real32 m32, Real32 m33)
    : _columns{Vec4f(m00, m10, m20, m30), Vec4f(m01, m11, m21, m31), Vec4f(m02, m12, m22, m32),
               Vec4f(m03, m13, m23, m33)} {}

void Matrix::setValueTransposed(const Real32* rows) {
    for (UInt32 i = 0; i < 16; ++i)
        _columns[i % 4][i / 4] = rows[i];
}

void Matrix::setTranslate(const Vec3f& translation) {
    setTransform(translation);
}

void Matrix::setTranslate(Real32 x, Real32 y, Real32 z) {
    setTransform(Vec3f(x, y, z));
}

void Matrix::setScale(const Vec3f& scale) {
    setIdentity();
    for (UInt32 i = 0; i < 3; ++i)
        _columns[i][i] = scale[i];
}

void Matrix::setScale(Real32 x, Real32 y, Real32 z) {
    setScale(Vec3f(x, y, z));
}

void Matrix::setRotate(const Quaternion& rotation) {
    rotation.getValue(*this);
}

void Matrix::setTransform(const Vec3f& translation) {
    setIdentity();
    for (UInt32 i = 0; i < 3; ++i)
        _columns[3][i] = translation[i];
}

void Matrix::setTransform(const Quaternion& rotation) {
    setRotate(rotation);
}

void Matrix::setTransform(const Vec3f& translation, const Quaternion& rotation) {
    setTransform(translation, rotation, Vec3f(1.0F, 1.0F, 1.0F));
}

void Matrix::setTransform(const Vec3f& translation, const Quaternion& rotation, const Vec3f& scale) {
    setRotate(rotation);
    for (UInt32 column = 0; column < 3; ++column)
        _columns[column] *= scale[column];
    for (UInt32 row = 0; row < 3; ++row)
        _columns[3][row] = translation[row];
}

void Matrix::setTransform(const Vec3f& translation, const Quaternion& rotation, const Vec3f& scale,
                          const Quaternion& scaleOrientation) {
    setTransform(translation, rotation);
    Matrix part;
    part.setTransform(Vec3f(), scaleOrientation, scale);
    mult(part);
    part.setRotate(scaleOrientation.inverse());
    mult(part);
}

void Matrix::setTransform(const Vec3f& translation, const Quaternion& rotation, const Vec3f& scale,
                          const Quaternion& scaleOrientation, const Vec3f& center) {
    setTransform(translation + center, rotation, scale, scaleOrientation);
    Matrix back;
    back.setTransform(-center);
    mult(back);
}

void Matrix::getTransform(Vec3f& translation, Quaternion& rotation, Vec3f& scale,
                          Quaternion& scaleOrientation, const Vec3f& center) const {
    Matrix there;
    there.setTransform(center);
    Matrix centered;
    centered.setTransform(-center);
    centered.mult(*this);
    centered.mult(there);
    centered.getTransform(translation, rotation, scale, scaleOrientation);
}

void Matrix::mult(const Matrix& right) {
    *this = product(*this, right);
}

void Matrix::multLeft(const Matrix& left) {
    *this = product(left, *this);
}

void Matrix::multMatrixPnt(const Pnt3f& source, Pnt3f& result) const {
    const Pnt3f p = source;
    for (UInt32 row = 0; row < 3; ++row)
        result[row] =
            _columns[0][row] * p[0] + _columns[1][row] * p[1] + _columns[2][row] * p[2] + _columns[3][row];
}

void Matrix::multFullMatrixPnt(const Pnt3f& source, Pnt3f& result) const {
    const Pnt3f p = source;
    const Real32 weight =
        _columns[0][3] * p[0] + _columns[1][3] * p[1] + _columns[2][3] * p[2] + _columns[3][3];
    multMatrixPnt(p, result);
    if (weight != 0.0F) {
        for (UInt32 row = 0; row < 3; ++row)
            result[row] /= weight;
    }
}

void Matrix::multMatrixVec(const Vec3f& source, Vec3f& result) const {
    const Vec3f v = source;
    for (UInt32 row = 0; row < 3; ++row)
        result[row] = _columns[0][row] * v[0] + _columns[1][row] * v[1] + _columns[2][row] * v[2];
}

Real32 Matrix::det() const {
    const auto minor2 = [this](UInt32 c0, UInt32 c1, UInt32 r0, UInt32 r1) {
        return static_cast<double>(_columns[c0][r0]) * _columns[c1][r1] -
               static_cast<double>(_columns[c1][r0]) * _columns[c0][r1];
    };
    // Laplace expansion over the first two and the last two rows.
    const double sum = minor2(0, 1, 0, 1) * minor2(2, 3, 2, 3) - minor2(0, 2, 0, 1) * minor2(1, 3, 2, 3) +
                       minor2(0, 3, 0, 1) * minor2(1, 2, 2, 3) + minor2(1, 2, 0, 1) * minor2(0, 3, 2, 3) -
                       minor2(1, 3, 0, 1) * minor2(0, 2, 2, 3) + minor2(2, 3, 0, 1) * minor2(0, 1, 2, 3);
    return static_cast<Real32>(sum);
}

void Matrix::transpose() {
    for (UInt32 i = 0; i < 4; ++i) {
        for (UInt32 j = i + 1; j < 4; ++j)
            std::swap(_columns[i][j], _columns[j][i]);
    }
}

bool Matrix::invert() {
    return inverseFrom(*this);
}

bool Matrix::inverse(Matrix& result) const {
    return result.inverseFrom(*this);
}

bool Matrix::inverseFrom(const Matrix& source) {
    Square m;
    Square inverted;
    for (UInt32 row = 0; row < 4; ++row) {
        for (UInt32 column = 0; column < 4; ++column) {
            m[row][column] = source[column][row];
            inverted[row][column] = row == column ? 1.0 : 0.0;
        }
    }
    if (!eliminate(m, inverted))
        return false;
    for (UInt32 row = 0; row < 4; ++row) {
        for (UInt32 column = 0; column < 4; ++column)
            _columns[column][row] = static_cast<Real32>(inverted[row][column]);
    }
    return true;
}

bool Matrix::equals(const Matrix& other, Real32 tolerance) const {
    for (UInt32 i = 0; i < 16; ++i) {
        if (!(std::fabs(_columns[i / 4][i % 4] - other[i / 4][i % 4]) <= tolerance))
            return false;
    }
    return true;
}

} // namespace osg
