#pragma once

#include "kaHugePages.h"
#include "kaWatchedMemory.h"

#include <cstddef>
#include <vector>

/// Memory for keys and their handles, of which a scene has a hundred thousand: each has two lines of the
/// cache to itself, one beside the other and, where there are many, in huge pages. A key that is looked up
/// then costs one wait for memory, not two or three.
///
/// What is given back is taken anew; all of it goes where it came from with the last key. A build with the
/// address sanitizer stops who uses what has been given back.
class kaKeyMemory {
  public:
    static constexpr std::size_t BlockSize = 128; ///< in bytes

    /// Outlives all keys, those of a host's statics too.
    static kaKeyMemory& the();

    /// @return `BlockSize` bytes, aligned to as many. @throws std::bad_alloc, with nothing changed.
    void* take();
    void giveBack(void* memory) noexcept; ///< What `take` has returned.

  private:
    struct alignas(BlockSize) Block {
        Block* next = nullptr; ///< of those given back
    };
    using Slab = std::vector<Block, kaHugePages::Allocator<Block>>;

    void addSlab();

    std::vector<Slab> _slabs; ///< none ever grows
    Block* _givenBack = nullptr;
    kaWatchedMemory::Quarantine _quarantine;
    std::size_t _taken = 0;
};
