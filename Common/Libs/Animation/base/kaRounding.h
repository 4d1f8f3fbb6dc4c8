#pragma once

#include <OpenSG/OSGVector.h>

/// Rounding half away from zero, as keys are snapped and frames counted.
namespace kaRounding {

/// Whether the value, rounded, is greater than 0. NaN is false.
bool toBool(float value);
/// The value, rounded. NaN and values outside the range of int give the smallest int.
int toInt(float value);
/// The same as float; values too large to have a fraction, infinities and NaN come back unchanged. Never -0.
float snap(float value);
/// Rounds the chosen coordinates of a point.
osg::Pnt2f snap(osg::Pnt2f point, bool snapX, bool snapY);

} // namespace kaRounding
