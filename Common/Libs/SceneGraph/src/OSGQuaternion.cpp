#include <OpenSG/OSGMatrix.h>
#include <algorithm>

namespace osg {

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr double DEGREES_PER_RADIAN = 180.0 / PI;

Real32 narrow(double value) {
    return static_cast<Real32>(value);
}

} // namespace

void Quaternion::setValueAsAxisRad(const Vec3f& axis, Real32 radians) {
    setValueAsAxisRad(axis[0], axis[1], axis[2], radians);
}

void Quaternion::setValueAsAxisRad(Real32 x, Real32 y, Real32 z, Real32 radians) {
    const double ax = x;
    const double ay = y;
    const double az = z;
    const double size = std::sqrt(ax * ax + ay * ay + az * az);
    if (!(size > 0.0)) {
        setIdentity();
        return;
    }
    const double half = 0.5 * radians;
    const double factor = std::sin(half) / size;
    setValueAsQuat(narrow(ax * factor), narrow(ay * factor), narrow(az * factor), narrow(std::cos(half)));
}

void Quaternion::setValueAsAxisDeg(const Vec3f& axis, Real32 degrees) {
    setValueAsAxisRad(axis, narrow(degrees / DEGREES_PER_RADIAN));
}

void Quaternion::setValueAsAxisDeg(Real32 x, Real32 y, Real32 z, Real32 degrees) {
    setValueAsAxisDeg(Vec3f(x, y, z), degrees);
}

void Quaternion::getValueAsAxisRad(Vec3f& axis, Real32& radians) const {
    const double qx = _values[0];
    const double qy = _values[1];
    const double qz = _values[2];
    const double sine = std::sqrt(qx * qx + qy * qy + qz * qz);
    if (!(sine > 0.0)) {
        axis = Vec3f(0.0F, 0.0F, 1.0F);
        radians = 0.0F;
        return;
    }
    axis = Vec3f(narrow(qx / sine), narrow(qy / sine), narrow(qz / sine));
    radians = narrow(2.0 * std::atan2(sine, static_cast<double>(_values[3])));
}

void Quaternion::getValueAsAxisRad(Real32& x, Real32& y, Real32& z, Real32& radians) const {
    Vec3f axis;
    getValueAsAxisRad(axis, radians);
    x = axis[0];
    y = axis[1];
    z = axis[2];
}

void Quaternion::getValueAsAxisDeg(Vec3f& axis, Real32& degrees) const {
    Real32 radians = 0.0F;
    getValueAsAxisRad(axis, radians);
    degrees = narrow(radians * DEGREES_PER_RADIAN);
}

void Quaternion::setValueAsQuat(Real32 x, Real32 y, Real32 z, Real32 w) {
    _values = {x, y, z, w};
}

void Quaternion::setValue(const Matrix& matrix) {
    const auto at = [&matrix](UInt32 row, UInt32 column) { return static_cast<double>(matrix[column][row]); };
    // The largest component is found from the diagonal and the others from it, so that nothing is divided by
    // a small number.
    double q[4];
    const double trace = at(0, 0) + at(1, 1) + at(2, 2);
    if (trace > 0.0) {
        const double root = std::sqrt(trace + 1.0);
        const double factor = 0.5 / root;
        q[0] = (at(2, 1) - at(1, 2)) * factor;
        q[1] = (at(0, 2) - at(2, 0)) * factor;
        q[2] = (at(1, 0) - at(0, 1)) * factor;
        q[3] = 0.5 * root;
    } else {
        UInt32 i = at(1, 1) > at(0, 0) ? 1 : 0;
        i = at(2, 2) > at(i, i) ? 2 : i;
        const UInt32 j = (i + 1) % 3;
        const UInt32 k = (i + 2) % 3;
        const double root = std::sqrt(std::max(0.0, at(i, i) - at(j, j) - at(k, k) + 1.0));
        const double factor = root > 0.0 ? 0.5 / root : 0.0;
        q[i] = 0.5 * root;
        q[j] = (at(j, i) + at(i, j)) * factor;
        q[k] = (at(k, i) + at(i, k)) * factor;
        q[3] = (at(k, j) - at(j, k)) * factor;
    }
    setValueAsQuat(narrow(q[0]), narrow(q[1]), narrow(q[2]), narrow(q[3]));
}

void Quaternion::getValue(Matrix& matrix) const {
    const double x = _values[0];
    const double y = _values[1];
    const double z = _values[2];
    const double w = _values[3];
    matrix = Matrix(narrow(1.0 - 2.0 * (y * y + z * z)), narrow(2.0 * (x * y - z * w)),
                    narrow(2.0 * (x * z + y * w)), 0.0F, narrow(2.0 * (x * y + z * w)),
                    narrow(1.0 - 2.0 * (x * x + z * z)), narrow(2.0 * (y * z - x * w)), 0.0F,
                    narrow(2.0 * (x * z - y * w)), narrow(2.0 * (y * z + x * w)),
                    narrow(1.0 - 2.0 * (x * x + y * y)), 0.0F, 0.0F, 0.0F, 0.0F, 1.0F);
}

Real32 Quaternion::length() const {
    double sum = 0.0;
    for (const Real32 value : _values)
        sum += static_cast<double>(value) * value;
    return narrow(std::sqrt(sum));
}

void Quaternion::normalize() {
    const Real32 size = length();
    if (!(size > 0.0F)) {
        setIdentity();
        return;
    }
    for (Real32& value : _values)
        value /= size;
}

void Quaternion::invert() {
    *this = inverse();
}

Quaternion Quaternion::inverse() const {
    Quaternion result;
    result.setValueAsQuat(-_values[0], -_values[1], -_values[2], _values[3]);
    return result;
}

void Quaternion::mult(const Quaternion& b) {
    const Quaternion a = *this;
    setValueAsQuat(a.w() * b.x() + a.x() * b.w() + a.y() * b.z() - a.z() * b.y(),
                   a.w() * b.y() - a.x() * b.z() + a.y() * b.w() + a.z() * b.x(),
                   a.w() * b.z() + a.x() * b.y() - a.y() * b.x() + a.z() * b.w(),
                   a.w() * b.w() - a.x() * b.x() - a.y() * b.y() - a.z() * b.z());
}

void Quaternion::multVec(const Vec3f& source, Vec3f& result) const {
    Matrix matrix;
    getValue(matrix);
    matrix.multMatrixVec(source, result);
}

Quaternion Quaternion::slerp(const Quaternion& a, const Quaternion& b, Real32 t) {
    double cosine = 0.0;
    for (UInt32 i = 0; i < 4; ++i)
        cosine += static_cast<double>(a[i]) * b[i];
    const double sign = cosine < 0.0 ? -1.0 : 1.0;
    cosine = std::min(cosine * sign, 1.0);

    // Nearly the same rotation: the arc is straight to within a float, and its sine too small to divide by.
    constexpr double NEARLY_EQUAL = 1.0 - 1e-9;
    double fromA = 1.0 - t;
    double fromB = t;
    if (cosine < NEARLY_EQUAL) {
        const double angle = std::acos(cosine);
        fromA = std::sin(fromA * angle) / std::sin(angle);
        fromB = std::sin(fromB * angle) / std::sin(angle);
    }
    Quaternion result;
    for (UInt32 i = 0; i < 4; ++i)
        result[i] = narrow(fromA * a[i] + sign * fromB * b[i]);
    result.normalize();
    return result;
}

} // namespace osg
