#include "kaKeyMemory.h"

#include <algorithm>
#include <new>
#include <utility>

kaKeyMemory& kaKeyMemory::the() {
    static kaKeyMemory& memory = *new kaKeyMemory;
    return memory;
}

#ifdef KA_WATCHED_MEMORY

void* kaKeyMemory::take() {
    return ::operator new(BlockSize);
}

void kaKeyMemory::giveBack(void* memory) noexcept {
    ::operator delete(memory);
}

#else

/// Each twice the one before, up to a huge page.
void kaKeyMemory::addSlab() {
    constexpr std::size_t Smallest = 32;
    constexpr std::size_t Largest = kaHugePages::Size / BlockSize;
    Slab slab;
    slab.reserve(_slabs.empty() ? Smallest : std::min(2 * _slabs.back().capacity(), Largest));
    _slabs.push_back(std::move(slab));
}

void* kaKeyMemory::take() {
    Block* block = _givenBack;
    if (block) {
        _givenBack = block->next;
    } else {
        if (_slabs.empty() || _slabs.back().size() == _slabs.back().capacity())
            addSlab();
        block = &_slabs.back().emplace_back();
    }
    ++_taken;
    return block;
}

void kaKeyMemory::giveBack(void* memory) noexcept {
    _givenBack = new (memory) Block{_givenBack};
    if (--_taken == 0) {
        _givenBack = nullptr;
        _slabs.clear();
    }
}

#endif
