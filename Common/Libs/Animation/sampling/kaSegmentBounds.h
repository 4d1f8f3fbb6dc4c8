#pragma once

#include "kaSegmentPoints.h"

/// What the iteration needs to know of a segment as a whole; t runs from 0 to 1 along it.
struct kaSegmentBounds {
    /// Of t: what the last step of the iteration may leave.
    static constexpr float Settled = 1e-11F;

    explicit kaSegmentBounds(const kaSegmentPoints& points);

    /// Whether the iteration is of any use: neither for steps nor where the time runs backwards.
    bool isIterated() const { return perFrame > 0.0F; }

    float perFrame = 0.0F; ///< 1 / length in frames; 0 where the iteration is of no use
    /// Parts of the length between which the formula may take its roots from elsewhere.
    float doubtFrom = 0.0F;
    float doubtTo = 0.0F;
    /// Of t, by which the formula's roots lie lower than true ones: its angles are converted with a pi of
    /// 12 digits.
    float bias = 0.0F;
    float slack = 0.0F;    ///< of the time, in frames, by which formula and iteration may miss a root
    float bend = 0.0F;     ///< of the time's second derivative by t, in frames
    float slope = 0.0F;    ///< of the value's derivative by t
    float rounding = 0.0F; ///< of what blending the values rounds off, and the last step's own error leaves
};
