#pragma once

#include <kaMotion/Motion.h>
#include <vector>

namespace ka::motion {

/// The weights of all shapes of a mesh as one channel, which glTF makes of them.
struct WeightRows {
    Interpolation interpolation = Interpolation::Linear;
    std::vector<float> times; ///< seconds
    std::vector<float>
        values; ///< a row for each time; for splines three: arriving tangents, weights, leaving ones
};

/// Puts channels together. Where they have the same times and kind, theirs stay; else they become straight lines
/// between all of their times, a spline with seven times more in each segment, a hold with one that ends it.
/// @param weights  by the shape; one without keys rests.
/// @param rest  weights at rest, as many as there are shapes.
/// @param shift  seconds added to each time.
WeightRows weightRows(const std::vector<MotionChannel<1>>& weights, const std::vector<float>& rest,
                      double shift);

} // namespace ka::motion
