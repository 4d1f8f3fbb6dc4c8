#include "kaAnimationObject.h"
#include "kaChildList.h"

#include <algorithm>
#include <cmath>
#include <list>

// The order of a child list: how it is kept where everything is known, and what a list's merge makes of it
// where not.

void kaChildList::sort() {
    if (!_linked)
        sortIDs();
    else if (_order == Order::OneOut)
        sortOne();
    else if (_order == Order::Disturbed)
        sortAll();
}

void kaChildList::recheckOrder() {
    if (!_linked || _order == Order::Sorted)
        return;
    const Entry* previous = nullptr;
    for (const auto& chunk : _chunks) {
        for (const Entry& entry : chunk->entries) {
            if (previous && entry.begin() < previous->begin())
                return;
            previous = &entry;
        }
    }
    _order = Order::Sorted;
}

/// Takes the one child that stands out of order to where a stable sort leaves it: past those that it
/// overtakes and no further.
void kaChildList::sortOne() {
    const Place place = find(*_out);
    const Entry out = *at(place);
    const Entry* previous = before(place);
    const Entry* next = at(normalized(place.chunk, place.index + 1));
    const bool early = previous && out.begin() < previous->begin();
    const bool late = next && next->begin() < out.begin();
    if (early || late) {
        // While its new place is looked for it stands under a neighbour's begin, so that the list is sorted.
        const auto standUnder = [&](float begin) {
            const Place now = find(*_out);
            _chunks[now.chunk]->entries[now.index].standUnder(begin);
            if (now.index == 0)
                _firsts[now.chunk] = begin;
        };
        standUnder(early ? previous->begin() : next->begin());
        kaChildChunk* target = nullptr;
        try {
            target = &makeRoom(out.begin(), early);
        } catch (...) {
            standUnder(out.begin());
            throw;
        }
        standUnder(out.begin());
        const Place from = find(*_out);
        eraseEntry(*_chunks[from.chunk], from.index);
        insertEntry(*target, out, early);
    }
    _order = Order::Sorted;
    noteEdit();
}

/// The chunks keep their sizes; only what stands in them changes, once the new order is known.
void kaChildList::sortAll() {
    std::vector<Entry> entries;
    entries.reserve(_size);
    for (const auto& chunk : _chunks)
        entries.insert(entries.end(), chunk->entries.begin(), chunk->entries.end());
    std::stable_sort(entries.begin(), entries.end(), Entry::ByBegin());
    auto from = entries.begin();
    for (const auto& chunk : _chunks) {
        chunk->selectedCount = 0;
        chunk->extentValid = false;
        for (Entry& entry : chunk->entries) {
            entry = *from++;
            entry.object()->_home = chunk.get();
            chunk->selectedCount += entry.isSelected() ? 1U : 0U;
        }
        _firsts[chunk->index] = chunk->entries.front().begin();
        measure(chunk->index);
    }
    regroup(0);
    _order = Order::Sorted;
    noteEdit();
}

/// Where an id is unknown or a begin is no number the comparator is partial, and what comes out depends on
/// the merge: that of a list.
void kaChildList::sortIDs() {
    idList();
    if (!sortKnown()) {
        std::list<kaUID> sorted(_ids.begin(), _ids.end());
        sorted.sort(&kaAnimationObject::compareObjectsByBegin);
        _ids.assign(sorted.begin(), sorted.end());
    }
    noteEdit();
    if (tryLink())
        sort();
}

/// @return false, with nothing changed, when not every id is known with a begin that is a number.
bool kaChildList::sortKnown() {
    using Begin = std::pair<float, kaUID>;
    const auto earlier = [](const Begin& a, const Begin& b) { return a.first < b.first; };
    std::vector<Begin> begins;
    begins.reserve(_ids.size());
    for (kaUID id : _ids) {
        const kaAnimationObject* object = resolve(id);
        if (!object || std::isnan(object->getBegin()))
            return false;
        begins.emplace_back(object->getBegin(), id);
    }
    if (!std::is_sorted(begins.begin(), begins.end(), earlier))
        std::stable_sort(begins.begin(), begins.end(), earlier);
    std::transform(begins.begin(), begins.end(), _ids.begin(),
                   [](const Begin& begin) { return begin.second; });
    return true;
}

/// Back to the usual case if every id is registered, stands once and in no other list.
bool kaChildList::tryLink() {
    std::vector<kaUID> all = std::move(_ids);
    const std::size_t size = _size;
    const auto giveUp = [&] {
        release();
        _ids = std::move(all);
        _size = size;
        setLinked(false);
    };
    release();
    try {
        for (kaUID id : all) {
            kaAnimationObject* object = resolve(id);
            if (!adoptable(id, object)) {
                giveUp();
                return false;
            }
            appendEntry(Entry(*object));
        }
    } catch (...) {
        giveUp();
        throw;
    }
    _size = size;
    return true;
}
