#include "kaKeyMemory.h"

#include <algorithm>
#include <functional>
#include <new>

kaKeyMemory& kaKeyMemory::the() {
    static kaKeyMemory& memory = *new kaKeyMemory;
    return memory;
}

bool kaKeyMemory::Slab::contains(const Block* block) const {
    return !std::less<>()(block, blocks.data()) && std::less<>()(block, blocks.data() + blocks.size());
}

/// As large as all others together, up to a huge page.
kaKeyMemory::Slab& kaKeyMemory::addSlab() {
    constexpr std::size_t Smallest = 32;
    constexpr std::size_t Largest = kaHugePages::Size / BlockSize;
    std::size_t blocks = 0;
    for (const auto& slab : _slabs)
        blocks += slab->blocks.capacity();
    auto slab = std::make_unique<Slab>();
    slab->blocks.reserve(std::clamp(blocks, Smallest, Largest));
    _withRoom.reserve(_slabs.size() + 1);
    const auto place = std::find_if(_slabs.begin(), _slabs.end(), [&slab](const auto& other) {
        return std::less<>()(slab->blocks.data(), other->blocks.data());
    });
    Slab& added = **_slabs.insert(place, std::move(slab));
    kaWatchedMemory::forbid(added.blocks.data(), added.blocks.capacity() * BlockSize);
    _withRoom.push_back(&added);
    return added;
}

void* kaKeyMemory::take() {
    Slab& slab = _withRoom.empty() ? addSlab() : *_withRoom.back();
    Block* block = slab.free;
    if (block) {
        kaWatchedMemory::take(block, BlockSize);
        slab.free = block->next;
    } else {
        kaWatchedMemory::take(slab.blocks.data() + slab.blocks.size(), BlockSize);
        block = &slab.blocks.emplace_back();
    }
    ++slab.inUse;
    if (slab.isFull())
        _withRoom.pop_back();
    if (_empty == &slab)
        _empty = nullptr;
    ++_taken;
    return block;
}

kaKeyMemory::Slab& kaKeyMemory::slabOf(const Block* block) {
    if (!_recent || !_recent->contains(block)) {
        const auto behind =
            std::upper_bound(_slabs.begin(), _slabs.end(), block, [](const Block* wanted, const auto& slab) {
                return std::less<>()(wanted, slab->blocks.data());
            });
        _recent = std::prev(behind)->get();
    }
    return *_recent;
}

void kaKeyMemory::giveBack(void* memory) noexcept {
    kaWatchedMemory::forbid(memory, BlockSize);
    void* leaving = _quarantine.exchange(memory);
    if (--_taken == 0) {
        clear();
        return;
    }
    if (!leaving)
        return;
    auto* block = static_cast<Block*>(leaving);
    Slab& slab = slabOf(block);
    if (slab.isFull())
        _withRoom.push_back(&slab);
    kaWatchedMemory::allow(block, BlockSize);
    slab.free = new (block) Block{slab.free};
    kaWatchedMemory::shut(block, BlockSize);
    if (--slab.inUse > 0)
        return;
    if (_empty)
        release(*_empty);
    _empty = &slab;
}

/// Not the one that a block has been given back to just now.
void kaKeyMemory::release(Slab& slab) noexcept {
    _withRoom.erase(std::find(_withRoom.begin(), _withRoom.end(), &slab));
    _slabs.erase(std::find_if(_slabs.begin(), _slabs.end(),
                              [&slab](const auto& other) { return other.get() == &slab; }));
}

void kaKeyMemory::clear() noexcept {
    _quarantine.clear();
    _withRoom.clear();
    _slabs.clear();
    _recent = nullptr;
    _empty = nullptr;
}
