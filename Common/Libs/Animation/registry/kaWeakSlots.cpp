#include "kaWeakSlots.h"

kaWeakSlots::Entry kaWeakSlots::_none{nullptr, 0, 0};
kaWeakSlots::Entry* kaWeakSlots::_entries = &kaWeakSlots::_none;
kaWeakSlots::Slot kaWeakSlots::_firstFree = 0;
std::uint64_t kaWeakSlots::_departures = 1;

/// Never destroyed: objects may outlive all other statics.
std::vector<kaWeakSlots::Entry>& kaWeakSlots::table() {
    static auto& entries = *new std::vector<Entry>{_none};
    return entries;
}

kaWeakSlots::Slot kaWeakSlots::take(void* target) {
    std::vector<Entry>& entries = table();
    if (_firstFree == 0) {
        entries.push_back({target, 1, 0});
        _entries = entries.data();
        return static_cast<Slot>(entries.size() - 1);
    }
    const Slot slot = _firstFree;
    _firstFree = entries[slot].nextFree;
    entries[slot].target = target;
    return slot;
}

void kaWeakSlots::giveBack(Slot slot) noexcept {
    if (slot == 0)
        return;
    Entry& entry = table()[slot];
    entry.target = nullptr;
    ++entry.generation;
    entry.nextFree = _firstFree;
    _firstFree = slot;
    ++_departures;
}
