#pragma once

#include "kaWeakSlots.h"

#include <cstddef>
#include <vector>

/// A reference to an object or a field that does not keep it: null once that has been freed, whatever id it
/// had and whatever stands at its address then. Followed by itself, not by id. 8 bytes, copied as a number.
///
/// After a call out to the host, and while objects are gone through that may free each other, this is what
/// tells what is left. Cost: a compare; the first reference to an object takes it a slot (`kaWeakSlots`),
/// which needs memory once.
template <class Object>
class kaWeak {
  public:
    kaWeak() = default;
    explicit kaWeak(Object& object) : _slot(object.weakSlot()), _generation(kaWeakSlots::generation(_slot)) {}
    explicit kaWeak(Object* object) : kaWeak() {
        if (object)
            *this = kaWeak(*object);
    }

    /// The object; null when it has been freed, and for a reference to nothing.
    Object* get() const {
        return static_cast<Object*>(Object::fromWeakSlot(kaWeakSlots::find(_slot, _generation)));
    }
    explicit operator bool() const { return kaWeakSlots::find(_slot, _generation) != nullptr; }

    /// Starts fetching from memory what `get` reads.
    void fetch() const { kaWeakSlots::fetch(_slot); }

  private:
    kaWeakSlots::Slot _slot = 0;
    std::uint32_t _generation = 0;
};

/// Objects or fields in order, any of which may be freed: by what visits them, by a host that is told of it,
/// or later.
template <class Object>
class kaWeakList {
  public:
    kaWeakList() = default;
    /// Nulls are left out; an object that stands there twice is visited twice.
    template <class Base>
    explicit kaWeakList(const std::vector<Base*>& objects) {
        _objects.reserve(objects.size());
        for (Base* object : objects)
            if (object)
                _objects.emplace_back(*object);
    }

    void append(Object& object) { _objects.emplace_back(object); }
    void clear() { _objects.clear(); }
    /// Whether nothing has been put in. A list of objects that have all been freed is not empty.
    bool empty() const { return _objects.empty(); }

    /// The objects that are still there.
    std::vector<Object*> objects() const {
        std::vector<Object*> present;
        present.reserve(_objects.size());
        visit([&present](Object& object) { present.push_back(&object); });
        return present;
    }

    /// Calls `visit(Object&)` for every object that is still there when its turn comes, in order. `visit`
    /// must not edit the list.
    /// @return how many were visited.
    template <class Visit>
    unsigned int visit(Visit&& visit) const {
        unsigned int count = 0;
        for (std::size_t place = 0; Object* object = next(place);) {
            visit(*object);
            ++count;
        }
        return count;
    }

    /// The first from `place` on that is still there, and moves `place` behind it; null at the end.
    Object* next(std::size_t& place) const {
        while (place < _objects.size())
            if (Object* object = _objects[place++].get())
                return object;
        return nullptr;
    }

  private:
    std::vector<kaWeak<Object>> _objects;
};
