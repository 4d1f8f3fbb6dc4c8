#include "kaKeyMemory.h"

#include <algorithm>
#include <new>
#include <utility>

kaKeyMemory& kaKeyMemory::the() {
    static kaKeyMemory& memory = *new kaKeyMemory;
    return memory;
}

/// Each twice the one before, up to a huge page.
void kaKeyMemory::addSlab() {
    constexpr std::size_t Smallest = 32;
    constexpr std::size_t Largest = kaHugePages::Size / BlockSize;
    Slab slab;
    slab.reserve(_slabs.empty() ? Smallest : std::min(2 * _slabs.back().capacity(), Largest));
    kaWatchedMemory::forbid(slab.data(), slab.capacity() * BlockSize);
    _slabs.push_back(std::move(slab));
}

void* kaKeyMemory::take() {
    Block* block = _givenBack;
    if (block) {
        kaWatchedMemory::take(block, BlockSize);
        _givenBack = block->next;
    } else {
        if (_slabs.empty() || _slabs.back().size() == _slabs.back().capacity())
            addSlab();
        Slab& slab = _slabs.back();
        kaWatchedMemory::take(slab.data() + slab.size(), BlockSize);
        block = &slab.emplace_back();
    }
    ++_taken;
    return block;
}

void kaKeyMemory::giveBack(void* memory) noexcept {
    kaWatchedMemory::forbid(memory, BlockSize);
    if (void* free = _quarantine.exchange(memory)) {
        kaWatchedMemory::allow(free, BlockSize);
        _givenBack = new (free) Block{_givenBack};
        kaWatchedMemory::shut(free, BlockSize);
    }
    if (--_taken == 0) {
        _givenBack = nullptr;
        _quarantine.clear();
        _slabs.clear();
    }
}
