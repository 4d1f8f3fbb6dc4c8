#pragma once

#include "kaAnimationObject.h"
#include "kaObjectRegistry.h"

#include <vector>

/// The objects of one class that stand for themselves in the scene: in no registered object and not flagged
/// internal, in ascending id order.
template <class Object>
std::vector<Object*> kaSceneObjects() {
    std::vector<Object*> objects;
    for (const auto& entry : kaObjectRegistry::the().byType(Object::_typeID)) {
        kaAnimationObject* object = entry.second;
        if (!object->isInternal() && !object->getParentObject())
            objects.push_back(static_cast<Object*>(object));
    }
    return objects;
}

/// Those of them that are active.
template <class Object>
std::vector<Object*> kaActiveSceneObjects() {
    std::vector<Object*> active;
    for (Object* object : kaSceneObjects<Object>())
        if (object->isActive())
            active.push_back(object);
    return active;
}
