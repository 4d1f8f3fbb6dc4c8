#include "kaAnimationObject.h"
#include "kaChildList.h"

#include <algorithm>
#include <cmath>
#include <iterator>

// Looking up children: by themselves, by id, by begin, by what stands beside them.

/// Looks where a child most likely stands before it looks through the chunk: at the end, where an append has
/// left it, and where its begin belongs. A child that has just moved stands under its former begin.
kaChildList::Place kaChildList::find(const kaAnimationObject& child) const {
    const kaChildChunk& chunk = *child._home;
    const auto first = chunk.entries.begin();
    const auto end = chunk.entries.end();
    const float begin = child.getBegin();
    auto found = std::prev(end);
    if (found->object() != &child && isSorted()) {
        found = std::lower_bound(first, end, begin, Entry::ByBegin());
        while (found != end && found->object() != &child && found->begin() == begin)
            ++found;
    }
    if (found == end || found->object() != &child)
        found = std::find_if(first, end, [&child](const Entry& entry) { return entry.object() == &child; });
    return {chunk.index, static_cast<std::size_t>(found - first)};
}

kaChildList::Place kaChildList::normalized(std::size_t chunk, std::size_t index) const {
    return chunk < _chunks.size() && index >= _chunks[chunk]->entries.size() ? Place{chunk + 1, 0}
                                                                             : Place{chunk, index};
}

const kaChildList::Entry* kaChildList::at(Place place) const {
    return place.chunk < _chunks.size() ? &_chunks[place.chunk]->entries[place.index] : nullptr;
}

/// The end where nothing stands before.
kaChildList::Place kaChildList::placeBefore(Place place) const {
    if (place.index > 0)
        return {place.chunk, place.index - 1};
    // A chunk that was just made for an append is still empty.
    while (place.chunk > 0) {
        const std::size_t size = _chunks[--place.chunk]->entries.size();
        if (size > 0)
            return {place.chunk, size - 1};
    }
    return {_chunks.size(), 0};
}

const kaChildList::Entry* kaChildList::before(Place place) const {
    return at(placeBefore(place));
}

kaChildList::Place kaChildList::lowerBound(float begin) const {
    const auto next = std::lower_bound(_firsts.begin(), _firsts.end(), begin);
    const auto chunk = static_cast<std::size_t>(next - _firsts.begin());
    if (chunk == 0)
        return {0, 0};
    const auto& entries = _chunks[chunk - 1]->entries;
    const auto place = std::lower_bound(entries.begin(), entries.end(), begin, Entry::ByBegin());
    return normalized(chunk - 1, static_cast<std::size_t>(place - entries.begin()));
}

kaChildList::Place kaChildList::upperBound(float begin) const {
    const auto next = std::upper_bound(_firsts.begin(), _firsts.end(), begin);
    const auto chunk = static_cast<std::size_t>(next - _firsts.begin());
    if (chunk == 0)
        return {0, 0};
    const auto& entries = _chunks[chunk - 1]->entries;
    const auto place = std::upper_bound(entries.begin(), entries.end(), begin, Entry::ByBegin());
    return normalized(chunk - 1, static_cast<std::size_t>(place - entries.begin()));
}

std::pair<std::size_t, bool> kaChildList::position(kaUID id) const {
    if (!_linked) {
        const std::vector<kaUID>& ids = idList();
        const auto found = std::find(ids.begin(), ids.end(), id);
        return {static_cast<std::size_t>(found - ids.begin()), found != ids.end()};
    }
    const kaAnimationObject* object = resolve(id);
    return isHome(object) ? std::make_pair(positionOf(*object), true) : std::make_pair(_size, false);
}

std::size_t kaChildList::positionOf(const kaAnimationObject& child) const {
    const Place place = find(child);
    std::size_t result = place.index;
    for (std::size_t i = 0; i < place.chunk; ++i)
        result += _chunks[i]->entries.size();
    return result;
}

std::pair<std::size_t, bool> kaChildList::position(float begin) const {
    if (_linked) {
        const kaAnimationObject* object = firstAt(begin);
        return object ? position(object->getId()) : std::make_pair(_size, false);
    }
    const std::vector<kaUID>& ids = idList();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const kaAnimationObject* object = resolve(ids[i]);
        if (object && object->getBegin() == begin)
            return {i, true};
    }
    return {_size, false};
}

bool kaChildList::contains(kaUID id) const {
    if (!_linked) {
        const std::vector<kaUID>& ids = idList();
        return std::find(ids.begin(), ids.end(), id) != ids.end();
    }
    return isHome(resolve(id));
}

