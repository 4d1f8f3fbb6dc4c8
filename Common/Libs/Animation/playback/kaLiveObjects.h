#pragma once

#include "kaWeak.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// Objects in the order they were put in, nulls and repetitions included, to be handed out by reference:
/// those that have been freed are taken out before the list is read.
///
/// Cost: a read is a compare while nothing that had a weak reference has gone, else one compare for each
/// entry.
template <class Object>
class kaLiveObjects {
  public:
    /// What is still there. Valid until the list changes or an object in it is freed.
    const std::vector<Object*>& objects() const {
        if (_departures != kaWeakSlots::departures())
            dropFreed();
        return _objects;
    }

    void assign(std::vector<Object*> objects) {
        clear();
        std::vector<kaWeak<Object>> references;
        references.reserve(objects.size());
        for (Object* object : objects)
            references.emplace_back(object);
        _references.swap(references);
        _objects.swap(objects);
    }

    void append(Object& object) {
        objects();
        _references.emplace_back(object);
        try {
            _objects.push_back(&object);
        } catch (...) {
            _references.pop_back();
            throw;
        }
    }

    /// The memory of a peak is given back.
    void clear() {
        if (_objects.capacity() > Kept)
            *this = kaLiveObjects();
        _objects.clear();
        _references.clear();
    }

  private:
    static constexpr std::size_t Kept = 4096;

    void dropFreed() const {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < _objects.size(); ++i) {
            if (_objects[i] && !_references[i])
                continue;
            _objects[kept] = _objects[i];
            _references[kept] = _references[i];
            ++kept;
        }
        _objects.resize(kept);
        _references.resize(kept);
        _departures = kaWeakSlots::departures();
    }

    mutable std::vector<Object*> _objects;
    mutable std::vector<kaWeak<Object>> _references; ///< to each of `_objects`
    mutable std::uint64_t _departures = 0;           ///< at the last look for what has been freed
};
