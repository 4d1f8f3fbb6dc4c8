#pragma once

#include <cstdint>

/// How often anything that evaluation reads of the object model has changed: an object or a field came or
/// went, a member, a list or a set of one was written. What is remembered of many objects at once
/// (`kaEvaluationPlan`) holds while the count stands. Host code cannot write such a member without passing
/// here; the records of the fields, which it writes directly, are read anew each time.
namespace kaEdits {

inline std::uint64_t count = 1;

inline void note() {
    ++count;
}

} // namespace kaEdits
