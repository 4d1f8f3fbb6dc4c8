#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaControlPoint2D.h>
#include <kaMotion/PlainCurve.h>

namespace ka::motion {

std::vector<PlainKey> plainKeys(const kaAnimationCurve2D& curve) {
    std::vector<PlainKey> keys;
    for (const auto& [frame, key] : curve.getPoints()) {
        const osg::Pnt2f at = key->getPosition();
        const osg::Pnt2f in = key->getInTangent() == nullptr ? at : key->getInTangent()->getPosition();
        const osg::Pnt2f out = key->getOutTangent() == nullptr ? at : key->getOutTangent()->getPosition();
        keys.push_back({at[0], at[1], in[0], in[1], out[0], out[1]});
    }
    return keys;
}

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

} // namespace ka::motion
