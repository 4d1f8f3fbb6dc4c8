#include "kaAnimationXmlRecord.h"

#include <QDomElement>
#include <algorithm>
#include <cstring>

// An element is a row of items, each a code, a length and that many bytes. Codes below `FirstChild` are
// attributes; a child's tag comes before its id and its text.

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 18;

constexpr auto AttributeCount = static_cast<std::uint8_t>(kaXmlAttribute::Count);
constexpr std::uint8_t FirstChild = AttributeCount;
constexpr std::uint8_t ChildID = FirstChild + static_cast<std::uint8_t>(kaXmlTag::Other) + 1;
constexpr std::uint8_t ChildText = ChildID + 1;
constexpr std::uint8_t ElementEnd = ChildText + 1;

constexpr std::array<const char*, AttributeCount> attributeNames = {
    "id",    "typeID",   "fcID",      "name",        "attribute",
    "value", "valuePos", "dirty",     "tangentType", "tangentLengthMode",
    "field", "active",   "repeating", "flipped",     "motionBlur",
    "begin", "end",      "objects"};

constexpr std::array<const char*, static_cast<std::size_t>(kaXmlTag::Other)> tagNames = {
    "position", "inTangent", "outTangent"};

template <class Names>
std::uint8_t indexOf(const Names& names, const QString& name) {
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&name](const char* known) { return name == QLatin1String(known); });
    return static_cast<std::uint8_t>(found - names.begin());
}

void appendLatin1(std::string& bytes, const QString& text) {
    const std::size_t at = bytes.size();
    bytes.resize(at + static_cast<std::size_t>(text.size()));
    std::transform(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at),
                   [](QChar c) { return c.unicode() < 0x100 ? static_cast<char>(c.unicode()) : '?'; });
}

} // namespace

kaXmlAttribute kaAnimationXmlRecord::attributeNamed(const QString& name) {
    return static_cast<kaXmlAttribute>(indexOf(attributeNames, name));
}

kaXmlTag kaAnimationXmlRecord::tagNamed(const QString& name) {
    return static_cast<kaXmlTag>(indexOf(tagNames, name));
}

void kaAnimationXmlRecord::put(std::uint8_t code, const QString& value) {
    const auto size = static_cast<std::uint32_t>(value.size());
    std::array<char, 1 + sizeof size> head{static_cast<char>(code)};
    std::memcpy(head.data() + 1, &size, sizeof size);
    _pending.append(head.data(), head.size());
    appendLatin1(_pending, value);
}

void kaAnimationXmlRecord::attribute(kaXmlAttribute attribute, const QString& value) {
    if (attribute != kaXmlAttribute::Count)
        put(static_cast<std::uint8_t>(attribute), value);
}

void kaAnimationXmlRecord::beginChild(kaXmlTag tag) {
    put(static_cast<std::uint8_t>(FirstChild + static_cast<std::uint8_t>(tag)), QString());
}

void kaAnimationXmlRecord::childID(const QString& id) {
    put(ChildID, id);
}

void kaAnimationXmlRecord::childText(const QString& text) {
    put(ChildText, text);
}

void kaAnimationXmlRecord::endElement() {
    put(ElementEnd, QString());
    if (_blocks.empty() || _blocks.back().capacity() - _blocks.back().size() < _pending.size()) {
        _blocks.emplace_back();
        _blocks.back().reserve(std::max(BlockSize, _pending.size()));
    }
    _blocks.back() += _pending;
    _pending.clear();
}

void kaAnimationXmlRecord::setObjects(const QString& objects) {
    _objects.clear();
    appendLatin1(_objects, objects);
}

void kaAnimationXmlRecord::append(const QDomElement& element) {
    beginElement();
    for (std::uint8_t i = 0; i < AttributeCount; ++i)
        attribute(static_cast<kaXmlAttribute>(i), element.attribute(QLatin1String(attributeNames[i])));
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const kaXmlTag tag = tagNamed(child.tagName());
        beginChild(tag);
        childID(child.attribute("id"));
        if (tag != kaXmlTag::Other)
            childText(child.text());
    }
    endElement();
}

void kaAnimationXmlRecord::decode(std::string_view& rest, kaAnimationXmlElement& element) {
    element.attributes.fill({});
    element.children.clear();
    for (;;) {
        const auto code = static_cast<std::uint8_t>(rest.front());
        std::uint32_t size = 0;
        std::memcpy(&size, rest.data() + 1, sizeof size);
        const std::string_view value = rest.substr(1 + sizeof size, size);
        rest.remove_prefix(1 + sizeof size + size);
        if (code == ElementEnd)
            return;
        if (code == ChildID)
            element.children.back().id = value;
        else if (code == ChildText)
            element.children.back().text = value;
        else if (code >= FirstChild)
            element.children.push_back({static_cast<kaXmlTag>(code - FirstChild), {}, {}});
        else
            element.attributes[code] = value;
    }
}
