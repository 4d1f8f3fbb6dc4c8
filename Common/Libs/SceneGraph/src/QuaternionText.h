#pragma once

#include <OpenSG/OSGQuaternion.h>

/// @file
/// Rotations as axis and angle in radians, fine enough that the floats of a quaternion come back.

namespace osg {

/// The length of the axis is that of the quaternion, which is 1 but for rounding.
void axisAngleFromQuaternion(const Quaternion& rotation, Real64 (&axisAngle)[4]);

/// An axis of about length 1 carries the rounding of the quaternion's length; any other length means nothing.
/// An axis of length 0 gives the identity.
Quaternion quaternionFromAxisAngle(const Real64 (&axisAngle)[4]);

} // namespace osg
