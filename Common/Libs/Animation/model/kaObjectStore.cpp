#include "kaObjectStore.h"

#include "kaAnimationObject.h"
#include "kaChildList.h"

#include <optional>

kaObjectStore::Hooks kaObjectStore::hooks;

// Entries.

bool kaObjectStore::enter(kaAnimationObject& object) {
    if (find(object.getId()))
        return false;
    insert(object.getId(), object);
    object._registered = true;
    object._findable = true;
    return true;
}

/// Under an id that is free. @throws std::bad_alloc, with nothing changed.
void kaObjectStore::insert(kaUID id, kaAnimationObject& object) {
    kaObjectRegistry& registry = kaObjectRegistry::the();
    const unsigned int type = object.getTypeID();
    const bool isKey = kaObjectClass::of(object).isKey();
    registry.insert(id, type, object);
    bool isNamed = false;
    try {
        registry.names().insert(object._name, isKey, id);
        isNamed = true;
        if (const auto field = kaObjectClass::of(object).field)
            registry.fieldUses().insert(field(object), id);
    } catch (...) {
        if (isNamed)
            registry.names().erase(object._name, isKey, id);
        registry.erase(id, type);
        throw;
    }
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
    kaObjectRegistry& registry = kaObjectRegistry::the();
    if (const auto field = kaObjectClass::of(*object).field)
        registry.fieldUses().erase(field(*object), id);
    registry.names().erase(object->_name, kaObjectClass::of(*object).isKey(), id);
    registry.erase(id, object->getTypeID());
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
    kaObjectRegistry::the().names().eraseOfAnyType(object._name, id);
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
        insert(to, object);
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

// Names.

kaAnimationObject* kaObjectStore::findByName(const std::string& name) {
    if (name.empty())
        return nullptr;
    kaObjectRegistry& registry = kaObjectRegistry::the();
    const auto id = registry.names().smallest(name, [&registry](const std::string& text) {
        const kaAnimationObject* key = registry.smallestID([&text](const kaAnimationObject& object) {
            return kaObjectClass::of(object).isKey() && object.getName() == text;
        });
        return key ? std::optional(registry.keyOf(*key, key->getId())) : std::nullopt;
    });
    return id ? find(*id) : nullptr;
}

void kaObjectStore::changeName(const kaAnimationObject& object, const kaObjectName& name) {
    if (!object._registered || !kaObjectRegistry::isAlive())
        return;
    kaObjectRegistry& registry = kaObjectRegistry::the();
    const kaUID id = registry.keyOf(object, object.getId());
    const bool isKey = kaObjectClass::of(object).isKey();
    registry.names().insert(name, isKey, id);
    registry.names().erase(object._name, isKey, id);
}

// Curves by field.

void kaObjectStore::moveToField(const kaAnimationObject& curve, kaUID from, kaUID to) {
    if (!curve._registered || from == to || !kaObjectRegistry::isAlive())
        return;
    kaObjectRegistry& registry = kaObjectRegistry::the();
    const kaUID id = registry.keyOf(curve, curve.getId());
    registry.fieldUses().insert(to, id);
    registry.fieldUses().erase(from, id);
}

void kaObjectStore::leaveField(const kaAnimationObject& curve, kaUID field) {
    if (!curve._registered || !kaObjectRegistry::isAlive())
        return;
    kaObjectRegistry& registry = kaObjectRegistry::the();
    registry.fieldUses().erase(field, registry.keyOf(curve, curve.getId()));
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
