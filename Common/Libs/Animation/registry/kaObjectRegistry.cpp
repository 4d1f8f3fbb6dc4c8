#include "kaObjectRegistry.h"

#include "kaEdits.h"

#include <algorithm>
#include <iterator>

namespace {

bool registryAlive = false;

} // namespace

kaObjectRegistry& kaObjectRegistry::the() {
    static kaObjectRegistry instance;
    return instance;
}

bool kaObjectRegistry::isAlive() {
    return registryAlive;
}

kaObjectRegistry::kaObjectRegistry() {
    registryAlive = true;
}

kaObjectRegistry::~kaObjectRegistry() {
    registryAlive = false;
}

// Ids.

unsigned long long kaObjectRegistry::random(unsigned long long seed) {
    static unsigned long long state = 0;
    if (seed != 0)
        state = seed;
    state = state * 1664525ULL + 1013904223ULL;
    return state;
}

kaUID kaObjectRegistry::createUID() const {
    kaUID id = random(0);
    while (id == 0 || !isIDUnique(id))
        id = random(0);
    return id;
}

// Objects.

bool kaObjectRegistry::insert(kaUID id, unsigned int type, kaAnimationObject& object) {
    if (find(id))
        return false;
    if (type != UnlistedType)
        _byType[type].emplace(id, &object);
    try {
        _index.insert(id, object);
    } catch (...) {
        _byType[type].erase(id);
        throw;
    }
    kaEdits::note();
    _epoch += type != UnlistedType ? 1 : 0;
    return true;
}

void kaObjectRegistry::erase(kaUID id, unsigned int type) {
    if (!_index.erase(id))
        return;
    kaEdits::note();
    if (type == UnlistedType)
        return;
    _byType[type].erase(id);
    ++_epoch;
}

void kaObjectRegistry::eraseOfAnyType(kaUID id) {
    if (!_index.erase(id))
        return;
    for (auto& objects : _byType)
        objects.erase(id);
    kaEdits::note();
    ++_epoch;
}

kaUID kaObjectRegistry::keyOf(const kaAnimationObject& object, kaUID own) const {
    kaUID result = own;
    if (find(own) != &object)
        _index.forEach([&object, &result](kaUID id, const kaAnimationObject& other) {
            if (&other == &object)
                result = id;
        });
    return result;
}

// Fields.

bool kaObjectRegistry::insertField(kaUID id, kaAnimationField& field) {
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

void kaObjectRegistry::eraseField(kaUID id) {
    if (!_fieldIndex.erase(id))
        return;
    _fields.erase(id);
    ++_fieldEpoch;
    kaEdits::note();
}

kaUID kaObjectRegistry::keyOf(const kaAnimationField& field, kaUID own) const {
    if (findField(own) == &field)
        return own;
    const auto found = std::find_if(_fields.begin(), _fields.end(),
                                    [&field](const auto& entry) { return entry.second == &field; });
    return found != _fields.end() ? found->first : own;
}

// Walks.

std::vector<kaObjectRegistry::Entry> kaObjectRegistry::ordered() const {
    std::vector<Entry> entries;
    entries.reserve(_index.size());
    _index.forEach([&entries](kaUID id, kaAnimationObject& object) { entries.emplace_back(id, &object); });
    std::sort(entries.begin(), entries.end());
    return entries;
}

/// Keys stand in no map: they are what stands in the index and in none.
std::vector<kaObjectRegistry::Entry> kaObjectRegistry::ofType(unsigned int type) const {
    if (type != UnlistedType)
        return {_byType[type].begin(), _byType[type].end()};
    std::vector<Entry> others;
    for (const auto& objects : _byType)
        others.insert(others.end(), objects.begin(), objects.end());
    std::sort(others.begin(), others.end());
    std::vector<Entry> entries;
    entries.reserve(_index.size() - others.size());
    const std::vector<Entry> all = ordered();
    std::set_difference(all.begin(), all.end(), others.begin(), others.end(), std::back_inserter(entries));
    return entries;
}
