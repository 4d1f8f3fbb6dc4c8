#include "kaNameIndex.h"

bool kaNameIndex::Before::operator()(const Entry& a, const Entry& b) const {
    const int order = a.first == b.first ? 0 : a.first->compare(*b.first);
    return order != 0 ? order < 0 : a.second < b.second;
}

void kaNameIndex::insert(const kaObjectName& name, bool isKey, kaUID id) {
    const std::optional<std::size_t> own = isKey ? name.ownName() : std::nullopt;
    if (!own) {
        _listed.emplace(&name.text(), id);
        return;
    }
    Keys& keys = _keys[*own];
    if (keys.count == 0 || (keys.smallest && id < *keys.smallest))
        keys.smallest = id;
    ++keys.count;
}

void kaNameIndex::erase(const kaObjectName& name, bool isKey, kaUID id) {
    if (isKey && name.ownName())
        eraseKey(name, id);
    else
        _listed.erase({&name.text(), id});
}

void kaNameIndex::eraseOfAnyType(const kaObjectName& name, kaUID id) {
    if (_listed.erase({&name.text(), id}) == 0 && name.ownName())
        eraseKey(name, id);
}

void kaNameIndex::eraseKey(const kaObjectName& name, kaUID id) {
    Keys& keys = _keys[*name.ownName()];
    --keys.count;
    if (keys.smallest == id || keys.count == 0)
        keys.smallest.reset();
}

bool kaNameIndex::contains(const std::string& name) const {
    const std::optional<std::size_t> own = kaObjectName::ownName(name);
    return (own && _keys[*own].count > 0) || smallestListed(name);
}

std::optional<kaUID> kaNameIndex::smallestListed(const std::string& name) const {
    const auto found = _listed.lower_bound({&name, 0});
    return found != _listed.end() && *found->first == name ? std::optional(found->second) : std::nullopt;
}

kaNameIndex::Keys* kaNameIndex::keysOf(const std::string& name) {
    const std::optional<std::size_t> own = kaObjectName::ownName(name);
    return own ? &_keys[*own] : nullptr;
}
