#pragma once

#include <kaMotion/CurveChoice.h>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What a curve's value does, as far as bounds and filters go.
enum class CurveKind : unsigned char {
    Rotation,    ///< an angle in degrees that turns a node
    Translation, ///< a length that moves one, in the scene's unit
    Scale,       ///< a factor
    Other        ///< anything else: fields of view, colours, switches
};

/// The kind of a curve, by the attribute that it animates.
CurveKind curveKind(const kaAnimationCurve2D* curve);

/// The axis that a curve of the first three kinds is about: 0, 1, 2 for X, Y, Z; -1 for another.
int curveAxis(const kaAnimationCurve2D* curve);

} // namespace ka::motion
#pragma GCC visibility pop
