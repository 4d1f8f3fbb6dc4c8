#include "kaObjectName.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// The names that the module gives by itself; never freed.
const std::array<std::string, 5>& sharedNames() {
    static const auto* names =
        new std::array<std::string, 5>{"Unnamed", "Point", "InTangent", "OutTangent", "Curve"};
    return *names;
}

bool isShared(const std::string* text) {
    const auto& names = sharedNames();
    return !std::less<>{}(text, names.data()) && std::less<>{}(text, names.data() + names.size());
}

const std::string* stored(const std::string& text) {
    const auto& names = sharedNames();
    const auto* name = std::find(names.begin(), names.end(), text);
    return name != names.end() ? name : new std::string(text);
}

} // namespace

kaObjectName::kaObjectName() : _text(sharedNames().data()) {}

kaObjectName::kaObjectName(const std::string& text) : _text(stored(text)) {}

kaObjectName::kaObjectName(const kaObjectName& other)
    : _text(isShared(other._text) ? other._text : new std::string(*other._text)) {}

kaObjectName::kaObjectName(kaObjectName&& other) noexcept
    : _text(std::exchange(other._text, sharedNames().data())) {}

kaObjectName& kaObjectName::operator=(kaObjectName other) noexcept {
    std::swap(_text, other._text);
    return *this;
}

kaObjectName::~kaObjectName() {
    if (!isShared(_text))
        delete _text;
}
