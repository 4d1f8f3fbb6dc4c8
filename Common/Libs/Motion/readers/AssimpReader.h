#pragma once

#include <kaMotion/KeyBudget.h>

namespace ka::motion {

class ConfinedFolder;

/// Whether the third-party library has a reader for files with this extension (without dot).
bool isKnownToAssimp(const std::string& extension);

/// Reads the nodes and animations of a model of any other kind through the Assimp library. Meant for
/// `readInChild`.
///
/// Keys become linear channels; rotations are quaternions. Everything else that the file holds is told in the
/// notes.
/// @param budget  keys that the motion may have; more are refused.
/// @throws Failure (Unreadable), its text without the file's name.
Motion readWithAssimp(const ConfinedFolder& folder, KeyBudget budget = KeyBudget());

} // namespace ka::motion
