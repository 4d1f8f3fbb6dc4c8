#pragma once

#include "check/DocumentOutline.h"
#include "check/Finding.h"

#include <string>

namespace ka::tools {

/// Judges whether a scene and a document go together: what the scene's reader has to say, nodes that list
/// what the document does not have, curves whose field no node lists, so that they move nothing.
/// @throws Failure (Unreadable) when the scene cannot be read.
void checkScene(const std::string& path, const DocumentOutline& outline, const ElementsById& byId,
                FindingList& findings);

} // namespace ka::tools
