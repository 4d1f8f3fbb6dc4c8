#include "kaChildList.h"

#include "kaAnimationManager.h"
#include "kaEdits.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <list>

namespace {

/// Whether taking `part` away may shrink `whole`.
bool touches(const kaExtent& whole, const kaExtent& part) {
    return part.begin <= whole.begin || part.end >= whole.end || part.maximum >= whole.maximum ||
           part.minimum <= whole.minimum;
}

bool same(const kaExtent& a, const kaExtent& b) {
    return a.begin == b.begin && a.end == b.end && a.maximum == b.maximum && a.minimum == b.minimum;
}

bool countsIn(const kaAnimationObject& child) {
    return child.hasChildren() || child.getTypeID() == KA_TYPE_SEQUENCE;
}

bool startsEarlier(const kaChildChunk::Entry& entry, float begin) {
    return entry.extent.begin < begin;
}

bool startsLater(float begin, const kaChildChunk::Entry& entry) {
    return begin < entry.extent.begin;
}

kaExtent extentOf(const kaAnimationObject& child) {
    return {child.getBegin(), child.getEnd(), child.getMaximum(), child.getMinimum()};
}

} // namespace

kaAnimationObject* kaChildList::resolve(kaUID id) {
    return kaAnimationManager::the()->getObject(id);
}

/// What the child's id names: mostly the child, whatever a host has made of the ids.
const kaAnimationObject* kaChildList::resolve(const kaAnimationObject& child) {
    return child._findable ? &child : resolve(child.getId());
}

bool kaChildList::isHome(const kaAnimationObject* child) const {
    return child && child->_home && child->_home->list == this;
}

/// An id that a host gave an object behind the registry's back does not name it here: the list shows the ids.
bool kaChildList::adoptable(kaUID id, const kaAnimationObject* object) const {
    return object && object != _owner && !object->_home && object->getId() == id &&
           !std::isnan(object->getBegin());
}

kaChildList::Entry kaChildList::entryOf(kaAnimationObject& child) const {
    return {&child, extentOf(child), countsIn(child), child.isSelected()};
}

std::vector<kaUID> kaChildList::ids() const {
    if (!_mirrored)
        return _ids;
    std::vector<kaUID> result;
    result.reserve(_size);
    for (const auto& chunk : _chunks)
        for (const Entry& entry : chunk->entries)
            result.push_back(entry.object->getId());
    return result;
}

void kaChildList::noteEdit() {
    _changes.noteAll(++_revision);
    kaEdits::note();
}

void kaChildList::sizeChanged(std::size_t size) {
    const bool flips = (_size == 0) != (size == 0);
    _size = size;
    noteEdit();
    if (flips)
        _owner->noteChange();
}

void kaChildList::assign(std::vector<kaUID> ids) {
    const bool wasEmpty = empty();
    release();
    _size = ids.size();
    _ids = std::move(ids);
    _mirrored = false;
    tryMirror();
    if (wasEmpty != empty())
        _owner->noteChange();
}

void kaChildList::append(kaAnimationObject& child) {
    if (_mirrored) {
        if (resolve(child) == &child && adoptable(child.getId(), &child)) {
            appendEntry(entryOf(child));
            sizeChanged(_size + 1);
            return;
        }
        becomeLiteral();
    }
    _ids.push_back(child.getId());
    sizeChanged(_size + 1);
}

bool kaChildList::remove(const kaAnimationObject& child) {
    if (!_mirrored) {
        const auto found = std::find(_ids.begin(), _ids.end(), child.getId());
        if (found == _ids.end())
            return false;
        _ids.erase(found);
        sizeChanged(_size - 1);
        if (_ids.empty())
            release();
        return true;
    }
    const kaAnimationObject* object = resolve(child);
    if (!isHome(object))
        return false;
    const Place place = find(*object);
    eraseEntry(*_chunks[place.chunk], place.index);
    sizeChanged(_size - 1);
    return true;
}

void kaChildList::release() {
    for (const auto& chunk : _chunks)
        for (const Entry& entry : chunk->entries)
            entry.object->_home = nullptr;
    _chunks.clear();
    _firsts.clear();
    _ids.clear();
    _out = nullptr;
    _extent = kaExtent();
    _extentValid = true;
    _mirrored = true;
    _order = Order::Sorted;
    _size = 0;
    noteEdit();
}

void kaChildList::becomeLiteral() {
    std::vector<kaUID> all = ids();
    const std::size_t size = _size;
    release();
    _ids = std::move(all);
    _size = size;
    _mirrored = false;
}

void kaChildList::childLost(kaAnimationObject& child) {
    if (!_ending) {
        becomeLiteral();
        return;
    }
    const Place place = find(child);
    eraseEntry(*_chunks[place.chunk], place.index);
    --_size;
}

