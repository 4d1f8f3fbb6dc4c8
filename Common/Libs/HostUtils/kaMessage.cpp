#include "kaMessage.h"

#include <algorithm>

kaMessage::kaMessage(std::string name) : _name(std::move(name)) {}

void kaMessage::setName(std::string name) {
    _name = std::move(name);
}

kaMessage::Entry* kaMessage::find(std::string_view key) {
    const auto entry =
        std::find_if(_entries.begin(), _entries.end(), [&](const Entry& e) { return e.first == key; });
    return entry == _entries.end() ? nullptr : &*entry;
}

bool kaMessage::set(std::string_view key, boost::any value, bool overwrite) {
    if (Entry* entry = find(key)) {
        if (overwrite) {
            entry->second.swap(value);
        }
        return overwrite;
    }
    _entries.emplace_back(std::string(key), std::move(value));
    return true;
}

const boost::any* kaMessage::get(std::string_view key) const {
    const Entry* entry = const_cast<kaMessage*>(this)->find(key);
    return entry ? &entry->second : nullptr;
}
