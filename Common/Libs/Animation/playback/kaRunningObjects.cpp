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
        _entries.emplace(&object, object.getId());
    } catch (...) {
        _byID.erase(entry);
        throw;
    }
}

void kaRunningObjects::erase(kaUID id) {
    const auto found = _byID.find(id);
    if (found == _byID.end())
        return;
    const auto entries = _entries.equal_range(found->second);
    _entries.erase(
        std::find_if(entries.first, entries.second, [id](const auto& entry) { return entry.second == id; }));
    _byID.erase(found);
}

void kaRunningObjects::clear() {
    _byID.clear();
    _entries = Entries(); // a table is cleared over its capacity
}

void kaRunningObjects::drop(const kaAnimationObject* object) {
    const auto entries = _entries.equal_range(object);
    for (auto entry = entries.first; entry != entries.second; ++entry)
        _byID.erase(entry->second);
    _entries.erase(entries.first, entries.second);
}
