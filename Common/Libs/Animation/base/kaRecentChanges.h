#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// Which few things have changed last, so that what was made of many need not be made anew for one of them.
///
/// Changes are numbered by a count of the caller's that grows from one to the next. Remembers addresses and
/// never looks behind them; a thing that has gone stays listed until it is forgotten.
template <class Thing>
class kaRecentChanges {
  public:
    /// The thing's change has the number `change`. What has to be forgotten for it is longest ago.
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

    /// More has changed than can be named, up to the number `change`.
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
