#pragma once

#include <kaMotion/DocumentOutline.h>
#include <kaMotion/Finding.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Judges whether a scene and a document go together: what the scene's reader has to say, nodes that list
/// what the document does not have, curves whose field no node lists, so that they move nothing.
/// @throws Failure (Unreadable) when the scene cannot be read.
void checkScene(const std::string& path, const DocumentOutline& outline, const ElementsById& byId,
                FindingList& findings);

} // namespace ka::motion
#pragma GCC visibility pop
