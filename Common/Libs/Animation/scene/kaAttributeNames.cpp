#include "kaAttributeNames.h"

#include <algorithm>

kaAttributeNames& kaAttributeNames::the() {
    static kaAttributeNames instance;
    return instance;
}

bool kaAttributeNames::contains(const std::string& name) const {
    return _known.count(name) > 0;
}

void kaAttributeNames::add(const std::string& name) {
    if (!_known.insert(name).second)
        return;
    try {
        _names.push_back(name);
    } catch (...) {
        _known.erase(name);
        throw;
    }
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
    if (_known.erase(name) > 0)
        _names.erase(std::find(_names.rbegin(), _names.rend(), name).base() -
                     1); // `name` may be the very entry
}
