#pragma once

#include "kaAnimationExport.h"

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

  private:
    const std::string* _text;
};
