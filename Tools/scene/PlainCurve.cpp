#include "scene/PlainCurve.h"

#include <algorithm>

namespace ka::tools {

kaSegmentPoints segmentBetween(const PlainKey& left, const PlainKey& right) {
    return {left.x, left.y, left.outX, left.outY, right.inX, right.inY, right.x, right.y};
}

std::optional<float> sampleKeys(const std::vector<PlainKey>& keys, float frame) {
    if (keys.size() < 2)
        return std::nullopt;
    const auto right = std::upper_bound(keys.begin(), keys.end(), frame,
                                        [](float wanted, const PlainKey& key) { return wanted < key.x; });
    // Before its first key a curve gives the value of its second.
    if (right == keys.begin())
        return keys[1].y;
    if (right == keys.end())
        return keys.back().y;
    float value = 0.0F;
    return kaSampleSegment(segmentBetween(*(right - 1), *right), frame, value) ? std::optional<float>(value)
                                                                               : std::nullopt;
}

} // namespace ka::tools
