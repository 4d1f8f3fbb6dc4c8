#pragma once

#include "operations/KeyEdits.h"

#include <utility>
#include <vector>

namespace ka::motion {

/// Curves one after the other.
/// @param parts  for each clip its curve of one field; without keys where it has none, which holds what was
/// before it, or else what comes after it. At least one has keys.
/// @param spans  first and last frame of each clip. @param crossFade  frames that neighbours overlap by;
/// without, the next begins a frame after the last. @param turns  whether values are degrees, of which whole
/// turns do not count.
Keys mergedCurve(const std::vector<Keys>& parts, const std::vector<std::pair<double, double>>& spans,
                 double crossFade, bool turns);

} // namespace ka::motion
