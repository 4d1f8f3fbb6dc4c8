#pragma once

#include "kaAnimationTypes.h"
#include "kaIDTable.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

class kaAnimationField;
class kaAnimationObject;

/// Objects and fields by id. Finding goes through an index; everything but the keys, which are few kinds of
/// few objects, also stands in ordered maps by type, so that walks visit only what they ask for. Owns
/// nothing.
class kaObjectRegistry {
  public:
    using Entry = std::pair<kaUID, kaAnimationObject*>;

    kaAnimationObject* find(kaUID id) const { return _index.find(id); }
    kaAnimationField* findField(kaUID id) const { return _fieldIndex.find(id); }

    /// Enters an object under its id. @return false, with nothing changed, when the id has an entry.
    bool insert(kaAnimationObject& object);
    /// Takes the entry of an id away, whatever object it holds.
    void erase(kaUID id);
    /// Takes away the entry of the object's id, whatever object it holds, and the object's own, should a host
    /// have written its id: an object that is being destroyed is found by nobody.
    void remove(kaAnimationObject& object);
    /// Takes an object's entry away, under whatever id it stands.
    void drop(kaAnimationObject& object);

    /// Takes the entry of `from` away, whatever object it holds, and enters `object` under `to`, which is
    /// free and the object's id; any other entry of the object goes. When memory runs out nothing is changed.
    void replace(kaUID from, kaAnimationObject& object, kaUID to);

    bool insertField(kaAnimationField& field);
    void eraseField(kaUID id);
    /// The same for fields: `remove` and `replace`.
    void removeField(kaAnimationField& field);
    void replaceField(kaUID from, kaAnimationField& field, kaUID to);

    std::size_t size() const { return _index.size(); }
    std::size_t fieldCount() const { return _fields.size(); }

    /// Of the objects that `holds(const kaAnimationObject&)` accepts the one with the smallest id, or null.
    /// Cost: O(n).
    template <class Holds>
    kaAnimationObject* smallestID(Holds&& holds) const {
        Entry best(0, nullptr);
        _index.forEach([&best, &holds](kaUID id, kaAnimationObject& object) {
            if ((!best.second || id < best.first) && holds(object))
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

    /// Changes whenever an object other than a key comes or goes; never 0.
    std::uint64_t epoch() const { return _epoch; }
    /// Changes whenever a field comes or goes; never 0.
    std::uint64_t fieldEpoch() const { return _fieldEpoch; }

  private:
    /// The id under which an object stands; its own, unless a host changed that behind the registry's back.
    kaUID keyOf(const kaAnimationObject& object) const;
    /// The same for fields; without an entry the field's own id.
    kaUID keyOf(const kaAnimationField& field) const;

    kaIDTable<kaAnimationObject> _index;
    std::array<std::map<kaUID, kaAnimationObject*>, KA_TYPE_COUNT> _byType;
    kaIDTable<kaAnimationField> _fieldIndex;
    std::map<kaUID, kaAnimationField*> _fields;
    std::uint64_t _epoch = 1;
    std::uint64_t _fieldEpoch = 1;
};
