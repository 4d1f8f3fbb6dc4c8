#include "check/AttributeRules.h"

#include <algorithm>
#include <kaAnimationXmlNumber.h>
#include <kaControlPoint2D.h>
#include <kaMotion/Text.h>
#include <string_view>
#include <type_traits>

namespace ka::motion {

namespace {

using kaAnimationXmlNumber::take;

enum class Form { Id, Unsigned, Flag, Float, Name, TangentType, LengthMode, Settled };

struct Rule {
    std::string_view name;
    Form form;
};

// "typeID" has been settled before anything else is looked at.
constexpr Rule common[] = {{"id", Form::Id}, {"typeID", Form::Settled}};
constexpr Rule named[] = {{"name", Form::Name}, {"active", Form::Flag}};
constexpr Rule flags[] = {{"repeating", Form::Flag}, {"flipped", Form::Flag}, {"motionBlur", Form::Flag}};
constexpr Rule ofField[] = {{"fcID", Form::Unsigned}, {"name", Form::Name},         {"attribute", Form::Name},
                            {"value", Form::Float},   {"valuePos", Form::Unsigned}, {"dirty", Form::Flag}};
constexpr Rule ofPoint[] = {{"tangentType", Form::TangentType}, {"tangentLengthMode", Form::LengthMode}};
constexpr Rule ofCurve[] = {{"field", Form::Id}, {"parentNodeID", Form::Id}};
constexpr Rule ofTrack[] = {{"number", Form::Unsigned}};
constexpr Rule ofSequence[] = {{"begin", Form::Float}, {"end", Form::Float}};

template <std::size_t Count>
const Rule* among(const Rule (&rules)[Count], std::string_view name) {
    const auto* found = std::find_if(std::begin(rules), std::end(rules),
                                     [name](const Rule& rule) { return rule.name == name; });
    return found == std::end(rules) ? nullptr : found;
}

const Rule* ownRule(Kind kind, std::string_view name) {
    switch (kind) {
    case Kind::Field:
        return among(ofField, name);
    case Kind::Point:
        return among(ofPoint, name);
    case Kind::Curve:
        return among(ofCurve, name);
    case Kind::Track:
        return among(ofTrack, name);
    case Kind::Sequence:
        return among(ofSequence, name);
    default:
        return nullptr;
    }
}

const Rule* ruleOf(Kind kind, std::string_view name) {
    const Rule* rule = among(common, name);
    if (rule == nullptr)
        rule = ownRule(kind, name);
    const bool isObject = kind != Kind::Field && kind != Kind::Point;
    if (rule == nullptr && isObject)
        rule = among(named, name);
    if (rule == nullptr && isObject && kind != Kind::Sequence)
        rule = among(flags, name);
    return rule;
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\n\v\f\r") == text.npos;
}

/// @param type  what the text is to spell, "a number".
template <class Number>
std::string numberFault(const QString& name, const QString& value, const char* type, Number& number) {
    const std::string bytes = value.toLatin1().toStdString();
    std::string_view rest = bytes;
    if (!take(rest, number))
        return name.toStdString() + " " + quoted(value) + " is not " + type;
    if (!isBlank(rest))
        return name.toStdString() + " " + quoted(value) + " is read as " +
               quoted(value.left(static_cast<int>(bytes.size() - rest.size())));
    if (std::is_unsigned_v<Number> && bytes.find('-') != bytes.npos)
        return name.toStdString() + " " + quoted(value) + " is read as " + quoted(QString::number(number));
    return {};
}

constexpr const char* unsignedNumber = "an unsigned number of 32 bits";
constexpr const char* floatNumber = "a number within the range of a float";

std::string choiceFault(const QString& name, const QString& value,
                        std::initializer_list<unsigned int> choices) {
    unsigned int number = 0;
    std::string fault = numberFault(name, value, unsignedNumber, number);
    if (fault.empty() && std::find(choices.begin(), choices.end(), number) == choices.end())
        fault = name.toStdString() + " " + std::to_string(number) + " stands for nothing";
    return fault;
}

std::string nameFault(const QString& name, const QString& value) {
    const bool fits = std::all_of(value.begin(), value.end(), [](QChar c) { return c.unicode() <= 0xFF; });
    return fits ? std::string()
                : name.toStdString() + " " + quoted(value) +
                      " has characters outside Latin-1, which become '?'";
}

} // namespace

std::string attributeFault(Kind kind, const QString& name, const QString& value) {
    using Point = kaControlPoint2D;
    const std::string plain = name.toStdString();
    const Rule* rule = ruleOf(kind, plain);
    if (rule == nullptr)
        return "no reader knows the attribute " + quoted(name);
    kaUID id = 0;
    unsigned int number = 0;
    float real = 0.0F;
    switch (rule->form) {
    case Form::Id:
        return idFault(name, value, id);
    case Form::Unsigned:
        return numberFault(name, value, unsignedNumber, number);
    case Form::Flag:
        return choiceFault(name, value, {0, 1});
    case Form::Float:
        return numberFault(name, value, floatNumber, real);
    case Form::Name:
        return nameFault(name, value);
    case Form::TangentType:
        return choiceFault(name, value,
                           {Point::TANGENT_COLLAPSED, Point::TANGENT_BROKEN, Point::TANGENT_FLAT,
                            Point::TANGENT_SMOOTH, Point::TANGENT_FORWARD, Point::TANGENT_USER});
    case Form::LengthMode:
        return choiceFault(name, value, {Point::LENGTH_THIRD, Point::LENGTH_FIXED, Point::LENGTH_HALF});
    case Form::Settled:
        break;
    }
    return {};
}

std::string idFault(const QString& name, const QString& value, kaUID& id) {
    id = 0;
    return numberFault(name, value, "an unsigned number of 64 bits", id);
}

std::string placeFault(const QString& text, std::array<float, 2>& place) {
    const std::string bytes = text.toLatin1().toStdString();
    std::string_view rest = bytes;
    place = {};
    const bool isPlace = take(rest, place[0]) && take(rest, place[1]);
    return isPlace && isBlank(rest) ? std::string()
                                    : quoted(text) + " is not two numbers within the range of a float";
}

unsigned int smallNumber(const QString& value, unsigned int otherwise) {
    return kaAnimationXmlNumber::parse(std::string_view(value.toLatin1().toStdString()), otherwise);
}

std::string excerpt(const QString& text) {
    constexpr int looked = 1000, shown = 80;
    // What is cut in two here is cut off below.
    return oneLine(text.left(looked).toStdString(), shown);
}

std::string quoted(const QString& text) {
    return "\"" + excerpt(text) + "\"";
}

} // namespace ka::motion