void kaChildList::beginTaking() {
    _ending = true;
    std::reverse(_ids.begin(), _ids.end());
    std::reverse(_chunks.begin(), _chunks.end());
    renumber(0);
    for (const auto& chunk : _chunks)
        std::reverse(chunk->entries.begin(), chunk->entries.end());
}

kaUID kaChildList::takeNext() {
    --_size;
    if (!_mirrored) {
        const kaUID id = _ids.back();
        _ids.pop_back();
        return id;
    }
    kaChildChunk& chunk = *_chunks.back();
    const kaUID id = chunk.entries.back().object->getId();
    eraseEntry(chunk, chunk.entries.size() - 1);
    return id;
}

// Chunks.

void kaChildList::renumber(std::size_t from) {
    for (std::size_t i = from; i < _chunks.size(); ++i)
        _chunks[i]->index = i;
}

/// Everything that can fail comes before anything is changed, here and in all that adds entries.
void kaChildList::addChunk(std::size_t at, std::unique_ptr<kaChildChunk> chunk) {
    const auto offset = static_cast<std::ptrdiff_t>(at);
    _firsts.reserve(_chunks.size() + 1);
    _chunks.insert(_chunks.begin() + offset, std::move(chunk));
    _firsts.insert(_firsts.begin() + offset, _chunks[at]->entries.front().extent.begin);
    renumber(at);
}

void kaChildList::splitChunk(std::size_t at) {
    kaChildChunk& left = *_chunks[at];
    const auto middle = left.entries.begin() + static_cast<std::ptrdiff_t>(left.entries.size() / 2);
    auto second = std::make_unique<kaChildChunk>(*this);
    second->entries.reserve(ChunkSize);
    second->entries.assign(middle, left.entries.end());
    kaChildChunk& right = *second;
    addChunk(at + 1, std::move(second));
    left.entries.erase(middle, left.entries.end());
    for (const Entry& entry : right.entries) {
        entry.object->_home = &right;
        right.selectedCount += entry.selected ? 1U : 0U;
    }
    left.selectedCount -= right.selectedCount;
    left.extentValid = false;
    right.extentValid = false;
}

void kaChildList::widen(kaChildChunk& chunk, const Entry& entry) {
    chunk.selectedCount += entry.selected ? 1U : 0U;
    if (!entry.counts)
        return;
    chunk.extent.include(entry.extent);
    _extent.include(entry.extent);
}

void kaChildList::narrow(kaChildChunk& chunk, const Entry& entry) {
    chunk.selectedCount -= entry.selected ? 1U : 0U;
    if (!entry.counts)
        return;
    if (touches(chunk.extent, entry.extent))
        chunk.extentValid = false;
    if (touches(_extent, entry.extent))
        _extentValid = false;
}

void kaChildList::appendEntry(const Entry& entry) {
    const Entry* last = _chunks.empty() ? nullptr : &_chunks.back()->entries.back();
    const bool early = last && entry.extent.begin < last->extent.begin;
    if (_chunks.empty() || _chunks.back()->entries.size() >= ChunkSize)
        addFirst(_chunks.size(), entry);
    else
        _chunks.back()->entries.push_back(entry);
    if (_order == Order::OneOut)
        _order = Order::Disturbed;
    if (early && _order == Order::Sorted) {
        _order = Order::OneOut;
        _out = entry.object;
    }
    kaChildChunk& chunk = *_chunks.back();
    entry.object->_home = &chunk;
    widen(chunk, entry);
}

void kaChildList::addFirst(std::size_t at, const Entry& entry) {
    auto chunk = std::make_unique<kaChildChunk>(*this);
    chunk->entries.push_back(entry);
    addChunk(at, std::move(chunk));
}

/// Makes room for one more entry where `begin` belongs in a sorted list: behind the children that begin at
/// the same frame or, unless `early`, before them. @return the chunk.
kaChildChunk& kaChildList::makeRoom(float begin, bool early) {
    const auto next = early ? std::upper_bound(_firsts.begin(), _firsts.end(), begin)
                            : std::lower_bound(_firsts.begin(), _firsts.end(), begin);
    auto at = static_cast<std::size_t>(next - _firsts.begin());
    at -= at > 0 ? 1 : 0;
    if (_chunks[at]->entries.size() >= ChunkSize) {
        splitChunk(at);
        const float second = _firsts[at + 1];
        at += second < begin || (early && second == begin) ? 1 : 0;
    }
    std::vector<Entry>& entries = _chunks[at]->entries;
    if (entries.size() == entries.capacity())
        entries.reserve(std::min(ChunkSize, 2 * entries.size()));
    return *_chunks[at];
}

