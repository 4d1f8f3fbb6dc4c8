#pragma once

#include "check/DocumentOutline.h"
#include "check/Finding.h"

namespace ka::tools {

/// Judges what elements of a document say about each other: ids that stand twice, references that reach
/// nothing, the wrong thing or the same thing again, containers within themselves, curves without a field.
/// Cost: O(n log n).
void checkReferences(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings);

} // namespace ka::tools
