#pragma once

#include <algorithm>
#include <cmath>

/// A frame folded by whole lengths into the range that repeats: frame - (hi - lo) * floor((frame - lo) / (hi
/// - lo)), in double, rounded to float once.
///
/// Edges: the result never leaves [lo, hi]; it may be hi, where the exact one lies closer to hi than the next
/// float does. A range of zero length gives lo. A range that ends before it begins is none to repeat: what
/// the formula gives lies beyond its end. A frame that is not finite gives NaN.
inline float kaFold(float frame, float lo, float hi) {
    const auto begin = static_cast<double>(lo);
    const auto end = static_cast<double>(hi);
    const double length = end - begin;
    if (length == 0.0)
        return lo;
    const auto at = static_cast<double>(frame);
    const double folded = at - length * std::floor((at - begin) / length);
    return static_cast<float>(length > 0.0 ? std::clamp(folded, begin, end) : folded);
}
