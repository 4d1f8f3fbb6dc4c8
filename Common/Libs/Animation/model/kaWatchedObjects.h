#pragma once

#include <unordered_set>
#include <vector>

class kaAnimationObject;

/// Objects to be gone through while any of them may be freed, by the going through itself or by a host that
/// is told of it; lives on the stack. Objects are followed by themselves, whatever id a host gives them
/// meanwhile.
///
/// Cost: freeing an object looks through the lists that stand at that moment, usually none, and allocates
/// nothing.
class kaWatchedObjects {
  public:
    /// Nulls are left out; an object that stands there twice is visited twice.
    explicit kaWatchedObjects(std::vector<kaAnimationObject*> objects);
    kaWatchedObjects(const kaWatchedObjects&) = delete;
    kaWatchedObjects& operator=(const kaWatchedObjects&) = delete;
    ~kaWatchedObjects();

    /// Calls `visit(kaAnimationObject&)` for every object that is still there when its turn comes, in order.
    template <class Visit>
    void visit(Visit&& visit) const {
        for (kaAnimationObject* object : _objects)
            if (_present.count(object) > 0)
                visit(*object);
    }

    /// An object is about to be freed.
    static void forget(kaAnimationObject* object);

  private:
    static kaWatchedObjects* _newest;

    std::vector<kaAnimationObject*> _objects;
    std::unordered_set<kaAnimationObject*> _present;
    kaWatchedObjects* _older;
};
