#pragma once

#include <algorithm>
#include <boost/unordered/unordered_flat_set.hpp>
#include <utility>
#include <vector>

class kaAnimationObject;

/// Objects in the order they were put in, nulls and repetitions included, which those leave that are freed.
///
/// Cost: leaving is one look-up, and nothing while the list is empty; the first read after objects have left
/// is linear.
template <class Object>
class kaForgetfulList {
  public:
    bool empty() const { return objects().empty(); }

    /// What is still there. Valid until the list changes or an object in it is freed.
    const std::vector<Object*>& objects() const {
        if (!_gone.empty()) {
            const auto isGone = [this](const Object* object) { return _gone.contains(object); };
            _objects.erase(std::remove_if(_objects.begin(), _objects.end(), isGone), _objects.end());
            _gone.clear();
        }
        return _objects;
    }

    /// Whether an object was put in and is still there; nothing is read through the pointer.
    bool contains(const Object* object) const { return _members.contains(object); }

    void assign(std::vector<Object*> objects) {
        clear();
        _objects = std::move(objects);
        _members.insert(_objects.begin(), _objects.end());
    }

    /// Those that have left go first: the new object may stand where one of them stood in memory.
    void append(Object* object) {
        objects();
        _objects.push_back(object);
        _members.insert(object);
    }

    void clear() {
        _objects.clear();
        _members.clear();
        _gone.clear();
    }

    /// An object is about to be freed.
    void forget(const kaAnimationObject* object) {
        if (!_members.empty() && _members.erase(object) > 0)
            _gone.insert(object);
    }

  private:
    mutable std::vector<Object*> _objects;
    boost::unordered_flat_set<const kaAnimationObject*> _members;
    mutable boost::unordered_flat_set<const kaAnimationObject*> _gone; ///< in `_objects`, but freed
};
