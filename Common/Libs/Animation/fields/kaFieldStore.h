#pragma once

#include "kaAnimationTypes.h"

class kaAnimationField;

/// Makes, finds, renames and frees the field records, which `kaObjectRegistry` lists by id.
namespace kaFieldStore {

/// The record with that id; null when there is none.
kaAnimationField* find(kaUID id);

/// A registered record; id 0 draws a fresh one. A record whose id is taken is made but not registered.
kaAnimationField* make(kaUID id);
/// A registered copy with a fresh id; null gives null.
kaAnimationField* duplicate(kaAnimationField* field);
/// Takes the record out of the registry and frees it; null does nothing. Curves that name it are not changed.
void destroy(kaAnimationField* field);
/// Gives a record that stands under `from` the id `to`, which is free. A record that is not registered only
/// gets the id. When memory runs out nothing is changed.
void rename(kaAnimationField& field, kaUID to);

} // namespace kaFieldStore
