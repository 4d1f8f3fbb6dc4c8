#pragma once

#include "kaAnimationTypes.h"
#include "kaHugePages.h"

#include <cstddef>
#include <random>
#include <vector>

/// Hash table from ids to pointers, unordered, not owning. Made for look-ups: one mostly touches one cache line,
/// where tables that keep control bytes apart from the entries touch two.
///
/// Open addressing with linear probing, load at most 3/4, backward-shift deletion. The hash has a random factor
/// in each process, so that no document can be written whose ids all collide. Sources: D. E. Knuth, The Art of
/// Computer Programming 3, 6.4, algorithms L and R;
/// M. Dietzfelbinger et al., A Reliable Randomized Algorithm for the Closest-Pair Problem (multiply-shift).
template <class Object>
class kaIDTable {
  public:
    kaIDTable() { resize(16); }

    std::size_t size() const { return _size; }

    /// What stands under the id, or null.
    Object* find(kaUID id) const { return _slots[slotOf(id)].object; }

    /// @return false, with nothing changed, when the id is taken. @throws std::bad_alloc, with nothing
    /// changed.
    bool insert(kaUID id, Object& object) {
        std::size_t slot = slotOf(id);
        if (_slots[slot].object)
            return false;
        if (4 * (_size + 1) > 3 * _slots.size() || isOversized()) {
            resize(isOversized() ? _slots.size() / 4 : 2 * _slots.size());
            slot = slotOf(id);
        }
        _slots[slot] = {id, &object};
        ++_size;
        return true;
    }

    /// @return whether the id was there.
    bool erase(kaUID id) {
        std::size_t hole = slotOf(id);
        if (!_slots[hole].object)
            return false;
        for (std::size_t i = next(hole); _slots[i].object; i = next(i)) {
            // Moves up unless its own search begins behind the hole.
            if (((i - home(_slots[i].id)) & mask()) >= ((i - hole) & mask())) {
                _slots[hole] = _slots[i];
                hole = i;
            }
        }
        _slots[hole] = {};
        --_size;
        return true;
    }

    /// Calls `visit(kaUID, Object&)` for each entry, in no order. `visit` must not edit the table.
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (const Slot& slot : _slots)
            if (slot.object)
                visit(slot.id, *slot.object);
    }

  private:
    struct Slot {
        kaUID id = 0;
        Object* object = nullptr; ///< null for a free slot
    };
    using Slots = std::vector<Slot, kaHugePages::Allocator<Slot>>;

    /// Whether most of the memory has been given up by entries that went. Taken back when the next one comes:
    /// what takes entries away allocates nothing.
    bool isOversized() const {
        return 16 * (_size + 1) < _slots.size() && _slots.size() * sizeof(Slot) > kaHugePages::Size;
    }

    std::size_t mask() const { return _slots.size() - 1; }
    std::size_t next(std::size_t slot) const { return (slot + 1) & mask(); }
    /// Where the search for an id begins: the upper bits of its product.
    std::size_t home(kaUID id) const { return static_cast<std::size_t>((id * _factor) >> _shift); }

    /// The slot of the id, or the free one where it belongs.
    std::size_t slotOf(kaUID id) const {
        std::size_t slot = home(id);
        while (_slots[slot].object && _slots[slot].id != id)
            slot = next(slot);
        return slot;
    }

    /// @param count  a power of two.
    void resize(std::size_t count) {
        Slots former(count);
        former.swap(_slots);
        _shift = 64;
        for (std::size_t i = count; i > 1; i /= 2)
            --_shift;
        for (const Slot& slot : former)
            if (slot.object)
                _slots[slotOf(slot.id)] = slot;
    }

    static kaUID randomOddNumber() {
        std::random_device source;
        return (kaUID{source()} << 32U) | source() | 1U;
    }

    Slots _slots; ///< a power of two of them
    std::size_t _size = 0;
    unsigned int _shift = 64;
    kaUID _factor = randomOddNumber();
};
