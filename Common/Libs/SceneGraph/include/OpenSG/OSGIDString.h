#pragma once

#include <OpenSG/OSGBaseTypes.h>
#include <iosfwd>
#include <ostream>
#include <string>
#include <utility>

namespace osg {

/// The name of a type or of a field.
class IDString {
  public:
    IDString() = default;
    IDString(const Char8* text) : _text(text == nullptr ? "" : text) {}
    IDString(std::string text) : _text(std::move(text)) {}

    /// The characters, zero-terminated; valid as long as this object.
    const Char8* str() const { return _text.c_str(); }
    UInt32 getLength() const { return static_cast<UInt32>(_text.size()); }
    bool isEmpty() const { return _text.empty(); }

    friend bool operator==(const IDString& a, const IDString& b) { return a._text == b._text; }
    friend bool operator!=(const IDString& a, const IDString& b) { return a._text != b._text; }
    friend bool operator<(const IDString& a, const IDString& b) { return a._text < b._text; }
    friend std::ostream& operator<<(std::ostream& stream, const IDString& name) {
        return stream << name._text;
    }

  private:
    std::string _text;
};

} // namespace osg
