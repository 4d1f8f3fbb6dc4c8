#include "QuaternionText.h"

#include <cmath>

namespace osg {

namespace {

/// Lengths nearer to 1 than this come from rounding a quaternion to floats.
constexpr Real64 ROUNDING = 1e-5;

Real64 lengthOf(Real64 x, Real64 y, Real64 z, Real64 w = 0.0) {
    return std::sqrt(x * x + y * y + z * z + w * w);
}

} // namespace

void axisAngleFromQuaternion(const Quaternion& rotation, Real64 (&axisAngle)[4]) {
    const Real64 x = rotation.x();
    const Real64 y = rotation.y();
    const Real64 z = rotation.z();
    const Real64 w = rotation.w();
    const Real64 sine = lengthOf(x, y, z);
    const Real64 length = lengthOf(x, y, z, w);
    const bool isTurned = sine > 0.0;
    axisAngle[0] = isTurned ? x / sine * length : 0.0;
    axisAngle[1] = isTurned ? y / sine * length : 0.0;
    axisAngle[2] = isTurned ? z / sine * length : length;
    axisAngle[3] = 2.0 * std::atan2(sine, w);
}

Quaternion quaternionFromAxisAngle(const Real64 (&axisAngle)[4]) {
    const Real64 size = lengthOf(axisAngle[0], axisAngle[1], axisAngle[2]);
    Quaternion result;
    if (!(size > 0.0) || !std::isfinite(size))
        return result;
    const Real64 length = std::fabs(size - 1.0) < ROUNDING ? size : 1.0;
    const Real64 factor = std::sin(0.5 * axisAngle[3]) / size * length;
    result.setValueAsQuat(static_cast<Real32>(axisAngle[0] * factor),
                          static_cast<Real32>(axisAngle[1] * factor),
                          static_cast<Real32>(axisAngle[2] * factor),
                          static_cast<Real32>(std::cos(0.5 * axisAngle[3]) * length));
    return result;
}

} // namespace osg
