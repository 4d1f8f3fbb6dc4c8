#include "kaAttributeNames.h"

#include <algorithm>

kaAttributeNames& kaAttributeNames::the() {
    static kaAttributeNames instance;
    return instance;
}

bool kaAttributeNames::contains(const std::string& name) const {
    return std::find(_names.begin(), _names.end(), name) != _names.end();
}

void kaAttributeNames::add(const std::string& name) {
    if (!contains(name))
        _names.push_back(name);
}

void kaAttributeNames::addAll(const std::string& names) {
    std::size_t begin = 0;
    for (std::size_t comma = names.find(','); comma != std::string::npos; comma = names.find(',', begin)) {
        add(names.substr(begin, comma - begin));
        begin = comma + 1;
    }
    add(names.substr(begin));
}

void kaAttributeNames::remove(const std::string& name) {
    const std::string wanted = name; // may be an entry of the list itself
    _names.erase(std::remove(_names.begin(), _names.end(), wanted), _names.end());
}
