#pragma once

#include "kaAnimationTypes.h"

#include <cstddef>
#include <unordered_set>
#include <utility>
#include <vector>

class kaAnimationObject;

/// The containers that walks of one kind are inside of, over all calls under way. None is entered twice, and
/// none beyond `KA_MAX_DEPTH` levels: that bounds walks through child lists that a host has made circular or
/// deeper than containers accept.
class kaWalkPath {
  public:
    bool enter(const kaAnimationObject& object) {
        return _open.size() < KA_MAX_DEPTH && _open.insert(&object).second;
    }
    void leave(const kaAnimationObject& object) { _open.erase(&object); }

    std::size_t size() const { return _open.size(); }

  private:
    std::unordered_set<const kaAnimationObject*> _open;
};

/// One level of a walk by recursion; stands on the stack. False where the path refuses.
class kaWalkLevel {
  public:
    kaWalkLevel(kaWalkPath& path, const kaAnimationObject& object)
        : _path(path), _object(object), _entered(path.enter(object)) {}
    kaWalkLevel(const kaWalkLevel&) = delete;
    kaWalkLevel& operator=(const kaWalkLevel&) = delete;
    ~kaWalkLevel() {
        if (_entered)
            _path.leave(_object);
    }

    explicit operator bool() const { return _entered; }

  private:
    kaWalkPath& _path;
    const kaAnimationObject& _object;
    bool _entered;
};

/// A depth-first walk from container to container without recursion. What is done on the way down, with each
/// child and on the way up is the caller's.
///
/// An object that is named more than once is walked each time, down to `Repeated` levels; below these once in a
/// walk, since the number of paths to it may double with every level.
template <class Object, class Level>
class kaTreeWalk {
  public:
    explicit kaTreeWalk(kaWalkPath& path) : _path(path) {}
    kaTreeWalk(const kaTreeWalk&) = delete;
    kaTreeWalk& operator=(const kaTreeWalk&) = delete;
    ~kaTreeWalk() {
        while (!_levels.empty())
            leave();
    }

    /// Makes `object` the innermost level. @return false, with nothing changed, where it is not to be walked.
    bool enter(Object& object) {
        _levels.emplace_back(&object, Level());
        if (!_path.enter(object)) {
            _levels.pop_back();
            return false;
        }
        if (_path.size() > Repeated && !_seen.insert(&object).second) {
            leave();
            return false;
        }
        return true;
    }

    void leave() {
        _path.leave(*_levels.back().first);
        _levels.pop_back();
    }

    bool isDone() const { return _levels.empty(); }
    /// The innermost level, good until another is entered or this one left.
    Object& object() { return *_levels.back().first; }
    Level& level() { return _levels.back().second; }

  private:
    static constexpr std::size_t Repeated = 24;

    kaWalkPath& _path;
    std::vector<std::pair<Object*, Level>> _levels;
    std::unordered_set<const kaAnimationObject*> _seen;
};

/// Children of one level, to be gone through.
template <class Child = kaAnimationObject>
struct kaWalkChildren {
    /// The next one; null after the last.
    Child* takeNext() { return next < list.size() ? list[next++] : nullptr; }

    std::vector<Child*> list;
    std::size_t next = 0;
};
