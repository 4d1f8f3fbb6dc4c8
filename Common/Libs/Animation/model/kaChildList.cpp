#include "kaChildList.h"

#include "kaAnimationObject.h"
#include "kaChange.h"
#include "kaObjectClass.h"
#include "kaObjectRegistry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Whether taking `part` away may shrink `whole`.
bool touches(const kaExtent& whole, const kaExtent& part) {
    return part.begin <= whole.begin || part.end >= whole.end || part.maximum >= whole.maximum ||
           part.minimum <= whole.minimum;
}

/// Reaches as far as anything can.
constexpr float Infinite = std::numeric_limits<float>::infinity();
constexpr kaExtent Unbounded{-Infinite, Infinite, Infinite, -Infinite};

} // namespace

kaAnimationObject* kaChildList::resolve(kaUID id) {
    return kaObjectRegistry::the().find(id);
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

void kaChildList::setLinked(bool linked) {
    if (_linked != linked)
        _unlinkedLists += linked ? std::size_t(0) - 1 : 1;
    _linked = linked;
}

std::pair<kaAnimationObject*, bool> kaChildList::onlyOwnerOf(kaUID id) {
    const kaAnimationObject* object = resolve(id);
    return {object && object->_home ? object->_home->list->_owner : nullptr, _unlinkedLists == 0};
}

std::vector<kaUID> kaChildList::ids() const {
    if (!_linked)
        return idList();
    std::vector<kaUID> result;
    result.reserve(_size);
    for (const auto& chunk : _chunks)
        for (const Entry& entry : chunk->entries)
            result.push_back(entry.object()->getId());
    return result;
}

void kaChildList::noteEdit() {
    _changes.noteAll(++_revision);
    _owner->noteChangeBelow();
}

void kaChildList::sizeChanged(std::size_t size) {
    const bool flips = (_size == 0) != (size == 0);
    _size = size;
    noteEdit();
    if (flips)
        _owner->noteChange(kaChange::Structure);
}

void kaChildList::assign(std::vector<kaUID> ids) {
    const bool wasEmpty = empty();
    release();
    _size = ids.size();
    _ids = std::move(ids);
    setLinked(false);
    tryLink();
    if (wasEmpty != empty())
        _owner->noteChange(kaChange::Structure);
}

void kaChildList::append(kaAnimationObject& child) {
    if (_linked) {
        if (resolve(child) == &child && adoptable(child.getId(), &child)) {
            appendEntry(Entry(child));
            sizeChanged(_size + 1);
            return;
        }
        unlink();
    }
    idList().push_back(child.getId());
    sizeChanged(_size + 1);
}

bool kaChildList::remove(const kaAnimationObject& child) {
    if (!_linked)
        return removeID(child.getId());
    const kaAnimationObject* object = resolve(child);
    if (!isHome(object))
        return false;
    const Place place = find(*object);
    eraseEntry(*_chunks[place.chunk], place.index);
    sizeChanged(_size - 1);
    return true;
}

/// Allocates nothing, whatever form the ids are in.
bool kaChildList::removeID(kaUID id) {
    if (!removeReduced(id)) {
        const auto found = std::find(_ids.begin(), _ids.end(), id);
        if (found == _ids.end())
            return false;
        _ids.erase(found);
    }
    sizeChanged(_size - 1);
    if (empty())
        release();
    return true;
}

bool kaChildList::removeReduced(kaUID id) {
    for (const auto& chunk : _reduced) {
        auto& entries = chunk->entries;
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [id](const Entry& entry) { return entry.id() == id; });
        if (found == entries.end())
            continue;
        entries.erase(found);
        return true;
    }
    return false;
}

void kaChildList::release() {
    for (const auto& chunk : _chunks)
        for (const Entry& entry : chunk->entries)
            entry.object()->_home = nullptr;
    _chunks.clear();
    _firsts.clear();
    _reaches.clear();
    _groups.clear();
    _ids.clear();
    _reduced.clear();
    _otherThanKeys = 0;
    _out = nullptr;
    _extent = kaExtent();
    _extentValid = true;
    setLinked(true);
    _order = Order::Sorted;
    _size = 0;
    noteEdit();
}

void kaChildList::unlink() {
    std::vector<kaUID> all = ids();
    const std::size_t size = _size;
    release();
    _ids = std::move(all);
    _size = size;
    setLinked(false);
}

/// The same without memory, for what happens while a child is destroyed: the chunks are kept for the ids.
void kaChildList::unlinkInPlace() {
    const std::size_t size = _size;
    std::vector<std::unique_ptr<kaChildChunk>> chunks = std::move(_chunks);
    for (const auto& chunk : chunks) {
        for (Entry& entry : chunk->entries) {
            kaAnimationObject& child = *entry.object();
            child._home = nullptr;
            entry.reduceTo(child.getId());
        }
    }
    _chunks.clear();
    release();
    _reduced = std::move(chunks);
    _size = size;
    setLinked(false);
}

