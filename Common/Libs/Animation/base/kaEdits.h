#pragma once

#include "kaRecentChanges.h"

#include <cstdint>

class kaAnimationObject;

/// How often anything that evaluation reads of the object model has changed: an object or a field came or
/// went, a member, a list or a set of one was written. What is remembered of many objects at once
/// (`kaEvaluationPlan`) holds while the count stands. Host code cannot write such a member without passing
/// here; the records of the fields, which it writes directly, are read anew each time.
///
/// Keys and handles are what is changed most, dragged with the mouse, and what an evaluation reads least of:
/// such an edit leaves all but what was made of that one curve's keys.
namespace kaEdits {

inline std::uint64_t count = 1;
/// The objects whose lists mirror the keys that changed. For a key that is listed by its id alone none is
/// named: such a list is read anew after any edit.
inline kaRecentChanges<kaAnimationObject> keysOf;

inline void note() {
    keysOf.noteAll(++count);
}

/// A key or a handle has changed in its place; a list that mirrors it says so, too.
inline void noteKey() {
    ++count;
}

/// A key has changed in the list of `owner`.
inline void noteKeyOf(const kaAnimationObject& owner) {
    keysOf.note(owner, ++count);
}

} // namespace kaEdits
