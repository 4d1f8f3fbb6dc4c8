#pragma once

#include <functional>
#include <kaMotion/PlainCurve.h>
#include <vector>

namespace ka::motion {

/// Keys of one curve, in ascending order, no two at one frame. Everything here is pure and writes numbers
/// that a document holds.
using Keys = std::vector<PlainKey>;

/// The same curve with a key at `frame`, by de Casteljau's construction, where it has none; as it is outside
/// of the curve.
Keys withKeyAt(const Keys& keys, float frame);

/// The same with keys at all these frames, which ascend. Cost: linear.
Keys withKeysAt(const Keys& keys, const std::vector<float>& frames);

/// The part of a curve between two frames, with keys at those that it reaches. Of a curve that lies wholly on
/// one side the value that it holds there. `from` is less than `to`.
Keys partOf(const Keys& keys, float from, float to);

/// Every frame f becomes scale * f + shift; scale is above 0. Keys that come to stand at one frame are thrown
/// together, the last staying.
Keys withTime(const Keys& keys, double scale, double shift);

/// The curve backwards between its own first and last frame. What is held by a step until its end is then
/// held from there on: at the one frame of a jump itself the other of its two values counts.
Keys reversed(const Keys& keys);

/// Every value v becomes factor * v + offset.
Keys withValues(const Keys& keys, double factor, double offset);

/// How a curve that is made of values at frames runs between them.
enum class KeyShape : unsigned char { Straight, Smooth, Step };

/// Keys at `frames`, ascending, with the values that go with them. `slopes` are in value per frame and count
/// for smooth ones only. One frame alone is repeated one later, because a curve of one key has no value.
Keys keysThrough(const std::vector<double>& frames, const std::vector<double>& values,
                 const std::vector<double>& slopes, KeyShape shape);

/// What the curve rises by at a frame, in value per frame, looked at an eighth of a frame around.
double slopeAt(const Keys& keys, double frame);

/// A straight segment's handles, half way.
void makeStraight(PlainKey& left, PlainKey& right);

} // namespace ka::motion