/// Puts the entry into the chunk that `makeRoom` found for it. Cannot fail.
void kaChildList::insertEntry(kaChildChunk& chunk, const Entry& entry, bool early) {
    std::vector<Entry>& entries = chunk.entries;
    const float begin = entry.extent.begin;
    entries.insert(early ? std::upper_bound(entries.begin(), entries.end(), begin, startsLater)
                         : std::lower_bound(entries.begin(), entries.end(), begin, startsEarlier),
                   entry);
    _firsts[chunk.index] = entries.front().extent.begin;
    entry.object->_home = &chunk;
    widen(chunk, entry);
}

void kaChildList::eraseEntry(kaChildChunk& chunk, std::size_t index) {
    const Entry entry = chunk.entries[index];
    const std::size_t at = chunk.index;
    if (_order == Order::OneOut && entry.object == _out)
        _order = Order::Sorted;
    entry.object->_home = nullptr;
    narrow(chunk, entry);
    chunk.entries.erase(chunk.entries.begin() + static_cast<std::ptrdiff_t>(index));
    if (chunk.entries.empty()) {
        _chunks.erase(_chunks.begin() + static_cast<std::ptrdiff_t>(at));
        _firsts.erase(_firsts.begin() + static_cast<std::ptrdiff_t>(at));
        renumber(at);
        if (_chunks.empty())
            _order = Order::Sorted;
    } else if (index == 0) {
        _firsts[at] = chunk.entries.front().extent.begin;
    }
}

// What the children tell.

void kaChildList::childChanged(kaChildChunk& chunk, kaAnimationObject& child) {
    if (_ending)
        return;
    _changes.note(child, ++_revision);
    if (child.getTypeID() == KA_TYPE_POINT)
        kaEdits::noteKeyOf(*_owner);
    const Place place = find(child);
    Entry& entry = chunk.entries[place.index];
    const Entry now = entryOf(child);
    if (same(now.extent, entry.extent) && now.counts == entry.counts && now.selected == entry.selected)
        return;
    if (std::isnan(now.extent.begin)) {
        becomeLiteral();
        return;
    }
    const bool moved = now.extent.begin != entry.extent.begin;
    narrow(chunk, entry);
    entry = now;
    widen(chunk, entry);
    if (place.index == 0)
        _firsts[place.chunk] = now.extent.begin;
    if (moved)
        checkOrder(place);
}

/// The child at `place` has moved.
void kaChildList::checkOrder(Place place) {
    const Entry& moved = *at(place);
    if (_order == Order::OneOut && _out != moved.object)
        _order = Order::Disturbed;
    if (_order == Order::Disturbed)
        return;
    const Entry* previous = before(place);
    const Entry* next = at(normalized(place.chunk, place.index + 1));
    const bool isOut = (previous && moved.extent.begin < previous->extent.begin) ||
                       (next && next->extent.begin < moved.extent.begin);
    _order = isOut ? Order::OneOut : Order::Sorted;
    _out = moved.object;
}

// Extent.

void kaChildList::recompute(kaChildChunk& chunk) {
    chunk.extent = kaExtent();
    for (const Entry& entry : chunk.entries)
        if (entry.counts)
            chunk.extent.include(entry.extent);
    chunk.extentValid = true;
}

kaExtent kaChildList::extent() {
    if (!_mirrored) {
        kaExtent result;
        forEach([&result](const kaAnimationObject& child) {
            if (countsIn(child))
                result.include(extentOf(child));
        });
        return result;
    }
    if (!_extentValid) {
        _extent = kaExtent();
        for (const auto& chunk : _chunks) {
            if (!chunk->extentValid)
                recompute(*chunk);
            _extent.include(chunk->extent);
        }
        _extentValid = true;
    }
    return _extent;
}

// Looking up.

/// Looks where a child most likely stands before it looks through the chunk: at the end, where an append has
/// left it, and where its begin belongs. A child that has just moved stands under its former begin.
kaChildList::Place kaChildList::find(const kaAnimationObject& child) const {
    const kaChildChunk& chunk = *child._home;
    const auto first = chunk.entries.begin();
    const auto end = chunk.entries.end();
    const float begin = child.getBegin();
    auto found = std::prev(end);
    if (found->object != &child && isSorted()) {
        found = std::lower_bound(first, end, begin, startsEarlier);
        while (found != end && found->object != &child && found->extent.begin == begin)
            ++found;
    }
    if (found == end || found->object != &child)
        found = std::find_if(first, end, [&child](const Entry& entry) { return entry.object == &child; });
    return {chunk.index, static_cast<std::size_t>(found - first)};
}

kaChildList::Place kaChildList::normalized(std::size_t chunk, std::size_t index) const {
    return chunk < _chunks.size() && index >= _chunks[chunk]->entries.size() ? Place{chunk + 1, 0}
                                                                             : Place{chunk, index};
}

const kaChildList::Entry* kaChildList::at(Place place) const {
    return place.chunk < _chunks.size() ? &_chunks[place.chunk]->entries[place.index] : nullptr;
}

