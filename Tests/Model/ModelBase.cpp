#include "Model.h"
#include "kaAnimationTypes.h"

namespace ka_model {

std::vector<Object*> World::childrenOf(const Object& object) const {
    std::vector<Object*> result;
    for (Id id : object.children)
        if (Object* child = find(id))
            result.push_back(child);
    return result;
}

Object* World::childAt(const Object& object, float begin) const {
    for (Object* child : childrenOf(object))
        if (child->begin() == begin)
            return child;
    return nullptr;
}

bool World::isChild(const Object& object, Id id) {
    for (Id child : object.children)
        if (child == id)
            return true;
    return false;
}

// Notices.

void World::sortChildren(Object* object) {
    object->children.sort([this](Id a, Id b) {
        const Object* first = find(a);
        const Object* second = find(b);
        return first && second && first->begin() < second->begin();
    });
}

void World::updateBounds(Object* object) {
    if (object->children.empty())
        return;
    Extent united;
    for (const Object* child : childrenOf(*object)) {
        if (child->children.empty() && child->type != SEQUENCE)
            continue;
        united.begin = child->begin() < united.begin ? child->begin() : united.begin;
        united.end = child->end() > united.end ? child->end() : united.end;
        united.maximum = child->maximum() > united.maximum ? child->maximum() : united.maximum;
        united.minimum = child->minimum() < united.minimum ? child->minimum() : united.minimum;
    }
    object->extent = united;
}

namespace {

void removeShared(std::set<Id>& from, const std::set<Id>& ids) {
    std::set<Id> found;
    for (Id id : ids) {
        if (from.count(id) == 0)
            continue;
        if (id == 0)
            break;
        found.insert(id);
    }
    for (Id id : found)
        from.erase(id);
}

} // namespace

void World::takeIn(Object* object, const std::set<Id>& curves, const std::set<Id>& sequences,
                   Operation operation) {
    if (operation == ADD) {
        object->curves.insert(curves.begin(), curves.end());
        object->sequences.insert(sequences.begin(), sequences.end());
    } else if (operation == SUB) {
        removeShared(object->curves, curves);
        removeShared(object->sequences, sequences);
    }
}

/// The ids are those that the child had when the notice started. Parents in a ring end after as many levels
/// as a tree may have.
void World::climb(Object* object, const std::set<Id>& curves, const std::set<Id>& sequences,
                  Operation operation, bool recursive) {
    Object* level = object;
    for (unsigned int i = 0; level && i < KA_MAX_DEPTH; ++i) {
        takeIn(level, curves, sequences, operation);
        sortChildren(level);
        updateBounds(level);
        level = recursive ? parentOf(*level) : nullptr;
    }
}

void World::updateBy(Object* object, Object* child, Operation operation, bool recursive) {
    if (!child)
        return;
    const std::set<Id> curves = child->curves;
    const std::set<Id> sequences = child->sequences;
    climb(object, curves, sequences, operation, recursive);
}

void World::updateAll(Object* object, const std::vector<Id>& ids, Operation operation, bool recursive) {
    if (ids.empty())
        return;
    const Object* first = find(ids.front());
    const std::set<Id> curves = first ? first->curves : std::set<Id>();
    const std::set<Id> sequences = first ? first->sequences : std::set<Id>();
    climb(object, curves, sequences, operation, recursive);
}

void World::tellParentMoved(Object* object, bool tellParent) {
    Object* parent = parentOf(*object);
    if (tellParent && parent)
        updateBy(parent, object, MOVE, true);
}

// Flags.

/// Curves that a host has made name each other are switched once on the way down.
void World::setActive(Object* object, bool active) {
    if (object->type == UNIT || object->type == STREAK || object->type == STRIP)
        for (Object* child : childrenOf(*object))
            setActive(child, active);
    if (_switching.insert(object).second) {
        for (const std::set<Id>& ids : {object->curves, object->sequences})
            for (Id id : ids) {
                Object* other = find(id);
                if (other && other != object)
                    setActive(other, active);
            }
        _switching.erase(object);
    }
    object->active = active;
}

void World::setRepeating(Object* object, bool repeating) {
    if (object->type == UNIT || object->type == STREAK || object->type == STRIP)
        for (Object* child : childrenOf(*object))
            setRepeating(child, repeating);
    object->repeating = repeating;
}

void World::setMotionBlur(Object* object, bool motionBlur) {
    if (object->type == UNIT || object->type == STREAK || object->type == STRIP)
        for (Object* child : childrenOf(*object))
            setMotionBlur(child, motionBlur);
    object->motionBlur = motionBlur;
}

void World::setSelected(Object* object, bool selected) {
    if (object->type == CURVE) {
        if (object->children.empty())
            return;
        for (Object* key : childrenOf(*object))
            setSelected(key, selected);
    }
    object->selected = selected;
    for (Object* handle : {object->in, object->out})
        if (handle && handle->selected)
            setSelected(handle, false);
}

void World::setLocked(Object* object, bool locked) {
    if (object->type != CURVE) {
        object->locked = locked;
        return;
    }
    if (object->children.empty())
        return;
    for (Object* key : childrenOf(*object))
        setLocked(key, locked);
    object->selected = locked;
}

} // namespace ka_model
