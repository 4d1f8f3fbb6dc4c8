#pragma once

#include "kaMotion/ExportReport.h"
#include "kaMotion/Motion.h"
#include "writers/CurveFunction.h"

#include <array>
#include <cstddef>

namespace ka::motion {

/// The three curves that move one part of a node, X, Y and Z. Angles are in degrees and multiply in the
/// scene's order.
using CurveFunctions = std::array<CurveFunction, 3>;

/// A jump among keys of another kind takes this part of a frame, up to the frame on which it ends.
constexpr double jumpFrames = 1.0 / 512;

/// Turns three curves into one channel with one kind of interpolation: `Step` where the curves only hold,
/// else `Linear` or `Cubic`, whichever needs fewer numbers within the tolerance. A segment that is straight,
/// or a cubic polynomial of the time, takes no key beyond its own two. Where a hold stands among others, its
/// end becomes two keys `jumpFrames` apart.
///
/// Cost: linear in the keys of the result. Nothing is kept between calls.
/// @param report  is added to.
MotionChannel<3> sampleVector(const CurveFunctions& curves, const SamplingOptions& options,
                              SamplingReport& report);

/// The same for a rotation, as quaternions of unit length. Each has the sign that is nearer to the one
/// before: no neighbours are more than half a turn of the four-dimensional sphere apart, so that
/// interpolation never takes the long way.
MotionChannel<4> sampleRotation(const CurveFunctions& angles, const SamplingOptions& options,
                                SamplingReport& report);

} // namespace ka::motion
