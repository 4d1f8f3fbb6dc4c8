#pragma once

/// The reference of every ratio: the closed formula for one cubic segment, written straightforwardly and
/// computed anew for each sample.
struct PlainSegment {
    float x0, y0, x1, y1, x2, y2, x3, y3;
};

/// @return whether the segment has a value at `frame`, which is inside it.
bool samplePlainly(const PlainSegment& segment, float frame, float& value);