/// The ids while the list is not linked.
std::vector<kaUID>& kaChildList::idList() const {
    if (!_reduced.empty()) {
        _ids.reserve(_size);
        for (const auto& chunk : _reduced)
            for (const Entry& entry : chunk->entries)
                _ids.push_back(entry.id());
        _reduced.clear();
    }
    return _ids;
}

void kaChildList::childLost(kaAnimationObject& child) {
    if (!_ending) {
        unlinkInPlace();
        return;
    }
    const Place place = find(child);
    eraseEntry(*_chunks[place.chunk], place.index);
    --_size;
}

void kaChildList::beginTaking() {
    _ending = true;
    std::reverse(_ids.begin(), _ids.end());
    for (auto* chunks : {&_chunks, &_reduced}) {
        std::reverse(chunks->begin(), chunks->end());
        for (const auto& chunk : *chunks)
            std::reverse(chunk->entries.begin(), chunk->entries.end());
    }
    renumber(0);
}

kaUID kaChildList::takeNext() {
    --_size;
    if (!_reduced.empty())
        return takeNextReduced();
    if (!_linked) {
        const kaUID id = _ids.back();
        _ids.pop_back();
        return id;
    }
    kaChildChunk& chunk = *_chunks.back();
    const kaUID id = chunk.entries.back().object()->getId();
    eraseEntry(chunk, chunk.entries.size() - 1);
    return id;
}

kaUID kaChildList::takeNextReduced() {
    while (_reduced.back()->entries.empty())
        _reduced.pop_back();
    auto& entries = _reduced.back()->entries;
    const kaUID id = entries.back().id();
    entries.pop_back();
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
    _reaches.reserve(_chunks.size() + 1);
    _groups.reserve(_chunks.size() / GroupSize + 1);
    _chunks.insert(_chunks.begin() + offset, std::move(chunk));
    _firsts.insert(_firsts.begin() + offset, _chunks[at]->entries.front().begin());
    _reaches.insert(_reaches.begin() + offset, Reach());
    renumber(at);
    regroup(at);
}

/// The chunks from here on are others, or as many more or less.
void kaChildList::regroup(std::size_t from) {
    _groups.resize((_chunks.size() + GroupSize - 1) / GroupSize);
    for (std::size_t i = from / GroupSize; i < _groups.size(); ++i)
        _groups[i].valid = false;
}

void kaChildList::splitChunk(std::size_t at) {
    kaChildChunk& left = *_chunks[at];
    const auto middle = left.entries.begin() + static_cast<std::ptrdiff_t>(left.entries.size() / 2);
    auto second = std::make_unique<kaChildChunk>(*this);
    second->entries.reserve(ChunkSize);
    second->entries.assign(middle, left.entries.end());
    kaChildChunk& right = *second;
    addChunk(at + 1, std::move(second));
    _reaches[at + 1] = _reaches[at];
    left.entries.erase(middle, left.entries.end());
    for (const Entry& entry : right.entries) {
        entry.object()->_home = &right;
        right.selectedCount += entry.isSelected() ? 1U : 0U;
    }
    left.selectedCount -= right.selectedCount;
    left.extentValid = false;
    right.extentValid = false;
}

void kaChildList::widen(kaChildChunk& chunk, const Entry& entry) {
    chunk.selectedCount += entry.isSelected() ? 1U : 0U;
    _otherThanKeys += entry.isKey() ? 0U : 1U;
    _reaches[chunk.index].include(entry);
    if (!entry.counts())
        return;
    const kaExtent extent = entry.extent();
    chunk.extent.include(extent);
    _groups[chunk.index / GroupSize].extent.include(extent);
    _extent.include(extent);
}

/// @param extent  what the entry's child may have widened the list's by.
void kaChildList::narrow(kaChildChunk& chunk, const Entry& entry, const kaExtent& extent) {
    chunk.selectedCount -= entry.isSelected() ? 1U : 0U;
    _otherThanKeys -= entry.isKey() ? 0U : 1U;
    if (!entry.counts())
        return;
    if (touches(chunk.extent, extent))
        chunk.extentValid = false;
    Group& group = _groups[chunk.index / GroupSize];
    group.valid = group.valid && !touches(group.extent, extent);
    if (touches(_extent, extent))
        _extentValid = false;
}

