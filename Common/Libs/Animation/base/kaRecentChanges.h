#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// The last eight things that have changed, each with the revision at which it did: whoever has cached
/// something made from many things updates it for those alone that are newer than its own revision.
///
/// The caller numbers the changes; the numbers grow. Keeps addresses and never dereferences them: a thing that
/// has been freed stays listed until newer changes displace it.
template <class Thing>
class kaRecentChanges {
  public:
    /// Enters a change of `thing` under the number `change`; the oldest entry is displaced.
    void note(const Thing& thing, std::uint64_t change) {
        Entry* entry = &_entries[_last];
        if (entry->thing != &thing) {
            entry = _entries.data();
            for (Entry& other : _entries) {
                if (other.thing == &thing) {
                    entry = &other;
                    break;
                }
                if (other.change < entry->change)
                    entry = &other;
            }
            if (entry->thing != &thing)
                _from = std::max(_from, entry->change);
            _last = static_cast<std::size_t>(entry - _entries.data());
        }
        *entry = {&thing, change};
    }

    /// Everything may have changed, up to the number `change`.
    void noteAll(std::uint64_t change) { _from = change; }

    /// Calls `visit(const Thing&)`, in no order, for each thing that has changed since `change`. @return
    /// false, without a call, where more has changed than is remembered.
    template <class Visit>
    bool forEachSince(std::uint64_t change, Visit&& visit) const {
        if (change < _from)
            return false;
        for (const Entry& entry : _entries)
            if (entry.change > change)
                visit(*entry.thing);
        return true;
    }

  private:
    struct Entry {
        const Thing* thing = nullptr;
        std::uint64_t change = 0; ///< at its last change
    };

    std::array<Entry, 8> _entries;
    std::size_t _last = 0;   ///< the entry written last
    std::uint64_t _from = 0; ///< all that has changed after this stands in `_entries`
};
