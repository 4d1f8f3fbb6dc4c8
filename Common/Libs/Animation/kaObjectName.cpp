#include "kaObjectName.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Names = std::array<std::string, kaObjectName::OwnNames>;

/// The names that the module gives by itself; never freed.
const Names& sharedNames() {
    static const auto* names = new Names{"Unnamed", "Point", "InTangent", "OutTangent", "Curve"};
    return *names;
}

bool isShared(const std::string* text) {
    const auto& names = sharedNames();
    return !std::less<>{}(text, names.data()) && std::less<>{}(text, names.data() + names.size());
}

const std::string* stored(const std::string& text) {
    const std::optional<std::size_t> own = kaObjectName::ownName(text);
    return own ? &sharedNames()[*own] : new std::string(text);
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

std::optional<std::size_t> kaObjectName::ownName() const {
    return isShared(_text) ? std::optional(static_cast<std::size_t>(_text - sharedNames().data()))
                           : std::nullopt;
}

std::optional<std::size_t> kaObjectName::ownName(const std::string& text) {
    const auto& names = sharedNames();
    const auto* name = std::find(names.begin(), names.end(), text);
    return name != names.end() ? std::optional(static_cast<std::size_t>(name - names.begin())) : std::nullopt;
}
