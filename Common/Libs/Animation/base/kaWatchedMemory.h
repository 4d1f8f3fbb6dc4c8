#pragma once

#include <cstddef>

#ifdef KA_WATCHED_MEMORY
#include "kaAnimationExport.h"

#include <array>
#include <cstring>
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#endif

/// What allocators that keep free memory tell the address sanitizer, which knows the heap alone: whoever
/// reads or writes memory that is free is stopped, as on the heap. Does nothing in builds without the
/// sanitizer.
namespace kaWatchedMemory {

#ifdef KA_WATCHED_MEMORY

/// From now on a use of the bytes is an error.
inline void shut(void* memory, std::size_t bytes) {
    ASAN_POISON_MEMORY_REGION(memory, bytes);
}
/// The same, and what stood there is gone: a pointer left behind would hide that what it points to has
/// leaked.
inline void forbid(void* memory, std::size_t bytes) {
    ASAN_UNPOISON_MEMORY_REGION(memory, bytes);
    std::memset(memory, 0, bytes);
    shut(memory, bytes);
}
inline void allow(void* memory, std::size_t bytes) {
    ASAN_UNPOISON_MEMORY_REGION(memory, bytes);
}

/// Keys, handles and fields that have memory. The search for leaks sees that of the allocators alone, so
/// tests look here whether any of them was lost.
inline KA_ANIMATION_API std::size_t inUse = 0;

/// A block goes to an object.
inline void take(void* memory, std::size_t bytes) {
    allow(memory, bytes);
    ++inUse;
}

/// Memory that came from the system is searched for pointers to what lies on the heap.
inline void search(void* memory, std::size_t bytes) {
    __lsan_register_root_region(memory, bytes);
}
inline void searchNoMore(void* memory, std::size_t bytes) {
    __lsan_unregister_root_region(memory, bytes);
}

/// Free blocks on their way back to an allocator: each waits until many others have come, or the next object
/// would stand where the last one went and nobody would notice who still uses that one.
class Quarantine {
  public:
    /// @return the block that leaves for this one to wait; null while there is room.
    void* exchange(void* block) {
        --inUse;
        void* leaving = _blocks[_next];
        _blocks[_next] = block;
        _next = (_next + 1) % _blocks.size();
        return leaving;
    }
    void clear() { _blocks.fill(nullptr); }

  private:
    std::array<void*, 1024> _blocks{};
    std::size_t _next = 0;
};

#else

inline void shut(void* /*memory*/, std::size_t /*bytes*/) {}
inline void forbid(void* /*memory*/, std::size_t /*bytes*/) {}
inline void allow(void* /*memory*/, std::size_t /*bytes*/) {}
inline void take(void* /*memory*/, std::size_t /*bytes*/) {}
inline void search(void* /*memory*/, std::size_t /*bytes*/) {}
inline void searchNoMore(void* /*memory*/, std::size_t /*bytes*/) {}

/// Holds nothing up.
class Quarantine {
  public:
    void* exchange(void* block) { return block; }
    void clear() {}
};

#endif

} // namespace kaWatchedMemory
