#pragma once

#include "kaAnimationTypes.h"

#include <cstddef>
#include <unordered_set>
#include <utility>
#include <vector>

class kaAnimationObject;

/// The containers that one kind of walk down has open, from all calls under way: none is entered again, and
/// none beyond `KA_MAX_DEPTH` levels, so that child lists that a host has bent into a ring or written deeper
/// than containers accept are walked within bounds.
class kaDescentPath {
  public:
    bool enter(const kaAnimationObject& object) {
        return _open.size() < KA_MAX_DEPTH && _open.insert(&object).second;
    }
    void leave(const kaAnimationObject& object) { _open.erase(&object); }

    std::size_t size() const { return _open.size(); }

  private:
    std::unordered_set<const kaAnimationObject*> _open;
};

/// One level of a walk that goes down by calling itself; lives on the stack. False where the path refuses.
class kaDescentStep {
  public:
    kaDescentStep(kaDescentPath& path, const kaAnimationObject& object)
        : _path(path), _object(object), _entered(path.enter(object)) {}
    kaDescentStep(const kaDescentStep&) = delete;
    kaDescentStep& operator=(const kaDescentStep&) = delete;
    ~kaDescentStep() {
        if (_entered)
            _path.leave(_object);
    }

    explicit operator bool() const { return _entered; }

  private:
    kaDescentPath& _path;
    const kaAnimationObject& _object;
    bool _entered;
};

/// A walk down from container to container that keeps its levels in a list of its own, so that no depth is a
/// matter of the stack. What is done on the way down, with each child and on the way up is the caller's.
///
/// An object that several lists name, or one list twice, is walked as often as it is named down to `Repeated`
/// levels; deeper than that each is entered once in a walk, as the ways to it may double with every level.
template <class Object, class Level>
class kaDescent {
  public:
    explicit kaDescent(kaDescentPath& path) : _path(path) {}
    kaDescent(const kaDescent&) = delete;
    kaDescent& operator=(const kaDescent&) = delete;
    ~kaDescent() {
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

    kaDescentPath& _path;
    std::vector<std::pair<Object*, Level>> _levels;
    std::unordered_set<const kaAnimationObject*> _seen;
};

/// Children of one level, to be gone through.
template <class Child = kaAnimationObject>
struct kaDescentChildren {
    /// The next one; null after the last.
    Child* takeNext() { return next < list.size() ? list[next++] : nullptr; }

    std::vector<Child*> list;
    std::size_t next = 0;
};
