#pragma once

#include "kaAnimationCurve2D.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaControlPoint2D.h"

#include <string>
#include <utility>
#include <vector>

namespace ka_test {

/// A place in (frame, value).
struct Spot {
    float x;
    float y;
};

/// A key with its handles as plain data.
struct Key {
    Spot key;
    Spot in;
    Spot out;
};

/// A key whose handles lie on it.
inline Key stepKey(float x, float y) {
    return {{x, y}, {x, y}, {x, y}};
}

/// A key that the curve does not know yet, of type `TANGENT_USER`, with its handles in place.
kaControlPoint2D* makeKey(const Key& key);

/// A registered curve with keys at these places, added one by one, so that their handles are the computed
/// ones.
kaAnimationCurve2D* makeCurve(const std::vector<Spot>& spots);

/// A registered curve with exactly these keys and handles, keys at one frame included.
kaAnimationCurve2D* makeCurve(const std::vector<Key>& keys);

/// A block of registered curves; a track or a clip of any objects, added without any check.
kaAnimationUnit* makeBlock(const std::vector<kaAnimationCurve2D*>& curves);
kaAnimationStreak* makeTrack(const std::vector<kaAnimationObject*>& objects);
kaAnimationStrip* makeClip(const std::vector<kaAnimationObject*>& objects);

/// A block with one straight curve over the span.
kaAnimationUnit* makeBlock(float begin, float end);

kaAnimationSequence* makeSequence(const std::string& name, float begin, float end);

/// The children as they stand in the list.
std::vector<kaControlPoint2D*> keysOf(const kaAnimationCurve2D& curve);

Spot spotOf(const kaControlPoint2D& point);
void place(kaControlPoint2D& point, const Spot& spot);

/// Key and handles as they stand; a handle that is missing stands on the key.
Key keyOf(const kaControlPoint2D& point);

} // namespace ka_test
