#pragma once

#include <kaMotion/PlainCurve.h>
#include <vector>

class kaAnimationCurve2D;

namespace ka::motion {

/// New keys for a registered curve. Operations gather them all before they change the first curve, so that
/// one that is cancelled or fails leaves everything as it was.
struct CurveEdit {
    kaAnimationCurve2D* curve = nullptr;
    std::vector<PlainKey> keys;
};

/// Gives each curve its new keys in place of the old ones, which are destroyed. The handles are taken as they
/// are: nothing places them anew. An edit without keys leaves its curve alone.
void apply(const std::vector<CurveEdit>& edits);

/// What a value of a curve is at a frame, as playback has it: held before its first and after its last key.
/// 0 for a curve that has no value.
double heldValue(const std::vector<PlainKey>& keys, double frame);

/// Whether the keys of both are the same numbers.
bool isSame(const std::vector<PlainKey>& a, const std::vector<PlainKey>& b);

} // namespace ka::motion
