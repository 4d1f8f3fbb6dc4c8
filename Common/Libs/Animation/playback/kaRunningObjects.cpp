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
    if (_byID.emplace(object.getId(), &object).second)
        ++_entryCounts[&object];
}

void kaRunningObjects::erase(kaUID id) {
    const auto found = _byID.find(id);
    if (found == _byID.end())
        return;
    const auto count = _entryCounts.find(found->second);
    if (--count->second == 0)
        _entryCounts.erase(count);
    _byID.erase(found);
}

void kaRunningObjects::clear() {
    _byID.clear();
    _entryCounts.clear();
}

/// The entry stands under the object's id; only one whose id was changed while it ran has to be searched for.
void kaRunningObjects::drop(const kaAnimationObject* object) {
    if (_entryCounts.count(object) == 0)
        return;
    if (find(object->getId()) == object)
        erase(object->getId());
    while (_entryCounts.count(object) > 0) {
        const auto found = std::find_if(_byID.begin(), _byID.end(),
                                        [object](const auto& entry) { return entry.second == object; });
        erase(found->first);
    }
}
