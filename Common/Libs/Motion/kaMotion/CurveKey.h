#pragma once

#include <cstddef>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How a curve runs from one of its keys to the next.
enum class SegmentShape : unsigned char {
    Step,     ///< holds the key's value
    Straight, ///< handles at half way, on the line
    Smooth    ///< a cubic in time with the slopes given at its two ends
};

/// A key of one scalar curve that is still in seconds and doubles. Slopes are in value per second and count
/// only next to a `Smooth` segment.
struct CurveKey {
    double time = 0.0;                            ///< seconds
    double value = 0.0;                           ///< in the field's unit
    double inSlope = 0.0;                         ///< value per second, arriving
    double outSlope = 0.0;                        ///< value per second, leaving
    SegmentShape toNext = SegmentShape::Straight; ///< how it runs to the next key
};

/// The value at `u` in [0, 1] of the segment from `a` to `b`.
double segmentValue(const CurveKey& a, const CurveKey& b, double u);

/// Moves keys onto the whole frame that their time stands for where single precision, in which most model
/// files store times, cannot tell the two apart.
void snapToFrames(std::vector<CurveKey>& keys, double fps);

/// A key with both handles as the animation stores it: frames and values in single precision, each of them a
/// float that a document gives back as it is.
struct BezierKey {
    float frame = 0.0F;    ///< of the key
    float value = 0.0F;    ///< of the key
    float inFrame = 0.0F;  ///< of the handle that arrives
    float inValue = 0.0F;  ///< of the handle that arrives
    float outFrame = 0.0F; ///< of the handle that leaves
    float outValue = 0.0F; ///< of the handle that leaves
};

/// What layOutCurve() makes of a list of keys.
struct BezierCurve {
    std::vector<BezierKey> keys;      ///< by ascending frame
    std::vector<std::size_t> sources; ///< for each key its place in the list it was made from
    std::size_t merged = 0;           ///< keys left out because a document cannot tell their frames apart
};

/// Turns keys into Bézier keys at `fps` frames a second. Keys that fall on the frame of their predecessor are
/// left out. A single key is repeated one frame later, because a curve of one key has no value.
///
/// Handles stand on their keys for steps, half way for straight segments, and near the thirds for smooth
/// ones, where time runs evenly along the curve. Near, because the sampler divides by a coefficient that
/// vanishes at the thirds: those numbers are taken for which the solution stays exact. All of them are chosen
/// among the numbers that a document holds, with its six decimals.
BezierCurve layOutCurve(const std::vector<CurveKey>& keys, double fps);

} // namespace ka::motion
#pragma GCC visibility pop
