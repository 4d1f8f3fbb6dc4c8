#pragma once

#include <kaMotion/DocumentOutline.h>
#include <kaMotion/Finding.h>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Judges what elements of a document say about each other: ids that stand twice, references that reach
/// nothing, the wrong thing or the same thing again, containers within themselves, curves without a field.
/// Cost: O(n log n).
void checkReferences(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings);

} // namespace ka::motion
#pragma GCC visibility pop
