#pragma once

class kaAnimationField;

/// Moves one float between a field record and the scene; `kaAnimationUtils` offers both to hosts.
///
/// Cost: one store look-up and a few compares where the record addresses what it addressed the last time and
/// the value is the scene's; no allocation then, text forms aside.
namespace kaFieldAccess {

/// Writes the record's value where it differs from the scene's and announces the change.
/// @return false when the container or the node is missing.
bool write(kaAnimationField& field);

/// The scene's value, angles in degrees; 0 when nothing can be read.
float read(kaAnimationField& field);

} // namespace kaFieldAccess
