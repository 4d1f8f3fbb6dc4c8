#pragma once

#include "kaSegment.h"

#include <cstddef>

class kaChildList;
class kaControlPoint2D;

/// The keys of a curve sampled as they stand in their list, for after an edit that would cost much to pack
/// again: a key recorded, several keys dragged. A sample costs ten times as much as one of packed keys, but
/// nothing has to be made before it.
///
/// After as many samples as cost about what packing costs, keys that are left alone are better packed.
class kaUnpackedKeys {
  public:
    /// The segment from one key to the next. A missing handle stands on its key.
    static kaSegment between(const kaControlPoint2D& left, const kaControlPoint2D& right);

    /// Whether the keys can be sampled in their list, and are so many that it pays.
    static bool isFor(const kaChildList& keys);

    explicit kaUnpackedKeys(const kaChildList& keys); ///< `isFor` them, and they are not edited from here on.

    /// Counts a sample. @return whether it should be one of packed keys.
    bool isWornOut() { return _left == 0 || --_left == 0; }

    bool hasSpan() const { return _begin < _end; }
    /// As `kaCurveView::segmentAt`. The segment stands until the next call. Cost: O(log n) in the keys.
    const kaSegment* segmentAt(float frame);
    /// As `kaCurveView::sample`, where no segment holds the frame.
    bool sampleOutside(float frame, float& value) const;
    const kaChildList& list() const { return _keys; }
    const kaSegment& lastSegment() const { return _segment; }

  private:
    const kaChildList& _keys;
    std::size_t _left; ///< samples until the keys are better packed
    float _begin;      ///< frame of the first key
    float _end;        ///< frame of the last key
    kaSegment _segment;
};
