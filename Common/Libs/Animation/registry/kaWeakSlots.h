#pragma once

#include "kaAnimationExport.h"

#include <cstdint>
#include <vector>

/// Answers whether something that was named once is still there: a table of slots, each with the address of
/// one thing and a generation that grows when that thing goes. Whoever keeps a slot's number and its
/// generation (`kaWeak`) never takes what came later, at the same address or in the same slot, for what was
/// meant.
///
/// A slot is assigned with the first reference and returned when the object is freed. Cost: 16 bytes a
/// slot; asking and giving back are a few instructions, and giving back allocates nothing.
class kaWeakSlots {
  public:
    using Slot = std::uint32_t; ///< 0 = none

    kaWeakSlots() = delete;

    /// A slot for `target`, which has none. @throws std::bad_alloc, with nothing changed.
    static Slot take(void* target);
    /// What has the slot is about to be freed. 0 does nothing.
    static void giveBack(Slot slot) noexcept;

    static std::uint32_t generation(Slot slot) { return _entries[slot].generation; }
    /// What has the slot in that generation; null when it has gone.
    static void* find(Slot slot, std::uint32_t generation) {
        const Entry& entry = _entries[slot];
        return entry.generation == generation ? entry.target : nullptr;
    }
    /// Starts fetching from memory what `find` reads.
    static void fetch(Slot slot) { __builtin_prefetch(_entries + slot); }
    /// Grows whenever something that had a slot goes: while it stands, all that was there is there.
    static std::uint64_t departures() { return _departures; }

  private:
    struct Entry {
        void* target;
        std::uint32_t generation;
        Slot nextFree;
    };

    static std::vector<Entry>& table();

    static Entry _none;     ///< that of slot 0
    static Entry* _entries; ///< of the table, or `_none` before there is one: no call to ask
    static Slot _firstFree;
    static std::uint64_t _departures;
};
