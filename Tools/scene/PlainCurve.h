#pragma once

#include <kaSegmentPoints.h>
#include <optional>
#include <vector>

class kaAnimationCurve2D;

namespace ka::tools {

/// A key and its handles as numbers; a missing handle stands on the key.
struct PlainKey {
    float x = 0.0F, y = 0.0F, inX = 0.0F, inY = 0.0F, outX = 0.0F, outY = 0.0F;
};

/// The keys of a registered curve, of those at one frame the first.
std::vector<PlainKey> plainKeys(const kaAnimationCurve2D& curve);

/// The segment between two keys, as the sampler takes it.
kaSegmentPoints segmentBetween(const PlainKey& left, const PlainKey& right);

/// What `kaAnimationController::computeCurveValue` gives for a curve with these keys, for curves that are no
/// longer or not yet registered. Cost: O(log n).
/// @param keys  in ascending order, no two at one frame.
/// @return nothing when there is no value.
std::optional<float> sampleKeys(const std::vector<PlainKey>& keys, float frame);

} // namespace ka::tools
