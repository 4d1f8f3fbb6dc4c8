#pragma once

/// The four control points of a cubic Bézier segment in the (frame, value) plane: a key, its out handle, the
/// next key's in handle, the next key.
struct kaSegmentPoints {
    /// Whether the segment holds its first value: both handles stand on their keys.
    bool isStep() const { return x1 == x0 && y1 == y0 && x2 == x3 && y2 == y3; }

    float x0, y0, x1, y1, x2, y2, x3, y3;
};
