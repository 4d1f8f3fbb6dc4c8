#include <OpenSG/OSGMatrix.h>
#include <algorithm>
#include <array>
#include <cmath>

/// @file
/// Splitting an affine matrix into translation, rotation and stretch. The stretch is found by its main axes,
/// the rotation by where the matrix takes them.

namespace osg {

namespace {

/// [row][column], in double: the parts are products of many roundings.
using Mat3 = std::array<std::array<double, 3>, 3>;

constexpr Mat3 IDENTITY = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};

Mat3 multiply(const Mat3& a, const Mat3& b) {
    Mat3 result{};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            for (int k = 0; k < 3; ++k)
                result[row][column] += a[row][k] * b[k][column];
        }
    }
    return result;
}

Mat3 transposed(const Mat3& m) {
    Mat3 result{};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            result[row][column] = m[column][row];
    }
    return result;
}

void scaleBy(Mat3& m, double factor) {
    for (auto& row : m) {
        for (double& value : row)
            value *= factor;
    }
}

/// The matrix of cofactors: the inverse transposed times the determinant.
Mat3 cofactors(const Mat3& m) {
    Mat3 result{};
    for (int row = 0; row < 3; ++row) {
        const int r1 = (row + 1) % 3;
        const int r2 = (row + 2) % 3;
        for (int column = 0; column < 3; ++column) {
            const int c1 = (column + 1) % 3;
            const int c2 = (column + 2) % 3;
            result[row][column] = m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
        }
    }
    return result;
}

double determinant(const Mat3& m, const Mat3& cofactor) {
    return m[0][0] * cofactor[0][0] + m[0][1] * cofactor[0][1] + m[0][2] * cofactor[0][2];
}

/// The main axes of the symmetric matrix `s` as columns of a rotation, by Jacobi's method; `s` becomes
/// diagonal.
Mat3 mainAxes(Mat3& s) {
    // What is smaller comes from the rounding of the matrix's floats, and turning it away would give plain
    // scales an arbitrary orientation.
    constexpr double FLOAT_NOISE = 1e-7;
    constexpr int SWEEPS = 32; // it converges quadratically; five or six do
    const double negligible = FLOAT_NOISE * (s[0][0] + s[1][1] + s[2][2]);
    Mat3 axes = IDENTITY;
    for (int sweep = 0; sweep < SWEEPS; ++sweep) {
        for (int p = 0; p < 2; ++p) {
            for (int q = p + 1; q < 3; ++q) {
                if (!(std::fabs(s[p][q]) > negligible))
                    continue;
                const double angle = 0.5 * std::atan2(2.0 * s[p][q], s[q][q] - s[p][p]);
                Mat3 turn = IDENTITY;
                turn[p][p] = turn[q][q] = std::cos(angle);
                turn[p][q] = std::sin(angle);
                turn[q][p] = -turn[p][q];
                s = multiply(multiply(transposed(turn), s), turn);
                axes = multiply(axes, turn);
            }
        }
    }
    return axes;
}

using Column = std::array<double, 3>;

Column cross(const Column& a, const Column& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// A direction of length 1 at right angles to `a`.
Column anyNormal(const Column& a) {
    const int smallest = std::fabs(a[0]) < std::fabs(a[1]) ? (std::fabs(a[0]) < std::fabs(a[2]) ? 0 : 2)
                                                           : (std::fabs(a[1]) < std::fabs(a[2]) ? 1 : 2);
    Column axis{};
    axis[smallest] = 1.0;
    Column normal = cross(a, axis);
    const double size = std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
    for (double& value : normal)
        value /= size;
    return normal;
}

/// Where `m` takes the main axes, as columns of a rotation. Axes that `m` takes to nothing (a singular
/// matrix) get directions that complete the rotation.
Mat3 imageOfAxes(const Mat3& m, const Mat3& axes, const Column& lengths) {
    const Mat3 image = multiply(m, axes);
    const double largest = std::max({lengths[0], lengths[1], lengths[2]});
    constexpr double SINGULAR = 1e-7;
    std::array<Column, 3> columns{};
    std::array<bool, 3> known{};
    for (int i = 0; i < 3; ++i) {
        known[i] = lengths[i] > SINGULAR * largest;
        for (int row = 0; known[i] && row < 3; ++row)
            columns[i][row] = image[row][i] / lengths[i];
    }
    if (!known[0] && !known[1] && !known[2])
        return axes;
    for (int i = 0; i < 3; ++i) { // with one known, the second first needs a direction
        const int next = (i + 1) % 3;
        if (known[i] && !known[next] && !known[(i + 2) % 3]) {
            columns[next] = anyNormal(columns[i]);
            known[next] = true;
            break;
        }
    }
    for (int i = 0; i < 3; ++i) {
        if (!known[i])
            columns[i] = cross(columns[(i + 1) % 3], columns[(i + 2) % 3]);
    }
    Mat3 result{};
    for (int row = 0; row < 3; ++row) {
        for (int i = 0; i < 3; ++i)
            result[row][i] = columns[i][row];
    }
    return result;
}

Quaternion toQuaternion(const Mat3& m) {
    Matrix matrix;
    for (UInt32 row = 0; row < 3; ++row) {
        for (UInt32 column = 0; column < 3; ++column)
            matrix[column][row] = static_cast<Real32>(m[row][column]);
    }
    Quaternion result;
    result.setValue(matrix);
    result.normalize();
    return result;
}

} // namespace

void Matrix::getTransform(Vec3f& translation, Quaternion& rotation, Vec3f& scale,
                          Quaternion& scaleOrientation) const {
    Mat3 m{};
    for (UInt32 row = 0; row < 3; ++row) {
        translation[row] = _columns[3][row];
        for (UInt32 column = 0; column < 3; ++column)
            m[row][column] = _columns[column][row];
    }
    // A mirroring matrix is the negative of one that does not mirror.
    const double sign = determinant(m, cofactors(m)) < 0.0 ? -1.0 : 1.0;
    scaleBy(m, sign);

    Mat3 squared = multiply(transposed(m), m);
    const Mat3 axes = mainAxes(squared);
    Column lengths{};
    for (UInt32 i = 0; i < 3; ++i) {
        lengths[i] = std::sqrt(std::max(0.0, squared[i][i]));
        scale[i] = static_cast<Real32>(sign * lengths[i]);
    }
    rotation = toQuaternion(multiply(imageOfAxes(m, axes, lengths), transposed(axes)));
    scaleOrientation = toQuaternion(axes);
}

} // namespace osg
