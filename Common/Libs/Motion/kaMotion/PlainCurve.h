#pragma once

#include <kaSegmentPoints.h>
#include <optional>
#include <vector>

class kaAnimationCurve2D;

#pragma GCC visibility push(default)
namespace ka::motion {

/// A key and its handles as numbers; a missing handle stands on the key.
struct PlainKey {
    float x = 0.0F;    ///< frame
    float y = 0.0F;    ///< value
    float inX = 0.0F;  ///< frame of the handle that arrives
    float inY = 0.0F;  ///< its value
    float outX = 0.0F; ///< frame of the handle that leaves
    float outY = 0.0F; ///< its value
};

/// The keys of a registered curve, of those at one frame the first.
std::vector<PlainKey> plainKeys(const kaAnimationCurve2D& curve);

/// The segment between two keys, as the sampler takes it.
kaSegmentPoints segmentBetween(const PlainKey& left, const PlainKey& right);

/// What `kaAnimationController::computeCurveValue` gives for a curve with these keys, for curves that are no
/// longer or not yet registered. Cost: O(log n).
/// @param keys  in ascending order, no two at one frame.
/// @param frame  where.
/// @return nothing when there is no value.
std::optional<float> sampleKeys(const std::vector<PlainKey>& keys, float frame);

} // namespace ka::motion
#pragma GCC visibility pop
