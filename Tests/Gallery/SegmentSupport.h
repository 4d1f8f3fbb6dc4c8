#pragma once

#include "ReferenceSampling.h"

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

class kaAnimationCurve2D;
class kaControlPoint2D;

namespace ka_test {

/// Two keys and a frame between them.
struct SegmentCase {
    Key left;
    Key right;
    float frame = 0.0F;
};

/// One curve of two keys whose places are written anew for every sample.
class ModuleSegment {
  public:
    ModuleSegment();

    Sample sample(const SegmentCase& segment);

  private:
    kaAnimationCurve2D* _curve;
    kaControlPoint2D* _left;
    kaControlPoint2D* _right;
};

/// What the module answers, for any curve.
Sample moduleSample(kaAnimationCurve2D* curve, float frame);

/// Same flag, and the same float where one is written (every NaN counts as the same).
bool sameSample(const Sample& a, const Sample& b);

/// The same numbers on every machine.
class Random {
  public:
    explicit Random(std::uint64_t seed) : _state(seed) {}

    std::uint64_t next();
    /// In [0, 1).
    double unit() { return static_cast<double>(next() >> 11U) * 0x1p-53; }
    double between(double low, double high) { return low + (high - low) * unit(); }
    bool chance(double share) { return unit() < share; }

  private:
    std::uint64_t _state;
};

/// With handles anywhere, many of them at special places: on keys, at the ends, a third apart or nearly.
SegmentCase randomSegment(Random& random);

/// Whether both handles stand on their keys, which makes the segment hold its first value.
bool isStep(const SegmentCase& segment);

/// |D| of the depressed cubic that the formula solves; what it compares with its threshold.
double discriminant(const SegmentCase& segment);

std::ostream& operator<<(std::ostream& stream, const SegmentCase& segment);
std::ostream& operator<<(std::ostream& stream, const Sample& sample);

/// Reads back what `operator<<` wrote.
bool readSegment(std::istream& stream, SegmentCase& segment);

/// Reads a table kept in a file: every line but empty ones and remarks (#).
/// @param readRow  gets the words of a line and says whether they are a row.
/// @throws std::runtime_error with the line that is none.
void readTable(const std::string& path, const std::function<bool(std::istream& words)>& readRow);

} // namespace ka_test
