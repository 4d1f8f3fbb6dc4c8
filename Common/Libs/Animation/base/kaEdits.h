#pragma once

#include <cstdint>

/// Counts every change of what evaluation reads: objects and fields made or destroyed, members set. For the few
/// caches that any edit invalidates: those of key lists that resolve their ids at each use, and a pass that has
/// called the host. Every other cache is invalidated by the objects that it was made from (`kaDependents`).
namespace kaEdits {

inline std::uint64_t count = 1;

inline void note() {
    ++count;
}

} // namespace kaEdits