void kaChildList::appendEntry(const Entry& entry) {
    const Entry* last = _chunks.empty() ? nullptr : &_chunks.back()->entries.back();
    const bool early = last && entry.begin() < last->begin();
    if (_chunks.empty() || _chunks.back()->entries.size() >= ChunkSize)
        addFirst(_chunks.size(), entry);
    else
        _chunks.back()->entries.push_back(entry);
    if (_order == Order::OneOut)
        _order = Order::Disturbed;
    if (early && _order == Order::Sorted) {
        _order = Order::OneOut;
        _out = entry.object();
    }
    kaChildChunk& chunk = *_chunks.back();
    entry.object()->_home = &chunk;
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
    const float begin = entry.begin();
    entries.insert(early ? std::upper_bound(entries.begin(), entries.end(), begin, Entry::ByBegin())
                         : std::lower_bound(entries.begin(), entries.end(), begin, Entry::ByBegin()),
                   entry);
    _firsts[chunk.index] = entries.front().begin();
    entry.object()->_home = &chunk;
    widen(chunk, entry);
}

void kaChildList::eraseEntry(kaChildChunk& chunk, std::size_t index) {
    const Entry entry = chunk.entries[index];
    const std::size_t at = chunk.index;
    if (_order == Order::OneOut && entry.object() == _out)
        _order = Order::Sorted;
    entry.object()->_home = nullptr;
    narrow(chunk, entry, entry.extent());
    chunk.entries.erase(chunk.entries.begin() + static_cast<std::ptrdiff_t>(index));
    if (chunk.entries.empty()) {
        _chunks.erase(_chunks.begin() + static_cast<std::ptrdiff_t>(at));
        _firsts.erase(_firsts.begin() + static_cast<std::ptrdiff_t>(at));
        _reaches.erase(_reaches.begin() + static_cast<std::ptrdiff_t>(at));
        renumber(at);
        regroup(at);
        if (_chunks.empty())
            _order = Order::Sorted;
    } else if (index == 0) {
        _firsts[at] = chunk.entries.front().begin();
    }
}

// What the children tell.

void kaChildList::childReshaped(const kaAnimationObject& child) {
    if (_ending)
        return;
    _changes.note(child, ++_revision);
    if (kaObjectClass::of(child).isKey())
        _owner->noteChangeBelow();
}

void kaChildList::childChanged(kaChildChunk& chunk, kaAnimationObject& child, kaChange change) {
    if (_ending)
        return;
    if (change != kaChange::Selection)
        childReshaped(child);
    const Place place = find(child);
    Entry& entry = chunk.entries[place.index];
    const Entry now(child);
    if (now.tellsTheSame(entry))
        return;
    if (std::isnan(now.begin())) {
        unlink();
        return;
    }
    const bool moved = now.begin() != entry.begin();
    narrow(chunk, entry, entry.isKey() ? entry.extent() : Unbounded);
    entry = now;
    widen(chunk, entry);
    if (place.index == 0)
        _firsts[place.chunk] = now.begin();
    if (moved)
        checkOrder(place);
}

/// The child at `place` has moved.
void kaChildList::checkOrder(Place place) {
    const Entry& moved = *at(place);
    if (_order == Order::OneOut && _out != moved.object())
        _order = Order::Disturbed;
    if (_order == Order::Disturbed)
        return;
    const Entry* previous = before(place);
    const Entry* next = at(normalized(place.chunk, place.index + 1));
    const bool isOut =
        (previous && moved.begin() < previous->begin()) || (next && next->begin() < moved.begin());
    _order = isOut ? Order::OneOut : Order::Sorted;
    _out = moved.object();
}

// Extent.

void kaChildList::recompute(kaChildChunk& chunk) {
    chunk.extent = kaExtent();
    for (const Entry& entry : chunk.entries)
        if (entry.counts())
            chunk.extent.include(entry.extent());
    chunk.extentValid = true;
}

void kaChildList::recompute(std::size_t group) {
    kaExtent extent;
    const std::size_t end = std::min(_chunks.size(), (group + 1) * GroupSize);
    for (std::size_t i = group * GroupSize; i < end; ++i) {
        if (!_chunks[i]->extentValid)
            recompute(*_chunks[i]);
        extent.include(_chunks[i]->extent);
    }
    _groups[group] = {extent, true};
}

/// A key's entry holds all of its reach.
void kaChildList::Reach::include(const Entry& entry) {
    include(entry.begin());
    if (entry.isKey())
        return;
    include(entry.object()->getBegin());
    include(entry.object()->getEnd());
}

void kaChildList::measure(std::size_t chunk) {
    _reaches[chunk] = Reach();
    for (const Entry& entry : _chunks[chunk]->entries)
        _reaches[chunk].include(entry);
}

kaExtent kaChildList::extent() {
    if (!_linked) {
        kaExtent result;
        forEach([&result](kaAnimationObject& child) {
            const Entry entry(child);
            if (entry.counts())
                result.include(entry.extent());
        });
        return result;
    }
    if (!_extentValid) {
        _extent = kaExtent();
        for (std::size_t i = 0; i < _groups.size(); ++i) {
            if (!_groups[i].valid)
                recompute(i);
            _extent.include(_groups[i].extent);
        }
        _extentValid = true;
    }
    return _extent;
}
