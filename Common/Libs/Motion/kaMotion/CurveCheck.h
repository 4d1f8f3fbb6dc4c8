#pragma once

#include <kaMotion/DocumentOutline.h>
#include <kaMotion/Finding.h>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Judges the keys of every curve of a document as loading makes them: two at one frame, handles that turn
/// back in time, segments for which the sampler has no value. Handles that were not set by hand are placed as
/// loading places them, whatever the file says of them. Cost: O(n log n).
void checkCurves(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings);

} // namespace ka::motion
#pragma GCC visibility pop