bool kaChildList::contains(const kaAnimationObject& child) const {
    return _linked ? isHome(resolve(child)) : contains(child.getId());
}

kaAnimationObject* kaChildList::firstAt(float begin) const {
    if (isSorted()) {
        const Entry* entry = std::isnan(begin) ? nullptr : at(lowerBound(begin));
        return entry && entry->begin() == begin ? entry->object() : nullptr;
    }
    kaAnimationObject* found = nullptr;
    forEach([&found, begin](kaAnimationObject& child) {
        if (!found && child.getBegin() == begin)
            found = &child;
    });
    return found;
}

kaAnimationObject* kaChildList::firstAtPrefetching(float begin) const {
    if (!isSorted() || std::isnan(begin))
        return firstAt(begin);
    const Place place = lowerBound(begin);
    const Entry* found = at(place);
    // What a key adds to an object is what is read of it.
    if (const Entry* previous = before(place))
        __builtin_prefetch(previous->object() + 1);
    if (found)
        __builtin_prefetch(found->object() + 1);
    return found && found->begin() == begin ? found->object() : nullptr;
}

std::pair<kaAnimationObject*, kaAnimationObject*> kaChildList::beside(const kaAnimationObject& child) const {
    if (_linked) {
        const Place place = find(*resolve(child));
        const Entry* previous = before(place);
        const Entry* next = at(normalized(place.chunk, place.index + 1));
        return {previous ? previous->object() : nullptr, next ? next->object() : nullptr};
    }
    std::pair<kaAnimationObject*, kaAnimationObject*> result;
    const std::vector<kaUID>& ids = idList();
    const auto place = std::find(ids.begin(), ids.end(), child.getId());
    for (auto it = std::make_reverse_iterator(place); it != ids.rend() && !result.first; ++it)
        result.first = resolve(*it);
    for (auto it = std::next(place); it != ids.end() && !result.second; ++it)
        result.second = resolve(*it);
    return result;
}

kaChildList::Around kaChildList::around(float begin) const {
    if (std::isnan(begin))
        return {};
    return isSorted() ? aroundSorted(begin) : aroundLinear(begin);
}

/// Mostly no two children begin at one frame: then what is looked for stands next to the place of `begin`.
kaChildList::Around kaChildList::aroundSorted(float begin) const {
    Around result;
    const Place place = lowerBound(begin);
    const Place last = placeBefore(place);
    if (const Entry* previous = at(last)) {
        const Entry* earlier = before(last);
        const bool isShared = earlier && earlier->begin() == previous->begin();
        result.before = (isShared ? at(lowerBound(previous->begin())) : previous)->object();
    }
    const Entry* next = at(place);
    if (next && next->begin() == begin) {
        result.at = next->object();
        next = at(normalized(place.chunk, place.index + 1));
        if (next && next->begin() == begin)
            next = at(upperBound(begin));
    }
    result.after = next ? next->object() : nullptr;
    return result;
}

kaChildList::Around kaChildList::aroundLinear(float begin) const {
    Around result;
    forEach([&result, begin](kaAnimationObject& child) {
        const float other = child.getBegin();
        if (other == begin && !result.at)
            result.at = &child;
        else if (other < begin && (!result.before || other > result.before->getBegin()))
            result.before = &child;
        else if (other > begin && (!result.after || other < result.after->getBegin()))
            result.after = &child;
    });
    return result;
}

kaChildList::Around kaChildList::firstNotBefore(float begin) const {
    Around result;
    if (isSorted() && !std::isnan(begin)) {
        const Place place = lowerBound(begin);
        const Entry* previous = before(place);
        const Entry* found = at(place);
        const Entry* next = found ? at(normalized(place.chunk, place.index + 1)) : nullptr;
        result.before = previous ? previous->object() : nullptr;
        result.at = found ? found->object() : nullptr;
        result.after = next ? next->object() : nullptr;
        return result;
    }
    forEach([&result, begin](kaAnimationObject& child) {
        if (result.at && !result.after)
            result.after = &child;
        else if (!result.at && begin <= child.getBegin())
            result.at = &child;
        else if (!result.at)
            result.before = &child;
    });
    return result;
}

std::vector<kaAnimationObject*> kaChildList::selected() const {
    std::vector<kaAnimationObject*> result;
    if (_linked) {
        for (const auto& chunk : _chunks)
            if (chunk->selectedCount > 0)
                for (const Entry& entry : chunk->entries)
                    if (entry.isSelected())
                        result.push_back(entry.object());
    } else {
        forEach([&result](kaAnimationObject& child) {
            if (child.isSelected())
                result.push_back(&child);
        });
    }
    return result;
}
