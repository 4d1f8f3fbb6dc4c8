#pragma once

#include "kaForgetfulList.h"

#include <vector>

class kaAnimationObject;

/// Objects to be gone through while any of them may be freed, by the going through itself or by a host that
/// is told of it; lives on the stack. Objects are followed by themselves, whatever id a host gives them
/// meanwhile.
///
/// Cost: freeing an object looks through the lists that stand at that moment, usually none.
class kaWatchedObjects {
  public:
    /// Nulls are left out; an object that stands there twice is visited twice.
    explicit kaWatchedObjects(const std::vector<kaAnimationObject*>& objects);
    kaWatchedObjects(const kaWatchedObjects&) = delete;
    kaWatchedObjects& operator=(const kaWatchedObjects&) = delete;
    ~kaWatchedObjects();

    /// Calls `visit(kaAnimationObject&)` for every object that is still there when its turn comes, in order.
    template <class Visit>
    void visit(Visit&& visit) const {
        const std::vector<kaAnimationObject*> objects = _objects.objects();
        for (kaAnimationObject* object : objects)
            if (_objects.contains(object))
                visit(*object);
    }

    /// An object is about to be freed.
    static void forget(const kaAnimationObject& object);

  private:
    static kaWatchedObjects* _newest;

    kaForgetfulList<kaAnimationObject> _objects;
    kaWatchedObjects* _older;
};
