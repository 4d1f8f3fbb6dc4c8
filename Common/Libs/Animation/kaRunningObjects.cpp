#include "kaRunningObjects.h"

#include "kaAnimationObject.h"

#include <algorithm>

std::vector<kaUID> kaRunningObjects::ids() const {
    std::vector<kaUID> result;
    result.reserve(_byID.size());
    for (const auto& entry : _byID)
        result.push_back(entry.first);
    return result;
}

kaAnimationObject* kaRunningObjects::find(kaUID id) const {
    const auto found = _byID.find(id);
    return found != _byID.end() ? found->second : nullptr;
}

void kaRunningObjects::insert(kaAnimationObject& object) {
    const auto [entry, isNew] = _byID.emplace(object.getId(), &object);
    if (!isNew)
        return;
    try {
        _entries[&object].push_back(object.getId());
    } catch (...) {
        _byID.erase(entry);
        throw;
    }
}

void kaRunningObjects::erase(kaUID id) {
    const auto found = _byID.find(id);
    if (found == _byID.end())
        return;
    const auto entries = _entries.find(found->second);
    auto& ids = entries->second;
    ids.erase(std::find(ids.begin(), ids.end(), id));
    if (ids.empty())
        _entries.erase(entries);
    _byID.erase(found);
}

void kaRunningObjects::clear() {
    _byID.clear();
    _entries = Entries(); // a table is cleared over its capacity
}

void kaRunningObjects::drop(const kaAnimationObject* object) {
    const auto entries = _entries.find(object);
    if (entries == _entries.end())
        return;
    for (kaUID id : entries->second)
        _byID.erase(id);
    _entries.erase(entries);
}
