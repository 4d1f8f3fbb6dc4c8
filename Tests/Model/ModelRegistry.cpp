#include "Model.h"

#include <algorithm>

namespace ka_model {

Object* World::find(Id id) const {
    const auto found = objects.find(id);
    return found == objects.end() ? nullptr : found->second;
}

Object* World::findOfType(Id id, Type type) const {
    Object* object = find(id);
    return object && object->type == type ? object : nullptr;
}

Field* World::findField(Id id) const {
    const auto found = fields.find(id);
    return found == fields.end() ? nullptr : found->second;
}

Object* World::parentOf(const Object& object) const {
    return object.parent == 0 ? nullptr : find(object.parent);
}

// Ids.

Id World::draw() {
    generator = generator * 1664525ULL + 1013904223ULL;
    return generator;
}

Id World::createUID() {
    Id id = draw();
    while (id == 0 || !isUnique(id))
        id = draw();
    return id;
}

void World::setID(Id id, Object* object) {
    const Id old = object->id;
    object->id = isUnique(id) ? id : createUID();
    if (objects.erase(old) == 0)
        return;
    forgetEntries(object); // a host that wrote the id directly may have left one under another
    enter(object);
}

void World::setID(Id id, Field* field) {
    const Id old = field->id;
    field->id = isUnique(id) ? id : createUID();
    if (fields.erase(old) == 0)
        return;
    forgetEntries(field);
    fields.emplace(field->id, field);
}

// Creation.

Object* World::make(Type type, Id id, const std::string& name) {
    everyObject.push_back(std::make_unique<Object>());
    Object* object = everyObject.back().get();
    object->type = type;
    object->id = id != 0 ? id : createUID();
    object->name = name;
    return object;
}

Object* World::makePoint(Spot position, const std::string& name, Id id, bool isTangent) {
    Object* point = make(POINT, id, name);
    point->position = position;
    point->isTangent = isTangent;
    if (!isTangent) {
        point->in = makePoint(position, "InTangent", 0, true);
        point->out = makePoint(position, "OutTangent", 0, true);
        for (Object* handle : {point->in, point->out}) {
            handle->parent = point->id;
            handle->owner = point;
        }
    }
    point->children.push_back(point->id);
    return point;
}

Object* World::createPoint(Spot position, Id id) {
    Object* point = makePoint(position, "Point", id, false);
    enter(point);
    return point;
}

Object* World::createCurve(Id id) {
    Object* curve = make(CURVE, id, "Curve");
    curve->field = createField(0)->id;
    curve->curves.insert(curve->id);
    enter(curve);
    return curve;
}

Object* World::createContainer(Type type, Id id) {
    Object* container = make(type, id, type == UNIT ? "Block" : type == STREAK ? "Track" : "Clip");
    enter(container);
    return container;
}

Object* World::createSequence(const std::string& name, Id id) {
    Object* sequence = make(SEQUENCE, id, name);
    sequence->sequences.insert(sequence->id);
    enter(sequence);
    return sequence;
}

Field* World::createField(Id id) {
    everyField.push_back(std::make_unique<Field>());
    Field* field = everyField.back().get();
    field->id = id != 0 ? id : createUID();
    fields.emplace(field->id, field);
    return field;
}

// Duplication. A copy is registered when it is complete; what it is made of is registered before it.

Object* World::copyPoint(Object* source) {
    Object* copy = make(POINT, 0, source->name);
    copy->position = source->position;
    copy->savedPosition = source->savedPosition;
    copy->savedIn = source->savedIn;
    copy->savedOut = source->savedOut;
    copy->tangentType = source->tangentType;
    copy->lengthMode = source->lengthMode;
    copy->in = source->in ? duplicate(source->in) : nullptr;
    copy->out = source->out ? duplicate(source->out) : nullptr;
    for (Object* handle : {copy->in, copy->out})
        if (handle)
            handle->owner = copy;
    copy->parent = parentOf(*source) ? source->parent : 0;
    setSelected(copy, source->selected);
    copy->locked = source->locked;
    copy->children.push_back(copy->id);
    return copy;
}

Object* World::copyCurve(Object* source) {
    Object* copy = make(CURVE, 0, source->name);
    copy->extent = source->extent;
    copy->rangeBegin = source->rangeBegin;
    copy->rangeEnd = source->rangeEnd;
    copy->active = source->active;
    copy->playing = source->playing;
    copy->repeating = source->repeating;
    copy->flipped = source->flipped;
    copy->trimmed = source->trimmed;
    copy->motionBlur = source->motionBlur;
    copy->parent = parentOf(*source) ? source->parent : 0;
    copy->field = source->field;
    // The selected and locked flags arrive while the copy has no keys, so it ignores them.
    for (Id id : std::list<Id>(source->children))
        if (Object* key = findOfType(id, POINT))
            addObject(copy, duplicate(key));
    copy->curves.insert(copy->id);
    return copy;
}

Object* World::copyContainer(Object* source) {
    Object* copy = make(source->type, 0, source->name);
    copy->extent.begin = source->extent.begin;
    copy->extent.end = source->extent.end;
    copy->rangeBegin = source->rangeBegin;
    copy->rangeEnd = source->rangeEnd;
    copy->active = source->active;
    copy->playing = source->playing;
    copy->repeating = source->repeating;
    copy->motionBlur = source->motionBlur;
    copy->flipped = source->flipped;
    copy->trimmed = source->trimmed;
    copy->nodeID = source->nodeID;
    copy->index = source->index;
    copy->parent = parentOf(*source) ? source->parent : 0;
    for (Id id : std::list<Id>(source->children)) {
        Object* child = source->type == UNIT     ? findOfType(id, CURVE)
                        : source->type == STREAK ? find(id)
                                                 : findOfType(id, STREAK);
        Object* duplicated = child ? duplicate(child) : nullptr;
        if (duplicated)
            addObject(copy, duplicated);
    }
    return copy;
}

Object* World::duplicate(Object* object) {
    Object* copy = nullptr;
    if (object->type == POINT)
        copy = copyPoint(object);
    else if (object->type == CURVE)
        copy = copyCurve(object);
    else if (object->type != SEQUENCE)
        copy = copyContainer(object);
    if (copy)
        enter(copy);
    return copy;
}

Object* World::duplicateSequence(Object* source) {
    Object* copy = make(SEQUENCE, 0, source->name);
    copy->armed = source->armed;
    copy->extent.begin = source->extent.begin;
    copy->extent.end = source->extent.end;
    copy->active = source->active;
    copy->playing = source->playing;
    copy->repeating = source->repeating;
    copy->parent = parentOf(*source) ? source->parent : 0;
    copy->sequences.insert(copy->id);
    enter(copy);
    return copy;
}

// Destruction: attachment, parent, registry entry by the object's own id, clean-up.

void World::leaveNode(Object* object) {
    unsigned int id = 0;
    if (object->type == UNIT)
        id = object->nodeID;
    else if (object->type == CURVE)
        if (const Field* field = findField(object->field))
            id = field->nodeID;
    if (Node* node = nodeOf(id)) {
        const auto listed = std::find(node->objectIDs.begin(), node->objectIDs.end(), object->id);
        if (listed != node->objectIDs.end())
            node->objectIDs.erase(listed);
    }
}

void World::forgetEntries(const Object* object) {
    for (auto entry = objects.begin(); entry != objects.end();)
        entry = entry->second == object ? objects.erase(entry) : std::next(entry);
}

void World::forgetEntries(const Field* field) {
    for (auto entry = fields.begin(); entry != fields.end();)
        entry = entry->second == field ? fields.erase(entry) : std::next(entry);
}

/// Nothing that holds objects holds one that is gone.
void World::forgetHeld(const Object* object) {
    for (std::vector<Object*>* list : {&copyBuffer, &waiting, &jumpCurves, &jumpSequences})
        list->erase(std::remove(list->begin(), list->end(), object), list->end());
    for (auto entry = runningByID.begin(); entry != runningByID.end();)
        entry = entry->second == object ? runningByID.erase(entry) : std::next(entry);
}

void World::destroyPoint(Object* point) {
    Object* parent = parentOf(*point);
    const Id id = point->id;
    if (parent && parent->type == CURVE)
        subObject(parent, point, false);
    objects.erase(id);
    forgetEntries(point);
    free(point);
}

void World::destroy(Object* object) {
    Object* parent = parentOf(*object);
    const Id id = object->id;
    leaveNode(object);
    if (parent)
        subObject(parent, object, false);
    objects.erase(id);
    forgetEntries(object);
    free(object);
}

void World::free(Object* object) {
    object->alive = false;
    if (object->owner)
        (object->owner->in == object ? object->owner->in : object->owner->out) = nullptr;
    for (Object* handle : {object->in, object->out}) {
        if (!handle)
            continue;
        handle->parent = 0;
        handle->owner = nullptr;
        free(handle);
    }
    for (Id id : std::list<Id>(object->children)) {
        Object* child = object->type == POINT && id == object->id ? nullptr : find(id);
        if (child && child != object)
            destroy(child);
    }
    forgetEntries(object);
    forgetHeld(object);
}

void World::destroyField(Field* field) {
    fields.erase(field->id);
    forgetEntries(field);
    field->alive = false;
}

void World::destroyAllObjects(bool all) {
    bool destroyed = true;
    while (destroyed && objects.size() >= 2) {
        destroyed = false;
        for (const auto& entry : objects)
            if (all || !entry.second->internal) {
                destroy(entry.second);
                destroyed = true;
                break;
            }
    }
}

// Copy and paste.

Node* World::nodeOf(unsigned int id) {
    for (Node& node : nodes)
        if (id != 0 && node.id == id)
            return &node;
    return nullptr;
}

void World::clearCopyBuffer(bool destroyThem) {
    for (Object* object : takeCopyBuffer())
        if (destroyThem && object->alive)
            destroy(object);
}

std::vector<Object*> World::takeCopyBuffer() {
    std::vector<Object*> taken;
    taken.swap(copyBuffer);
    return taken;
}

bool World::copy(Object* object) {
    return copy(std::vector<Object*>{object});
}

bool World::copy(const std::vector<Object*>& list) {
    clearCopyBuffer(true);
    for (Object* object : list)
        if (object && object->alive)
            if (Object* duplicated = duplicate(object))
                copyBuffer.push_back(duplicated);
    return !copyBuffer.empty();
}

bool World::groupOf(unsigned int container, unsigned int& group, bool& isNode) {
    for (const Node& node : nodes) {
        isNode = container == node.id;
        group = node.coreGroup;
        if (container != 0 && (isNode || container == node.coreID))
            return true;
    }
    return false;
}

bool World::canPaste(const Node& node, const Object& object) {
    for (Id id : object.curves) {
        const Object* curve = findOfType(id, CURVE);
        if (!curve)
            continue;
        const Field* field = findField(curve->field);
        unsigned int group = 0;
        bool isNode = false;
        if (!field || !groupOf(field->fcID, group, isNode) || (group != node.coreGroup && !isNode))
            return false;
    }
    return true;
}

bool World::paste(Node* node, bool force) {
    for (const Object* object : copyBuffer)
        if (!force && !canPaste(*node, *object))
            return false;
    for (Object* object : takeCopyBuffer()) {
        for (Id id : object->curves) {
            Object* curve = findOfType(id, CURVE);
            const Field* field = curve ? findField(curve->field) : nullptr;
            if (!field)
                continue;
            for (Id candidate : node->fieldIDs) {
                const Field* target = findField(candidate);
                if (target && target->attribute == field->attribute && target->valuePos == field->valuePos)
                    curve->field = target->id;
            }
        }
        if (object->type == UNIT) {
            object->nodeID = node->id;
            for (Id id : object->curves) {
                const auto listed = std::find(node->objectIDs.begin(), node->objectIDs.end(), id);
                if (findOfType(id, CURVE) && listed != node->objectIDs.end())
                    node->objectIDs.erase(listed);
            }
        }
        node->objectIDs.push_back(object->id);
    }
    return true;
}

} // namespace ka_model
