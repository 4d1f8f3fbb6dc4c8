#pragma once

#include "kaAnimationExport.h"

#include <cstddef>
#include <optional>
#include <string>

/// Name of an object, one pointer wide: the names that the module itself gives to thousands of keys and
/// handles are stored once, any other name is owned.
class KA_ANIMATION_API kaObjectName {
  public:
    kaObjectName();                                       ///< "Unnamed"
    explicit kaObjectName(const std::string& text);       ///< Any text, empty too.
    kaObjectName(const kaObjectName& other);              ///< The same text.
    kaObjectName(kaObjectName&& other) noexcept;          ///< Leaves "Unnamed" behind.
    kaObjectName& operator=(kaObjectName other) noexcept; ///< Takes the text.
    ~kaObjectName();

    const std::string& text() const { return *_text; } ///< Valid until the name is assigned to.

    /// How many names the module itself gives.
    static constexpr std::size_t OwnNames = 5;
    /// Which of them this is, or a text is; none for any other.
    std::optional<std::size_t> ownName() const;
    static std::optional<std::size_t> ownName(const std::string& text); ///< The same for a text.

  private:
    const std::string* _text;
};
