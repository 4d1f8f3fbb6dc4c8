#pragma once

#include "kaAnimationObject.h"

/// The one walk up from an object: over the object itself and its ancestors, no further than `KA_MAX_DEPTH`
/// levels, so that parent ids that a host has made circular come to an end.
///
/// Calls `visit(Object&)` for each; where it returns false the walk ends there.
/// @return how many were visited; one more than `KA_MAX_DEPTH` where there are more than that.
template <class Object, class Visit>
unsigned int kaForEachUpwards(Object* object, Visit&& visit) {
    unsigned int levels = 0;
    while (object && levels++ < KA_MAX_DEPTH && visit(*object))
        object = object->getParentObject();
    return levels;
}
