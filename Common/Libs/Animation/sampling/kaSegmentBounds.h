#pragma once

#include "kaSegmentPoints.h"

/// What the iteration needs to know of a segment as a whole; t runs from 0 to 1 along it.
///
/// Where two numbers are packed in one the first is that number, whose lower 16 bits do not matter, and the
/// second has these for its upper ones.
struct kaSegmentBounds {
    explicit kaSegmentBounds(const kaSegmentPoints& points);

    /// Whether the iteration is of any use: neither for steps nor where the time runs backwards.
    bool isIterated() const { return perFrame > 0.0F; }
    /// Whether the formula loses digits to a root far away, and so much is to be taken from its steps.
    bool hasFarRoot() const { return perFrame < 0.0F; }

    float perFrame = 0.0F; ///< 1 / length in frames; 0 where the iteration is of no use, less with a far root
    /// Parts of the length between which the formula may take its roots from elsewhere.
    float doubtFrom = 0.0F;
    float doubtTo = 0.0F;
    /// Of t, by which the formula's roots lie lower than true ones, for its angles are converted with a pi of
    /// 12 digits; packed with how far off that may be.
    float lowered = 0.0F;
    /// Of the time, in frames, by which formula and iteration may miss a root; what blending the values
    /// rounds off is in it.
    float slack = 0.0F;
    float bend = 0.0F;  ///< of the time's second derivative by t, in frames
    float slope = 0.0F; ///< of the value's derivative by t
    /// For a start: the inverse slopes of the time at both keys, of vertical ones less; packed.
    float inverseSlopes = 0.0F;
};
