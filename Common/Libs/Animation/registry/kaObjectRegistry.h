#pragma once

#include "kaAnimationTypes.h"
#include "kaFieldUses.h"
#include "kaIDTable.h"
#include "kaNameIndex.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

class kaAnimationField;
class kaAnimationObject;

/// Objects and fields by id, and the source of fresh ids. Look-ups go through a hash table. Everything but keys
/// and handles, which are nearly all of the objects, also stands in a map for each type, in ascending id order,
/// so that walks by type visit no others. Owns nothing and dereferences no pointer: its callers (`kaObjectStore`,
/// `kaFieldStore`) pass what it needs to know.
class kaObjectRegistry {
  public:
    using Entry = std::pair<kaUID, kaAnimationObject*>;

    /// The type whose objects stand in no map: that of keys.
    static constexpr unsigned int UnlistedType = KA_TYPE_POINT;

    /// The one registry of the process, made on first use.
    static kaObjectRegistry& the();
    /// Whether there is one: false before the first `the()` and once process exit has destroyed it.
    static bool isAlive();
    ~kaObjectRegistry();
    kaObjectRegistry(const kaObjectRegistry&) = delete;
    kaObjectRegistry& operator=(const kaObjectRegistry&) = delete;

    /// Seeds the process-wide generator unless `seed` is 0, then returns its next number.
    static unsigned long long random(unsigned long long seed);
    /// A fresh id: never 0, never one that has an entry.
    kaUID createUID() const;
    /// Whether neither an object nor a field has this id; 0 is unique.
    bool isIDUnique(kaUID id) const { return !find(id) && !findField(id); }

    kaAnimationObject* find(kaUID id) const { return _index.find(id); }
    kaAnimationField* findField(kaUID id) const { return _fieldIndex.find(id); }

    /// Enters an object of that type under an id. @return false, with nothing changed, when the id has an
    /// entry. @throws std::bad_alloc, with nothing changed.
    bool insert(kaUID id, unsigned int type, kaAnimationObject& object);
    /// Takes the entry of an id away, which matches an object of that type. Nothing without an entry.
    void erase(kaUID id, unsigned int type);
    /// The same for an object that is all but gone, whose type cannot be asked any more.
    void eraseOfAnyType(kaUID id);
    /// The id under which an object stands: `own`, the one that it has now, unless a host changed that behind
    /// the registry's back; then the cost is a walk. `own`, too, for an object without an entry.
    kaUID keyOf(const kaAnimationObject& object, kaUID own) const;

    /// The same for fields.
    bool insertField(kaUID id, kaAnimationField& field);
    void eraseField(kaUID id);
    kaUID keyOf(const kaAnimationField& field, kaUID own) const;

    std::size_t size() const { return _index.size(); }
    std::size_t fieldCount() const { return _fields.size(); }

    /// Of the objects that `matches(const kaAnimationObject&)` accepts the one with the smallest id, or null.
    /// Cost: O(n).
    template <class Matches>
    kaAnimationObject* smallestID(Matches&& matches) const {
        Entry best(0, nullptr);
        _index.forEach([&best, &matches](kaUID id, kaAnimationObject& object) {
            if ((!best.second || id < best.first) && matches(object))
                best = Entry(id, &object);
        });
        return best.second;
    }

    /// Every object in ascending id order. Cost: O(n log n).
    std::vector<Entry> ordered() const;
    /// The objects of one type in ascending id order. Cost: O(n of that type); for keys O(n log n).
    std::vector<Entry> ofType(unsigned int type) const;
    /// The objects of one type other than keys, in ascending id order, without a copy.
    const std::map<kaUID, kaAnimationObject*>& byType(unsigned int type) const { return _byType[type]; }
    const std::map<kaUID, kaAnimationField*>& fields() const { return _fields; }
    /// What the entered curves name; `kaObjectStore` keeps it.
    const kaFieldUses& fieldUses() const { return _fieldUses; }
    kaFieldUses& fieldUses() { return _fieldUses; }
    /// What the entered objects are called; `kaObjectStore` keeps it.
    kaNameIndex& names() { return _names; }

    /// Changes whenever an object other than a key comes or goes; never 0.
    std::uint64_t epoch() const { return _epoch; }
    /// Changes whenever a field comes or goes; never 0.
    std::uint64_t fieldEpoch() const { return _fieldEpoch; }

  private:
    kaObjectRegistry();

    kaIDTable<kaAnimationObject> _index;
    std::array<std::map<kaUID, kaAnimationObject*>, KA_TYPE_COUNT> _byType;
    kaIDTable<kaAnimationField> _fieldIndex;
    std::map<kaUID, kaAnimationField*> _fields;
    kaFieldUses _fieldUses;
    kaNameIndex _names;
    std::uint64_t _epoch = 1;
    std::uint64_t _fieldEpoch = 1;
};
