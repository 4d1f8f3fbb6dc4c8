#pragma once

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class QDomElement;

/// The attributes that readers look at; any other is passed over.
enum class kaXmlAttribute : std::uint8_t {
    Id,
    TypeID,
    FcID,
    Name,
    Attribute,
    Value,
    ValuePos,
    Dirty,
    TangentType,
    TangentLengthMode,
    Field,
    Active,
    Repeating,
    Flipped,
    MotionBlur,
    Begin,
    End,
    Objects,
    Count
};

/// The children whose tag and text readers look at; any other child matters for its id alone.
enum class kaXmlTag : std::uint8_t { Position, InTangent, OutTangent, Other };

/// One element of the document's list as its reader needs it: values by attribute and the children in
/// document order, all as Latin-1 bytes. A missing attribute is an empty one.
///
/// The views point into what the element was read from.
struct kaAnimationXmlElement {
    struct Child {
        kaXmlTag tag = kaXmlTag::Other;
        std::string_view id;
        std::string_view text;
    };

    std::string_view operator[](kaXmlAttribute attribute) const {
        return attributes[static_cast<std::size_t>(attribute)];
    }

    std::array<std::string_view, static_cast<std::size_t>(kaXmlAttribute::Count)> attributes;
    std::vector<Child> children;
};

/// A document's elements, boiled down to what readers look at: a small fraction of a DOM's size, so that a
/// document can be checked as a whole before anything is made of it, and then be gone through twice.
///
/// Elements are recorded from front to back: `beginElement`, its attributes, each of its children with
/// `beginChild`, `childID` and `childText`, and `endElement`. Of an attribute recorded twice the last value
/// stands. Characters outside Latin-1 become '?'.
class kaAnimationXmlRecord {
  public:
    /// The attribute of that name, `Count` for a name that no reader looks at.
    static kaXmlAttribute attributeNamed(const QString& name);
    static kaXmlTag tagNamed(const QString& name);

    void beginElement() { _pending.clear(); }
    void attribute(kaXmlAttribute attribute, const QString& value);
    void beginChild(kaXmlTag tag);
    void childID(const QString& id);
    void childText(const QString& text);
    void endElement();

    /// Records an element of a DOM as a whole; a null element is one without attributes and children.
    void append(const QDomElement& element);

    /// The root's "objects" as it stands.
    const std::string& objects() const { return _objects; }
    void setObjects(const QString& objects);

    /// Calls `visit(const kaAnimationXmlElement&)` for every element in document order.
    template <class Visit>
    void forEach(Visit&& visit) const {
        kaAnimationXmlElement element;
        for (const std::string& block : _blocks) {
            std::string_view rest = block;
            while (!rest.empty()) {
                decode(rest, element);
                visit(element);
            }
        }
    }

  private:
    void put(std::uint8_t code, const QString& value);
    static void decode(std::string_view& rest, kaAnimationXmlElement& element);

    std::string _objects;
    std::string _pending; ///< the element that is being recorded
    std::vector<std::string>
        _blocks; ///< whole elements one after the other; a block never grows past its capacity
};
