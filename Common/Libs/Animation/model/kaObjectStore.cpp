#include "kaObjectStore.h"

#include "kaAnimationObject.h"
#include "kaChildList.h"

#include <array>

kaObjectStore::Hooks kaObjectStore::hooks;

namespace {

std::array<void (*)(kaAnimationObject& object), 4> forgetters{};

} // namespace

void kaObjectStore::addForgetter(void (*forget)(kaAnimationObject& object)) {
    for (auto& place : forgetters)
        if (!place || place == forget) {
            place = forget;
            return;
        }
}

void kaObjectStore::forget(kaAnimationObject& object) {
    for (auto* forgetter : forgetters)
        if (forgetter)
            forgetter(object);
}

// Entries.

bool kaObjectStore::enter(kaAnimationObject& object) {
    if (!kaObjectRegistry::the().insert(object.getId(), object.getTypeID(), object))
        return false;
    object._registered = true;
    object._findable = true;
    return true;
}

/// Takes the entry of an id away, whatever object it holds.
void kaObjectStore::erase(kaUID id) {
    kaAnimationObject* object = find(id);
    if (!object)
        return;
    if (object->_home)
        object->_home->list->childLost(*object);
    object->_registered = false;
    object->_findable = false;
    kaObjectRegistry::the().erase(id, object->getTypeID());
}

void kaObjectStore::remove(kaAnimationObject& object) {
    erase(object.getId());
    if (object._registered)
        erase(kaObjectRegistry::the().keyOf(object, object.getId()));
}

/// The object's type is not asked any more.
void kaObjectStore::drop(kaAnimationObject& object) {
    const kaUID id = kaObjectRegistry::the().keyOf(object, object.getId());
    if (find(id) != &object)
        return;
    kaObjectRegistry::the().eraseOfAnyType(id);
    object._registered = false;
    object._findable = false;
}

/// The new entry is made before the former goes: taking one away allocates nothing.
void kaObjectStore::rename(kaAnimationObject& object, kaUID to) {
    kaObjectRegistry& registry = kaObjectRegistry::the();
    const kaUID from = object.getId();
    object.setId(to);
    kaAnimationObject* entered = registry.find(from);
    if (!entered)
        return;
    const kaUID former = object._registered && entered != &object ? registry.keyOf(object, from) : from;
    try {
        registry.insert(to, object.getTypeID(), object);
    } catch (...) {
        object.setId(from);
        throw;
    }
    erase(from);
    if (former != from)
        erase(former);
    object._registered = true;
    object._findable = true;
}

// Copies and ends.

kaAnimationObject* kaObjectStore::duplicateAny(kaAnimationObject* source) {
    return source ? kaObjectClass::of(*source).duplicate(*source) : nullptr;
}

void kaObjectStore::free(kaAnimationObject& object) {
    remove(object);
    kaObjectClass::of(object).free(object);
}

/// The base itself is never made here and so never freed.
void kaObjectStore::destroy(kaAnimationObject* object) {
    if (!object || kaObjectClass::of(*object).level == kaObjectClass::Level::None)
        return;
    takeOut(*object);
    kaObjectClass::of(*object).free(*object);
}

void kaObjectStore::takeOut(kaAnimationObject& object) {
    if (hooks.leaveNode)
        hooks.leaveNode(object);
    kaAnimationObject* parent = object.getParentObject();
    if (parent && parent != &object)
        parent->subObject(&object, false);
    remove(object);
}

void kaObjectStore::destroyKey(kaAnimationObject* key) {
    if (!key)
        return;
    kaAnimationObject* parent = key->getParentObject();
    if (parent && kaObjectClass::of(*parent).level == kaObjectClass::Level::Curve)
        parent->subObject(key, false);
    free(*key);
}
