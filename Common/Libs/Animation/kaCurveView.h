#pragma once

#include "kaSegment.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class kaAnimationCurve2D;
class kaChildList;

/// What sampling reads of a curve: its registered keys and handles in ascending order of x, packed.
///
/// This class alone answers whether the packed form is still true: it is while the key list is mirrored and
/// its revision stands, for every way in which a key, a handle or the list can change raises that revision. A
/// list that is not mirrored is packed anew for every sample.
class kaCurveView {
  public:
    /// Packs the curve's keys unless that has been done since their last change.
    void refresh(const kaAnimationCurve2D& curve, const kaChildList* keys);

    /// `kaAnimationController::computeCurveValue` for the packed keys.
    bool sample(float frame, float& value);

  private:
    /// A key's value and its handles; a missing handle stands on the key.
    struct Key {
        float y, inX, inY, outX, outY;
    };

    void pack(const kaAnimationCurve2D& curve, const kaChildList* keys);
    void add(const class kaControlPoint2D& point);
    std::size_t upperBound(float frame) const;
    const kaSegment& segment(std::size_t left);

    static constexpr std::size_t NoSegment = static_cast<std::size_t>(-1);

    std::vector<float> _x;
    std::vector<Key> _keys;
    std::size_t _count = 0; ///< registered keys, those that share an x included
    std::uint64_t _revision = 0;
    bool _packed = false;

    std::size_t _left = NoSegment; ///< the segment sampled last
    kaSegment _segment;
};
