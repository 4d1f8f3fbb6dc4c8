#include "kaObjectRegistry.h"

#include "kaAnimationField.h"
#include "kaAnimationObject.h"
#include "kaChildList.h"
#include "kaEdits.h"

#include <algorithm>

bool kaObjectRegistry::insert(kaAnimationObject& object) {
    const kaUID id = object.getId();
    if (find(id))
        return false;
    const unsigned int type = object.getTypeID();
    if (type != KA_TYPE_POINT)
        _byType[type].emplace(id, &object);
    try {
        _index.insert(id, object);
    } catch (...) {
        _byType[type].erase(id);
        throw;
    }
    object._registered = true;
    object._findable = true;
    kaEdits::note();
    _epoch += type != KA_TYPE_POINT ? 1 : 0;
    return true;
}

void kaObjectRegistry::erase(kaUID id) {
    kaAnimationObject* found = find(id);
    if (!found)
        return;
    kaAnimationObject& object = *found;
    if (object._home)
        object._home->list->childLost(object);
    object._registered = false;
    object._findable = false;
    kaEdits::note();
    _index.erase(id);
    if (object.getTypeID() == KA_TYPE_POINT)
        return;
    _byType[object.getTypeID()].erase(id);
    ++_epoch;
}

void kaObjectRegistry::remove(kaAnimationObject& object) {
    erase(object.getId());
    if (object._registered)
        erase(keyOf(object));
}

/// The object's own id first; a host that changed the id behind the registry's back pays for a walk.
kaUID kaObjectRegistry::keyOf(const kaAnimationObject& object) const {
    kaUID result = object.getId();
    if (find(result) != &object)
        _index.forEach([&object, &result](kaUID id, const kaAnimationObject& other) {
            if (&other == &object)
                result = id;
        });
    return result;
}

/// Called when the object is all but gone, so its type is not asked.
void kaObjectRegistry::drop(kaAnimationObject& object) {
    const kaUID id = keyOf(object);
    if (find(id) != &object)
        return;
    _index.erase(id);
    for (auto& objects : _byType)
        objects.erase(id);
    object._registered = false;
    object._findable = false;
    kaEdits::note();
    ++_epoch;
}

bool kaObjectRegistry::insertField(kaAnimationField& field) {
    const kaUID id = field.getId();
    if (findField(id))
        return false;
    _fields.emplace(id, &field);
    try {
        _fieldIndex.insert(id, field);
    } catch (...) {
        _fields.erase(id);
        throw;
    }
    ++_fieldEpoch;
    kaEdits::note();
    return true;
}

/// A field that was left without an entry of its own pays for the walk, too.
kaUID kaObjectRegistry::keyOf(const kaAnimationField& field) const {
    if (findField(field.getId()) == &field)
        return field.getId();
    const auto found = std::find_if(_fields.begin(), _fields.end(),
                                    [&field](const auto& entry) { return entry.second == &field; });
    return found != _fields.end() ? found->first : field.getId();
}

void kaObjectRegistry::removeField(kaAnimationField& field) {
    const kaUID entered = keyOf(field);
    eraseField(field.getId());
    if (entered != field.getId())
        eraseField(entered);
}

void kaObjectRegistry::eraseField(kaUID id) {
    if (!_fieldIndex.erase(id))
        return;
    _fields.erase(id);
    ++_fieldEpoch;
    kaEdits::note();
}

/// The new entries are made first; taking the old one away and merging a node allocate nothing.
void kaObjectRegistry::replace(kaUID from, kaAnimationObject& object, kaUID to) {
    const unsigned int type = object.getTypeID();
    const kaUID former = object._registered && find(from) != &object ? keyOf(object) : from;
    std::map<kaUID, kaAnimationObject*> entry;
    if (type != KA_TYPE_POINT)
        entry.emplace(to, &object);
    _index.insert(to, object);
    erase(from);
    if (former != from)
        erase(former);
    _byType[type].merge(entry);
    object._registered = true;
    object._findable = true;
    kaEdits::note();
    _epoch += type != KA_TYPE_POINT ? 1 : 0;
}

void kaObjectRegistry::replaceField(kaUID from, kaAnimationField& field, kaUID to) {
    const kaUID former = findField(from) != &field ? keyOf(field) : from;
    std::map<kaUID, kaAnimationField*> entry{{to, &field}};
    _fieldIndex.insert(to, field);
    eraseField(from);
    if (former != from)
        eraseField(former);
    _fields.merge(entry);
    ++_fieldEpoch;
    kaEdits::note();
}

std::vector<kaObjectRegistry::Entry> kaObjectRegistry::ordered() const {
    std::vector<Entry> entries;
    entries.reserve(_index.size());
    _index.forEach([&entries](kaUID id, kaAnimationObject& object) { entries.emplace_back(id, &object); });
    std::sort(entries.begin(), entries.end());
    return entries;
}

std::vector<kaObjectRegistry::Entry> kaObjectRegistry::ofType(unsigned int type) const {
    std::vector<Entry> entries;
    if (type != KA_TYPE_POINT) {
        entries.assign(_byType[type].begin(), _byType[type].end());
        return entries;
    }
    _index.forEach([&entries](kaUID id, kaAnimationObject& object) {
        if (object.getTypeID() == KA_TYPE_POINT)
            entries.emplace_back(id, &object);
    });
    std::sort(entries.begin(), entries.end());
    return entries;
}