const kaChildList::Entry* kaChildList::before(Place place) const {
    if (place.index > 0)
        return &_chunks[place.chunk]->entries[place.index - 1];
    // A chunk that was just made for an append is still empty.
    while (place.chunk > 0) {
        const auto& entries = _chunks[--place.chunk]->entries;
        if (!entries.empty())
            return &entries.back();
    }
    return nullptr;
}

kaChildList::Place kaChildList::lowerBound(float begin) const {
    const auto next = std::lower_bound(_firsts.begin(), _firsts.end(), begin);
    const auto chunk = static_cast<std::size_t>(next - _firsts.begin());
    if (chunk == 0)
        return {0, 0};
    const auto& entries = _chunks[chunk - 1]->entries;
    const auto place = std::lower_bound(entries.begin(), entries.end(), begin, startsEarlier);
    return normalized(chunk - 1, static_cast<std::size_t>(place - entries.begin()));
}

kaChildList::Place kaChildList::upperBound(float begin) const {
    const auto next = std::upper_bound(_firsts.begin(), _firsts.end(), begin);
    const auto chunk = static_cast<std::size_t>(next - _firsts.begin());
    if (chunk == 0)
        return {0, 0};
    const auto& entries = _chunks[chunk - 1]->entries;
    const auto place = std::upper_bound(entries.begin(), entries.end(), begin, startsLater);
    return normalized(chunk - 1, static_cast<std::size_t>(place - entries.begin()));
}

std::pair<std::size_t, bool> kaChildList::position(kaUID id) const {
    if (!_mirrored) {
        const auto found = std::find(_ids.begin(), _ids.end(), id);
        return {static_cast<std::size_t>(found - _ids.begin()), found != _ids.end()};
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
    if (_mirrored) {
        const kaAnimationObject* object = firstAt(begin);
        return object ? position(object->getId()) : std::make_pair(_size, false);
    }
    for (std::size_t i = 0; i < _ids.size(); ++i) {
        const kaAnimationObject* object = resolve(_ids[i]);
        if (object && object->getBegin() == begin)
            return {i, true};
    }
    return {_size, false};
}

bool kaChildList::contains(kaUID id) const {
    if (!_mirrored)
        return std::find(_ids.begin(), _ids.end(), id) != _ids.end();
    return isHome(resolve(id));
}

bool kaChildList::contains(const kaAnimationObject& child) const {
    return _mirrored ? isHome(resolve(child)) : contains(child.getId());
}

kaAnimationObject* kaChildList::firstAt(float begin) const {
    if (isSorted()) {
        const Entry* entry = std::isnan(begin) ? nullptr : at(lowerBound(begin));
        return entry && entry->extent.begin == begin ? entry->object : nullptr;
    }
    kaAnimationObject* found = nullptr;
    forEach([&found, begin](kaAnimationObject& child) {
        if (!found && child.getBegin() == begin)
            found = &child;
    });
    return found;
}

std::pair<kaAnimationObject*, kaAnimationObject*> kaChildList::beside(const kaAnimationObject& child) const {
    if (_mirrored) {
        const Place place = find(*resolve(child));
        const Entry* previous = before(place);
        const Entry* next = at(normalized(place.chunk, place.index + 1));
        return {previous ? previous->object : nullptr, next ? next->object : nullptr};
    }
    std::pair<kaAnimationObject*, kaAnimationObject*> result;
    const auto place = std::find(_ids.begin(), _ids.end(), child.getId());
    for (auto it = std::make_reverse_iterator(place); it != _ids.rend() && !result.first; ++it)
        result.first = resolve(*it);
    for (auto it = std::next(place); it != _ids.end() && !result.second; ++it)
        result.second = resolve(*it);
    return result;
}

kaChildList::Around kaChildList::around(float begin) const {
    if (std::isnan(begin))
        return {};
    return isSorted() ? aroundSorted(begin) : aroundLinear(begin);
}

kaChildList::Around kaChildList::aroundSorted(float begin) const {
    Around result;
    const Place place = lowerBound(begin);
    const Entry* entry = at(place);
    if (entry && entry->extent.begin == begin)
        result.at = entry->object;
    if (const Entry* previous = before(place))
        result.before = at(lowerBound(previous->extent.begin))->object;
    if (const Entry* next = at(upperBound(begin)))
        result.after = next->object;
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
        result.before = previous ? previous->object : nullptr;
        result.at = found ? found->object : nullptr;
        result.after = next ? next->object : nullptr;
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
    if (_mirrored) {
        for (const auto& chunk : _chunks)
            if (chunk->selectedCount > 0)
                for (const Entry& entry : chunk->entries)
                    if (entry.selected)
                        result.push_back(entry.object);
    } else {
        forEach([&result](kaAnimationObject& child) {
            if (child.isSelected())
                result.push_back(&child);
        });
    }
    return result;
}
