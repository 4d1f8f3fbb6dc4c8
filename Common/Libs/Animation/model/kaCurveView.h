#pragma once

#include "kaEdits.h"
#include "kaHugePages.h"
#include "kaSegment.h"
#include "kaUnpackedKeys.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class kaChildList;
class kaControlPoint2D;

/// What sampling reads of a curve: its registered keys and handles in ascending order of x, packed as
/// segments.
///
/// A cache with one rule: it is valid while the key list is linked and its revision is the one that was packed,
/// since every change of a key, a handle or the list raises the revision. After a few keys have moved between
/// their neighbours only the segments next to them are packed again, and after any other edit of many keys none
/// (`kaUnpackedKeys`) until that pays. For a list that is not linked all is packed
/// again for every sample.
class kaCurveView {
  public:
    /// Packs the curve's keys unless that has been done since their last change.
    void refresh(const kaChildList* keys) {
        if (_edits != kaEdits::count)
            update(keys);
    }

    /// Whether the packed form is cached: false where the key list is packed again after any edit.
    bool isKept() const { return _kept; }

    /// Whether there are keys at two frames or more: without, no sample writes a value.
    bool hasSpan() const { return _unpacked ? _unpacked->hasSpan() : !_segments.empty(); }

    /// Whether segments stand until the curve is edited: not while keys are sampled as they stand in the list.
    bool isPacked() const { return !_unpacked; }

    /// `kaAnimationController::computeCurveValue` for the packed keys.
    /// Cost: a look at the segment sampled last, else one at the cell of the frame and the keys in it.
    bool sample(float frame, float& value);

    /// The segment that holds `frame`; null where none does: before the first key, from the last one on and
    /// without keys at two frames. Good until the curve is edited or, unless `isPacked`, until the next call. Cost:
    /// as of `sample`.
    const kaSegment* segmentAt(float frame);
    /// The same of packed keys, without a look at the segment of the last call.
    const kaSegment* packedSegmentAt(float frame) const {
        return frame >= _begin && frame < _end ? &_segments[indexAt(frame)] : nullptr;
    }
    /// Behind the last of the segments that lie side by side with that of the last call.
    const kaSegment* segmentsEnd() const {
        return _unpacked ? &_unpacked->lastSegment() + 1 : _segments.data() + _segments.size();
    }

  private:
    void update(const kaChildList* keys);
    void renew(const kaChildList* keys);
    const kaSegment* unpackedSegmentAt(float frame);
    bool mend(const kaChildList& keys);
    bool staysInCell(std::size_t place, float frame) const;
    void pack(const kaChildList* keys);
    void pack(const std::vector<const kaControlPoint2D*>& ascending);
    void divide();
    void noteEnds();
    std::size_t cellOf(float frame) const;
    std::size_t indexAt(float frame) const;
    std::size_t searchIndex(float frame) const;
    std::size_t upperBoundAmong(std::size_t from, std::size_t to, float frame) const;

    std::vector<kaSegment, kaHugePages::Allocator<kaSegment>> _segments;
    std::vector<float> _frames; ///< of the keys, apart, so that a search touches little memory
    /// The span of the curve in as many cells of equal width as there are keys: how many keys stand in cells
    /// before each. Empty for few keys and for spans that cannot be divided.
    std::vector<std::uint32_t> _cells;
    float _cellsPerFrame = 0.0F;
    float _begin = 0.0F; ///< frame of the first key
    float _end = 0.0F;   ///< frame of the last key
    /// Most segments have the number of the cell that their middle lies in, as those of captured motion do:
    /// then a look at that segment finds it without one at the cell and its keys.
    bool _even = false;
    float _firstValue = 0.0F; ///< of the first key
    std::size_t _count = 0;   ///< registered keys, those that share an x included
    std::uint64_t _edits = 0; ///< of the object model when the packed form was last found true
    std::uint64_t _revision = 0;
    bool _packed = false;
    bool _kept = false;
    bool _inListOrder = false; ///< the list holds the packed keys and nothing else, in their order

    std::size_t _last = 0; ///< the segment sampled last
    /// What samples the keys instead where the last edit left too much to pack; the packed form is invalid then.
    std::unique_ptr<kaUnpackedKeys> _unpacked;
};

/// Never falls while the frame grows, so a key in an earlier cell is an earlier key.
inline std::size_t kaCurveView::cellOf(float frame) const {
    const auto cell = static_cast<std::uint32_t>((frame - _begin) * _cellsPerFrame);
    return std::min<std::size_t>(cell, _segments.size() - 1);
}

/// The number of the segment that holds `frame`, which stands between the first key and the last.
inline std::size_t kaCurveView::indexAt(float frame) const {
    if (_even) {
        const std::size_t cell = cellOf(frame);
        if (_segments[cell].contains(frame))
            return cell;
    }
    return searchIndex(frame);
}
