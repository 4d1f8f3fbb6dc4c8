#pragma once

#include "kaHugePages.h"
#include "kaWatchedMemory.h"

#include <cstddef>
#include <memory>
#include <vector>

/// Memory for keys and their handles, of which a scene has a hundred thousand: each has two cache lines to
/// itself, one beside the other and, where there are many, in huge pages. Looking a key up is one
/// cache miss then, not two or three.
///
/// Blocks come in slabs of up to a huge page. A block that is given back is the next to be taken; a slab goes
/// back to the system with its last block, but for one that is kept for the next key, which goes with the
/// last key of all. A build with the address sanitizer stops who uses what has been given back.
class kaKeyMemory {
  public:
    static constexpr std::size_t BlockSize = 128; ///< in bytes

    /// Outlives all keys, those of a host's statics too.
    static kaKeyMemory& the();

    /// @return `BlockSize` bytes, aligned to as many. @throws std::bad_alloc, with nothing changed.
    void* take();
    /// What `take` has returned. Allocates nothing. Cost: a search among the slabs, O(log n).
    void giveBack(void* memory) noexcept;

  private:
    struct alignas(BlockSize) Block {
        Block* next = nullptr; ///< of the free ones of the slab
    };
    struct Slab {
        using Blocks = std::vector<Block, kaHugePages::Allocator<Block>>; // never grows

        bool isFull() const { return !free && blocks.size() == blocks.capacity(); }
        bool contains(const Block* block) const;

        Blocks blocks;         ///< those that have been taken once
        Block* free = nullptr; ///< of these, what has been given back
        std::size_t inUse = 0;
    };

    Slab& addSlab();
    Slab& slabOf(const Block* block);
    void release(Slab& slab) noexcept;
    void clear() noexcept;

    std::vector<std::unique_ptr<Slab>> _slabs; ///< by address
    std::vector<Slab*> _withRoom;              ///< the last one is taken from; there is room for all
    Slab* _recent = nullptr;                   ///< where the block given back last belongs
    Slab* _empty = nullptr;                    ///< kept for the next key
    kaWatchedMemory::Quarantine _quarantine;
    std::size_t _taken = 0;
};
