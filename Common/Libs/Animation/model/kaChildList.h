#pragma once

#include "kaAnimationTypes.h"
#include "kaChildEntry.h"
#include "kaRecentChanges.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class kaAnimationObject;
class kaChildList;
enum class kaChange : unsigned char;

/// A run of up to `kaChildList::ChunkSize` consecutive children. Chunks never move in memory, so a child can
/// remember the one it stands in.
struct kaChildChunk {
    explicit kaChildChunk(kaChildList& owner) : list(&owner) {}

    kaChildList* list;
    std::vector<kaChildEntry> entries;
    kaExtent extent; ///< of the entries that count, while `extentValid`
    bool extentValid = true;
    unsigned int selectedCount = 0;
    std::size_t index = 0; ///< position among the list's chunks
};

/// The ordered child ids of one object, with what the parent reads of each child kept beside them.
///
/// Usually the list is *linked*: every id is registered, stands once, in this list only, and has a begin that is
/// a number. Then the list keeps pointers to the children in chunks, with their begins and extents; each child
/// points back to its chunk and reports its changes, and sorting, looking up and uniting extents touch only what
/// has changed. Otherwise the list is the ids alone, which every operation resolves and walks; the next `sort`
/// links it again if it can.
///
/// Not for hosts. Costs are for the linked case with n children, c = n / ChunkSize.
class kaChildList {
  public:
    static constexpr std::size_t ChunkSize = 128;

    explicit kaChildList(kaAnimationObject& owner) : _owner(&owner) {}
    kaChildList(const kaChildList&) = delete;
    kaChildList& operator=(const kaChildList&) = delete;
    ~kaChildList() { release(); }

    bool empty() const { return _size == 0; }
    std::size_t size() const { return _size; }
    std::vector<kaUID> ids() const;

    /// Replaces the ids as they stand, unsorted.
    void assign(std::vector<kaUID> ids);
    /// Puts the child's id at the end, unsorted.
    void append(kaAnimationObject& child);
    /// Takes out the first entry equal to the child's id. Cost: O(log c + ChunkSize).
    bool remove(const kaAnimationObject& child);
    /// Lets go of all children, which no longer know this list; the list is empty then.
    void release();

    /// Taking all children out one by one, in list order, without allocating: for an owner that is being
    /// destroyed. From `beginTaking` on the list answers nothing but `empty`.
    void beginTaking();
    kaUID takeNext();

    /// Stable sort by begin; ids that the registry does not know keep their relative order as a list merge
    /// leaves them. Cost: nothing when in order, O(log n + ChunkSize) when one child was appended or moved
    /// since, else O(n log n).
    void sort();

    /// United extent of the children that count. Cost: O(1), or O(ChunkSize + GroupSize + c / GroupSize)
    /// after a child shrank or left.
    kaExtent extent();

    /// Position of the first entry equal to `id`, and whether there is one.
    std::pair<std::size_t, bool> position(kaUID id) const;
    /// Position of the first registered child with exactly this begin, and whether there is one.
    std::pair<std::size_t, bool> position(float begin) const;
    bool contains(kaUID id) const;
    /// The same for the child's id; without a search where the registry finds the child under it.
    bool contains(const kaAnimationObject& child) const;
    kaAnimationObject* firstAt(float begin) const;
    /// The same, and asks for the memory of the keys on both sides, for a caller that is about to put a key
    /// there and then reads them.
    kaAnimationObject* firstAtPrefetching(float begin) const;

    /// The registered children next to the first entry equal to the child's id in list order; there must be
    /// one. The entry itself may be unknown to the registry.
    std::pair<kaAnimationObject*, kaAnimationObject*> beside(const kaAnimationObject& child) const;

    /// What stands around a begin in ascending order of begin; of equal begins the first in list order.
    struct Around {
        kaAnimationObject* at = nullptr;
        kaAnimationObject* before = nullptr;
        kaAnimationObject* after = nullptr;
    };
    Around around(float begin) const;

    /// The first registered child in list order that begins at or after `begin`, and its neighbours in list
    /// order; without one, `before` is the last child.
    Around firstNotBefore(float begin) const;

    /// Finds out whether children that were all moved one by one are in order again. Cost: O(n) when they
    /// were not.
    void recheckOrder();

    /// The registered children whose selected flag is set, in list order. Cost: O(c) and the selected ones'
    /// chunks.
    std::vector<kaAnimationObject*> selected() const;

    /// Calls `visit(kaAnimationObject&)` for every registered child in list order. `visit` must not edit the
    /// list.
    template <class Visit>
    void forEach(Visit&& visit) const {
        if (_linked) {
            for (const auto& chunk : _chunks)
                for (const auto& entry : chunk->entries)
                    visit(*entry.object());
        } else {
            for (kaUID id : idList())
                if (kaAnimationObject* object = resolve(id))
                    visit(*object);
        }
    }

    /// Whether `test(const kaAnimationObject&)` holds for any registered child. Where begin and end of a
    /// child both stand before `from` or both behind `to`, it must not. Cost: O(c), and the chunks that reach
    /// in.
    template <class Test>
    bool anyNear(float from, float to, Test&& test);

    bool isLinked() const { return _linked; }
    /// The object that alone lists the id, null for none, and whether that is known without a walk: not while any
    /// list of the process is not linked.
    static std::pair<kaAnimationObject*, bool> onlyOwnerOf(kaUID id);

    /// Of a linked list that is not empty.
    const kaAnimationObject& first() const { return *_chunks.front()->entries.front().object(); }
    const kaAnimationObject& last() const { return *_chunks.back()->entries.back().object(); }
    /// Whether all children are known to be keys, without a look at any.
    bool hasKeysOnly() const { return _linked && _otherThanKeys == 0; }
    /// Whether the children are known to be in ascending order of begin.
    bool isSorted() const { return _linked && _order == Order::Sorted; }
    /// Grows with every change of the list or of a linked child; says nothing while the list is not
    /// linked.
    std::uint64_t revision() const { return _revision; }

