#pragma once

#include <cstdint>

/// How often anything that evaluation reads of the object model has changed: an object or a field came or
/// went, or a member of one was written that a setter guards. For what is read anew after any edit at all:
/// key lists that do not know their keys, and a walk that led out to the host. All else follows the objects
/// that it was made of
/// (`kaDependents`).
namespace kaEdits {

inline std::uint64_t count = 1;

inline void note() {
    ++count;
}

} // namespace kaEdits
