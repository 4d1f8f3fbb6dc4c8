#pragma once

#include <kaSegmentPoints.h>

namespace ka::motion {

/// The part of a segment from `frame`, between its keys, to its second key: the same curve, by de Casteljau's
/// construction. The first point's frame is `frame` itself.
kaSegmentPoints segmentFrom(const kaSegmentPoints& segment, float frame);
/// The part up to `frame`.
kaSegmentPoints segmentUpTo(const kaSegmentPoints& segment, float frame);

} // namespace ka::motion