    /// Calls `visit(const kaAnimationObject&)` for each linked child that has changed since `revision`, in
    /// no order, where all that has changed are a few children in their places. @return false, without a
    /// call, where more has: which children there are, their order, or more of them than are remembered.
    template <class Visit>
    bool forEachChanged(std::uint64_t revision, Visit&& visit) const {
        return _linked && _changes.forEachSince(revision, visit);
    }

    /// Position of a linked child. Cost: O(log ChunkSize + c).
    std::size_t positionOf(const kaAnimationObject& child) const;

    /// A linked child has changed.
    void childChanged(kaChildChunk& chunk, kaAnimationObject& child, kaChange change);
    /// The same where nothing that the list keeps of the child is concerned: a handle of a key has moved.
    void childReshaped(const kaAnimationObject& child);
    /// A linked child leaves the registry or changes its id while it is listed: its id stays, unknown.
    void childLost(kaAnimationObject& child);

  private:
    enum class Order {
        Sorted,
        OneOut,   ///< sorted but for `_out`
        Disturbed ///< more than one child may stand out of order
    };
    /// A place among the chunks; the end is {number of chunks, 0}.
    struct Place {
        std::size_t chunk;
        std::size_t index;
    };
    using Entry = kaChildEntry;
    /// From where to where the children of a chunk reach at most, those included that do not count.
    struct Reach {
        void include(float frame) {
            from = frame < from ? frame : from;
            to = frame > to ? frame : to;
        }
        void include(const Entry& entry);

        float from = KA_EMPTY_EXTENT;
        float to = -KA_EMPTY_EXTENT;
    };
    /// As many chunks in a row, whose extents are united together.
    static constexpr std::size_t GroupSize = 64;
    struct Group {
        kaExtent extent; ///< while `valid`
        bool valid = false;
    };

    void setLinked(bool linked);
    static kaAnimationObject* resolve(kaUID id);
    static const kaAnimationObject* resolve(const kaAnimationObject& child);
    bool isHome(const kaAnimationObject* child) const;
    bool adoptable(kaUID id, const kaAnimationObject* object) const;

    void appendEntry(const Entry& entry);
    void addFirst(std::size_t at, const Entry& entry);
    kaChildChunk& makeRoom(float begin, bool early);
    void insertEntry(kaChildChunk& chunk, const Entry& entry, bool early);
    void eraseEntry(kaChildChunk& chunk, std::size_t index);
    void addChunk(std::size_t at, std::unique_ptr<kaChildChunk> chunk);
    void splitChunk(std::size_t at);
    void renumber(std::size_t from);
    void widen(kaChildChunk& chunk, const Entry& entry);
    void narrow(kaChildChunk& chunk, const Entry& entry, const kaExtent& extent);
    void checkOrder(Place place);
    static void recompute(kaChildChunk& chunk);
    void recompute(std::size_t group);
    void regroup(std::size_t from);
    void measure(std::size_t chunk);

    void sortOne();
    void sortAll();
    void sortIDs();
    bool sortKnown();
    bool tryLink();
    void unlink();
    void unlinkInPlace();
    std::vector<kaUID>& idList() const;
    bool removeID(kaUID id);
    bool removeReduced(kaUID id);
    kaUID takeNextReduced();
    void noteEdit();
    void sizeChanged(std::size_t size);

    Place lowerBound(float begin) const;
    Place upperBound(float begin) const;
    const Entry* at(Place place) const;
    Place placeBefore(Place place) const;
    const Entry* before(Place place) const;
    Place normalized(std::size_t chunk, std::size_t index) const;
    Place find(const kaAnimationObject& child) const;
    Around aroundSorted(float begin) const;
    Around aroundLinear(float begin) const;

    kaAnimationObject* _owner;
    std::vector<std::unique_ptr<kaChildChunk>> _chunks;
    std::vector<float> _firsts;  ///< begin of each chunk's first entry
    std::vector<Reach> _reaches; ///< of each chunk
    std::vector<Group> _groups;
    mutable std::vector<kaUID> _ids; ///< the list while it is not linked (`idList`)
    /// The same where a child's loss made it so: what had been chunks, with ids for entries.
    mutable std::vector<std::unique_ptr<kaChildChunk>> _reduced;
    std::size_t _size = 0;
    std::size_t _otherThanKeys = 0; ///< linked children that are no keys
    std::uint64_t _revision = 0;
    /// Children by revision. A key that is dragged changes, and so do the keys beside it, whose handles
    /// follow.
    kaRecentChanges<kaAnimationObject> _changes;
    kaExtent _extent;
    bool _extentValid = true;
    bool _linked = true;
    inline static std::size_t _unlinkedLists = 0;
    bool _ending = false; ///< `beginTaking` was called
    Order _order = Order::Sorted;
    const kaAnimationObject* _out = nullptr; ///< for `Order::OneOut`
};

template <class Test>
bool kaChildList::anyNear(float from, float to, Test&& test) {
    if (!_linked) {
        bool any = false;
        forEach([&](const kaAnimationObject& child) { any = any || test(child); });
        return any;
    }
    for (std::size_t i = 0; i < _reaches.size(); ++i) {
        if (_reaches[i].to < from || to < _reaches[i].from)
            continue;
        for (const Entry& entry : _chunks[i]->entries)
            if (test(static_cast<const kaAnimationObject&>(*entry.object())))
                return true;
        measure(i); // it may have reached farther once
    }
    return false;
}
