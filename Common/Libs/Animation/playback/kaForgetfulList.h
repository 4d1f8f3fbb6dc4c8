#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <unordered_set>
#include <utility>
#include <vector>

class kaAnimationObject;

/// Objects in the order they were put in, nulls and repetitions included, which those leave that are freed.
///
/// Cost: leaving is one look-up, and nothing while the list is empty; the first read after objects have left
/// sorts those that left.
template <class Object>
class kaForgetfulList {
  public:
    bool empty() const { return objects().empty(); }

    /// What is still there. Valid until the list changes or an object in it is freed.
    const std::vector<Object*>& objects() const {
        if (!_gone.empty()) {
            std::sort(_gone.begin(), _gone.end(), std::less<>());
            const auto isGone = [this](const kaAnimationObject* object) {
                return std::binary_search(_gone.begin(), _gone.end(), object, std::less<>());
            };
            _objects.erase(std::remove_if(_objects.begin(), _objects.end(), isGone), _objects.end());
            _gone.clear();
        }
        return _objects;
    }

    void assign(std::vector<Object*> objects) {
        clear();
        _members.insert(objects.begin(), objects.end());
        _gone.reserve(_members.size());
        _objects = std::move(objects);
    }

    /// Those that have left go first: the new object may stand where one of them stood in memory.
    void append(Object* object) {
        objects();
        if (_gone.capacity() <= _members.size())
            _gone.reserve(2 * _members.size() + 1);
        _members.insert(object);
        _objects.push_back(object);
    }

    /// Cost: nothing when empty. Tables are cleared over their capacity, so that of a peak is given up.
    void clear() {
        if (_objects.empty() && _members.empty() && _gone.empty() && _objects.capacity() <= Kept)
            return;
        if (_objects.capacity() > Kept) {
            *this = kaForgetfulList();
            return;
        }
        _objects.clear();
        _members.clear();
        _gone.clear();
    }

    /// An object is about to be freed. Room is kept for all to leave: nothing is allocated.
    void forget(const kaAnimationObject* object) {
        if (!_members.empty() && _members.erase(object) > 0)
            _gone.push_back(object);
    }

  private:
    static constexpr std::size_t Kept = 4096;

    mutable std::vector<Object*> _objects;
    std::unordered_set<const kaAnimationObject*> _members;
    mutable std::vector<const kaAnimationObject*> _gone; ///< in `_objects`, but freed
};
