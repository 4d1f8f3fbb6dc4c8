#pragma once

#include "KeyEdits.h"

/// What the edits of keys share; for them only.
namespace ka::studio {

/// Has a curve and all above it take in that keys have moved.
void takeInChange(kaAnimationCurve2D& curve);

/// Recomputes the handles of a key and of its neighbours.
void computeTangentsAround(kaControlPoint2D& key, kaAnimationCurve2D& curve);

/// Shortens the handles around a key where two that face each other meet or pass each other, along their directions and to
/// half of the way: time would stand or run backwards there.
void fitHandlesAround(kaControlPoint2D& key, kaAnimationCurve2D& curve);

/// Stores one number of a key: a frame between its neighbours' facing handles, a handle between its key and
/// the neighbour. What lies beyond is brought to the limit.
void setNumber(kaControlPoint2D& key, kaAnimationCurve2D& curve, KeyNumber number, float value);

} // namespace ka::studio
