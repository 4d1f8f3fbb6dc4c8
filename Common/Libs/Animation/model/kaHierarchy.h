#pragma once

#include "kaAnimationObject.h"

/// Rings and depth among objects. Containers refuse both, but a host may write parent ids and lists as it likes: every
/// question here ends after `KA_MAX_DEPTH` levels, whatever they say. `kaTreeWalk` goes down under the same limit.
class kaHierarchy {
  public:
    /// Calls `visit(Object&)` for `object` and its ancestors, from the object upwards; where it returns false the
    /// walk ends there. Null has no levels.
    /// @return how many were visited; one more than `KA_MAX_DEPTH` where there are more than that.
    template <class Object, class Visit>
    static unsigned int forEachUpwards(Object* object, Visit&& visit) {
        unsigned int levels = 0;
        while (object && levels++ < KA_MAX_DEPTH && visit(*object))
            object = object->getParentObject();
        return levels;
    }

    /// Levels from `object` up to its root, both included; 0 for null, and for a ring one more than `KA_MAX_DEPTH`.
    static unsigned int depthOf(const kaAnimationObject* object);

    /// Whether `ancestor` is `object` or one of its ancestors.
    static bool isAtOrAbove(const kaAnimationObject& ancestor, const kaAnimationObject& object);

    /// Whether `object` can stand `levelsBetween` levels below a child's place under `parent` without closing a ring
    /// and without its leaves standing deeper than `KA_MAX_DEPTH`.
    static bool mayAdopt(const kaAnimationObject& parent, const kaAnimationObject& object,
                         unsigned int levelsBetween);

    kaHierarchy() = delete;
};
