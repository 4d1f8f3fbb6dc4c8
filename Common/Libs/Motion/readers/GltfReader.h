#pragma once

#include <kaMotion/KeyBudget.h>

namespace ka::motion {

class ConfinedFolder;

/// Reads the nodes and animations of a glTF 2 file (text or binary) through a third-party reader. Meant for
/// `readInChild`.
///
/// Animated translations, rotations and scales become channels with the file's interpolation; a cubic spline
/// keeps its tangents. Everything else that the file holds is told in the notes.
/// @param budget  keys that the motion may have; more are refused.
/// @throws Failure (Unreadable), its text without the file's name.
Motion readGltf(const ConfinedFolder& folder, KeyBudget budget = KeyBudget());

/// Whether the file says that it is of the first version of glTF, which `readGltf` cannot read.
bool isFirstGltf(const ConfinedFolder& folder);

} // namespace ka::motion
