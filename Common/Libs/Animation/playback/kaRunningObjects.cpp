#include "kaRunningObjects.h"

#include "kaAnimationObject.h"

const kaRunningObjects::Map& kaRunningObjects::map() const {
    if (_departures == kaWeakSlots::departures())
        return _objects;
    for (auto entry = _references.begin(); entry != _references.end();) {
        const auto current = entry++;
        if (!current->second) {
            _objects.erase(current->first);
            _references.erase(current);
        }
    }
    _departures = kaWeakSlots::departures();
    return _objects;
}

std::vector<kaUID> kaRunningObjects::ids() const {
    std::vector<kaUID> result;
    result.reserve(map().size());
    for (const auto& entry : map())
        result.push_back(entry.first);
    return result;
}

/// Looks at one entry only: asked for each object of a tick in which others are freed.
kaAnimationObject* kaRunningObjects::find(kaUID id) const {
    const auto found = _references.find(id);
    return found != _references.end() ? found->second.get() : nullptr;
}

void kaRunningObjects::insert(kaAnimationObject& object) {
    const kaUID id = object.getId();
    if (find(id))
        return;
    erase(id); // what stood there has been freed
    const auto entry = _objects.emplace(id, &object).first;
    try {
        _references.emplace(id, object);
    } catch (...) {
        _objects.erase(entry);
        throw;
    }
}

void kaRunningObjects::erase(kaUID id) {
    _objects.erase(id);
    _references.erase(id);
}

void kaRunningObjects::clear() {
    _objects.clear();
    _references.clear();
}
