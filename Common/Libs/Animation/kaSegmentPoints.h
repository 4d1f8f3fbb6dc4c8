#pragma once

#include "kaAnimationExport.h"

/// The four control points of one cubic Bézier segment in the (frame, value) plane.
struct kaSegmentPoints {
    float x0; ///< frame of the key
    float y0; ///< value of the key
    float x1; ///< frame of its out handle
    float y1; ///< value of its out handle
    float x2; ///< frame of the next key's in handle
    float y2; ///< value of the next key's in handle
    float x3; ///< frame of the next key
    float y3; ///< value of the next key

    /// Whether the segment holds its first value: both handles stand on their keys.
    bool isStep() const { return x1 == x0 && y1 == y0 && x2 == x3 && y2 == y3; }
};

/// Samples one segment as `kaAnimationController::computeCurveValue` samples that of a curve: the same float,
/// without a curve.
/// @param points in ascending x for keys; handles anywhere.
/// @param frame in [x0, x3].
/// @param value untouched where nothing is written.
/// @return whether `value` was written. For a segment of zero length: whether y0 differs from 0, nothing
///         written.
/// Cost: the set-up of the segment is done anew by each call; for many samples make a curve.
KA_ANIMATION_API bool kaSampleSegment(const kaSegmentPoints& points, float frame, float& value);
