#pragma once

#include "kaAnimationExport.h"
#include "kaSegmentBounds.h"
#include "kaSegmentPoints.h"

/// One cubic Bézier segment between two keys in the (frame, value) plane, ready to be sampled by frame: by
/// `kaSegmentIteration`, which reads nothing else. It fills a cache line.
///
/// Within a segment the frame is no linear function of the curve parameter t. What a sample is, is stated by
/// a formula: the closed one for the roots of a cubic, in double precision, with its roundings, thresholds
/// and order of roots; where that loses its digits, with the coefficient of t^3 below 1e-5, the one root
/// inside the segment to full double precision. `kaSegmentFormula` takes these steps.
///
/// Nearly always the same float is had without them. A few steps of an iteration that costs the same for
/// every kind of handle give a value with a proven bound on its distance from what the formula gives, the
/// formula's own error included. Where all numbers within the bound are one float, that is the sample. The
/// bound needs a time that never runs backwards.
class alignas(64) kaSegment {
  public:
    using Points = kaSegmentPoints;

    explicit kaSegment(const Points& points) : _points(points), _bounds(points) {}

    const Points& points() const { return _points; }
    const kaSegmentBounds& bounds() const { return _bounds; }

    /// Whether x0 <= frame < x3; x0 <= x3. Both comparisons are combined without a branch, which random frames
    /// would mispredict every other time.
    bool contains(float frame) const { return (_points.x0 <= frame) != (_points.x3 <= frame); }

    bool isIterated() const { return _bounds.isIterated(); }
    bool hasFarRoot() const { return _bounds.hasFarRoot(); }

  private:
    Points _points;
    kaSegmentBounds _bounds;
};
