#pragma once

#include "kaAnimationExport.h"

#include <cstddef>

class kaAnimationCurve2D;

/// Many samples in one call, for pictures, export and baking: several times as fast as one by one, for the
/// steps of one sample are taken beside those of others, in registers as wide as the processor's.
///
/// Every sample is the very float that `kaAnimationController::computeCurveValue` gives, with its edge rules,
/// and is refused where that refuses. Nothing is stored in any field.
class KA_ANIMATION_API kaCurveSampling {
  public:
    /// One curve at many frames.
    /// @param curve    may be null; then no value is written.
    /// @param frames   `count` of them, in any order; those in ascending order cost least.
    /// @param count    how many; 0 does nothing.
    /// @param values   room for `count`, in the field's unit; where there is no value the element is left
    /// alone.
    /// @param written  room for `count`: whether each value was written; null where nobody asks.
    /// @return how many were written.
    /// Cost: in the order of the frames O(1) each, else O(log n) in the keys; no allocation.
    static std::size_t sample(kaAnimationCurve2D* curve, const float* frames, std::size_t count,
                              float* values, bool* written = nullptr);

    /// Many curves at one frame, each as it is: neither held to its begin and end nor repeated.
    /// @param curves   `count` of them, null ones among them.
    /// @param count    how many; 0 does nothing.
    /// @param frame    any frame.
    /// @param values   room for `count`, one for each curve; where there is no value the element is left
    /// alone.
    /// @param written  room for `count`: whether each value was written; null where nobody asks.
    /// @return how many were written.
    /// Cost: O(1) a curve where frames follow each other, else O(log n) in its keys; no allocation.
    static std::size_t sample(kaAnimationCurve2D* const* curves, std::size_t count, float frame,
                              float* values, bool* written = nullptr);
};
