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

/// Whether the scene holds the record's value already, as far as a glance tells: false when that takes
/// resolving the record anew, or is not a matter of comparing numbers. Calls nobody.
bool sceneHolds(const kaAnimationField& field);

// Start fetching from memory what a write will touch, each step when the one before has had its time.

void fetchRecord(const kaAnimationField& field);
void fetchBinding(const kaAnimationField& field);
void fetchTarget(const kaAnimationField& field);

} // namespace kaFieldAccess
