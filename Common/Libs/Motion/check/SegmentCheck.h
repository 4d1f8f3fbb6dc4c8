#pragma once

#include <kaSegmentPoints.h>
#include <optional>

namespace ka::motion {

/// Whether a segment's time runs backwards somewhere, by more than the decimals of a document can make it.
bool turnsBack(const kaSegmentPoints& points);

/// A frame from the segment's first key on and before its second for which the sampler has no value, a finite
/// one; nothing when there is none. Whole frames, which are what is played, go before others.
///
/// The sampler's formula fails, where it does, on stretches of the segment between frames that can be
/// computed: one float of every such stretch is tried. Ordinary segments are told apart without a sample.
std::optional<float> frameWithoutValue(const kaSegmentPoints& points);

} // namespace ka::motion
