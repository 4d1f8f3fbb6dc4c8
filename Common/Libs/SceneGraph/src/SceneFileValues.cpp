#include "SceneFileValues.h"

#include "NumberText.h"
#include "QuaternionText.h"

#include <OpenSG/OSGMFBaseTypes.h>
#include <OpenSG/OSGSFBaseTypes.h>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <unordered_map>

namespace osg {

namespace {

using Kind = SceneFileLexer::Kind;

/// Reads the parts of one value and reports what is wrong with them.
class ValueReader {
  public:
    ValueReader(SceneFileLexer& lexer, SceneFileLog& log) : _lexer(lexer), _log(log) {}

    SceneFileLexer& lexer() { return _lexer; }

    bool isAtNumber() const {
        const SceneFileLexer::Token& token = _lexer.peek();
        // inf and nan; the bits of a NaN are one number as a float and none as a double, or the other way
        // round.
        float single = 0.0F;
        double real = 0.0;
        return token.kind == Kind::Number ||
               (token.kind == Kind::Id && (exactReal(token.text, single) != NumberResult::NoNumber ||
                                           exactReal(token.text, real) != NumberResult::NoNumber));
    }

    template <class T>
    T number() {
        T value = T(0);
        const SceneFileLexer::Token token = _lexer.next();
        NumberResult result = NumberResult::NoNumber;
        if constexpr (std::is_floating_point_v<T>)
            result = exactReal(token.text, value);
        else
            result = exactInteger(token.text, value);
        if (result == NumberResult::NoNumber)
            _log.error(token.line, quotedForMessage(token.text) + " is no number; 0 is taken");
        else if (result == NumberResult::OutOfRange)
            _log.error(token.line, "the number " + quotedForMessage(token.text) + " is out of range");
        return value;
    }

    /// As many numbers as there are, up to `most`; @return how many.
    UInt32 reals(Real32* values, UInt32 most) {
        UInt32 count = 0;
        while (count < most && isAtNumber())
            values[count++] = number<Real32>();
        return count;
    }

    /// Exactly `count` numbers.
    bool allReals(Real32* values, UInt32 count) {
        const UInt32 line = _lexer.peek().line;
        const UInt32 found = reals(values, count);
        if (found > 0 && found < count)
            _log.error(line, std::to_string(count - found) + " of " + std::to_string(count) +
                                 " numbers are missing; 0 is taken");
        return found > 0;
    }

    SceneFileLog& log() { return _log; }

  private:
    SceneFileLexer& _lexer;
    SceneFileLog& _log;
};

void appendReals(const Real32* values, UInt32 count, std::string& out) {
    for (UInt32 i = 0; i < count; ++i) {
        if (i > 0)
            out += ' ';
        appendShortest(values[i], out);
    }
}

/// @name One value of each kind
/// `readValue` returns false when what stands there cannot begin the value, and has read nothing then.
/// @{

template <class T, std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, bool>, int> = 0>
bool readValue(ValueReader& reader, T& value) {
    if (!reader.isAtNumber())
        return false;
    value = reader.number<T>();
    return true;
}
template <class T, std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, bool>, int> = 0>
void writeValue(const T& value, std::string& out) {
    if constexpr (std::is_floating_point_v<T>)
        appendShortest(value, out);
    else
        out += std::to_string(value);
}

bool readValue(ValueReader& reader, bool& value) {
    const SceneFileLexer::Token token = reader.lexer().peek();
    const bool isTrue = SceneFileLexer::isWord(token.text, "TRUE") || token.text == "1";
    if (token.kind == Kind::String ||
        (!isTrue && !SceneFileLexer::isWord(token.text, "FALSE") && token.text != "0"))
        return false;
    reader.lexer().next();
    value = isTrue;
    return true;
}
void writeValue(const bool& value, std::string& out) {
    out += value ? "TRUE" : "FALSE";
}

bool readValue(ValueReader& reader, std::string& value) {
    const SceneFileLexer::Token token = reader.lexer().peek();
    if (token.kind != Kind::String && token.kind != Kind::Id && token.kind != Kind::Number)
        return false;
    reader.lexer().next();
    value = token.kind == Kind::String ? SceneFileLexer::unescape(token.text) : std::string(token.text);
    return true;
}
void writeValue(const std::string& value, std::string& out) {
    SceneFileLexer::appendQuoted(value, out);
}

template <class T, class = decltype(T::Size), class = decltype(std::declval<T&>().getValues())>
bool readValue(ValueReader& reader, T& value) {
    return reader.allReals(value.getValues(), T::Size);
}
template <class T, class = decltype(T::Size), class = decltype(std::declval<T&>().getValues())>
void writeValue(const T& value, std::string& out) {
    appendReals(value.getValues(), T::Size, out);
}

template <UInt32 N>
bool readValue(ValueReader& reader, ColorBase<Real32, N>& value) {
    return reader.allReals(value.getValuesRGB(), N);
}
template <UInt32 N>
void writeValue(const ColorBase<Real32, N>& value, std::string& out) {
    appendReals(value.getValuesRGB(), N, out);
}

bool readValue(ValueReader& reader, Matrix& value) {
    Real32 rows[16] = {};
    if (!reader.allReals(rows, 16))
        return false;
    value.setValueTransposed(rows);
    return true;
}
void writeValue(const Matrix& value, std::string& out) {
    Matrix rows = value;
    rows.transpose();
    for (UInt32 row = 0; row < 4; ++row) {
        if (row > 0)
            out += ", ";
        appendReals(rows[row].getValues(), 4, out);
    }
}

bool readValue(ValueReader& reader, Quaternion& value) {
    if (reader.lexer().peek().kind == Kind::String) {
        const SceneFileLexer::Token token = reader.lexer().next();
        SceneFileLexer components(token.text);
        ValueReader inner(components, reader.log());
        Real32 xyzw[4] = {};
        inner.allReals(xyzw, 4);
        value.setValueAsQuat(xyzw[0], xyzw[1], xyzw[2], xyzw[3]);
        return true;
    }
    if (!reader.isAtNumber())
        return false;
    Real64 axisAngle[4] = {};
    UInt32 count = 0;
    const UInt32 line = reader.lexer().peek().line;
    while (count < 4 && reader.isAtNumber())
        axisAngle[count++] = reader.number<Real64>();
    if (count < 4)
        reader.log().error(line, "a rotation needs an axis and an angle; 0 is taken for what is missing");
    value = quaternionFromAxisAngle(axisAngle);
    return true;
}
void writeValue(const Quaternion& value, std::string& out) {
    Real64 axisAngle[4];
    axisAngleFromQuaternion(value, axisAngle);
    const Quaternion back = quaternionFromAxisAngle(axisAngle);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bit for bit, -0 and what is no number included
    if (std::memcmp(back.getValues(), value.getValues(), 4 * sizeof(Real32)) == 0) {
        for (UInt32 i = 0; i < 4; ++i) {
            if (i > 0)
                out += ' ';
            appendShortest(axisAngle[i], out);
        }
        return;
    }
    // Not of length 1, so no rotation that axis and angle could tell: the four components themselves.
    out += '"';
    appendReals(value.getValues(), 4, out);
    out += '"';
}

bool readValue(ValueReader& reader, DynamicVolume& value) {
    Real32 numbers[6] = {};
    const UInt32 line = reader.lexer().peek().line;
    const UInt32 count = reader.reals(numbers, 6);
    if (count == 4)
        value.setSphere(Pnt3f(numbers), numbers[3]);
    else if (count == 6)
        value.setBox(Pnt3f(numbers), Pnt3f(numbers + 3));
    else if (count > 0)
        reader.log().error(line, "a volume needs 4 or 6 numbers");
    return count > 0;
}
void writeValue(const DynamicVolume& value, std::string& out) {
    Pnt3f minimum;
    Pnt3f maximum;
    value.getBounds(minimum, maximum);
    if (value.getType() == DynamicVolume::SPHERE_VOLUME) {
        minimum = value.getCenter();
        maximum = Pnt3f(value.getRadius(), 0.0F, 0.0F);
    }
    appendReals(minimum.getValues(), 3, out);
    out += ' ';
    appendReals(maximum.getValues(), value.getType() == DynamicVolume::SPHERE_VOLUME ? 1 : 3, out);
}
/// @}

/// The functions for one field type.
struct Codec {
    void (*write)(const Field&, UInt32 index, std::string&);
    bool (*read)(ValueReader&, Field&);
    void (*clear)(Field&);
};

template <class SingleT>
Codec singleCodec() {
    return {[](const Field& field, UInt32, std::string& out) {
                writeValue(static_cast<const SingleT&>(field).getValue(), out);
            },
            [](ValueReader& reader, Field& field) {
                return readValue(reader, static_cast<SingleT&>(field).getValue());
            },
            [](Field&) {}};
}

template <class MultiT>
Codec multiCodec() {
    return {[](const Field& field, UInt32 index, std::string& out) {
                writeValue(static_cast<const MultiT&>(field)[index], out);
            },
            [](ValueReader& reader, Field& field) {
                typename MultiT::value_type value{};
                if (!readValue(reader, value))
                    return false;
                static_cast<MultiT&>(field).push_back(value);
                return true;
            },
            [](Field& field) { static_cast<MultiT&>(field).clear(); }};
}

using CodecMap = std::unordered_map<UInt32, Codec>;

template <class... SingleTs>
void addSingles(CodecMap& codecs) {
    (codecs.emplace(SingleTs::getClassType().getId(), singleCodec<SingleTs>()), ...);
}

template <class... MultiTs>
void addMultis(CodecMap& codecs) {
    (codecs.emplace(MultiTs::getClassType().getId(), multiCodec<MultiTs>()), ...);
}

CodecMap makeCodecs() {
    CodecMap codecs;
    addSingles<SFBool, SFInt8, SFUInt8, SFInt16, SFUInt16, SFInt32, SFUInt32, SFInt64, SFUInt64, SFReal32,
               SFReal64, SFTime, SFBitVector, SFString, SFVec2f, SFVec3f, SFVec4f, SFPnt2f, SFPnt3f, SFPnt4f,
               SFColor3f, SFColor4f, SFQuaternion, SFMatrix, SFDynamicVolume>(codecs);
    addMultis<MFInt8, MFUInt8, MFInt16, MFUInt16, MFInt32, MFUInt32, MFInt64, MFUInt64, MFReal32, MFReal64,
              MFTime, MFString, MFVec2f, MFVec3f, MFVec4f, MFPnt2f, MFPnt3f, MFPnt4f, MFColor3f, MFColor4f,
              MFQuaternion, MFMatrix>(codecs);
    return codecs;
}

/// Null for a type that the library does not know.
const Codec* codecOf(const Field& field) {
    static const CodecMap codecs = makeCodecs();
    const auto found = codecs.find(field.getType().getId());
    return found == codecs.end() ? nullptr : &found->second;
}

} // namespace

void SceneFileValues::write(const Field& field, UInt32 index, std::string& out) {
    if (const Codec* codec = codecOf(field)) {
        codec->write(field, index, out);
        return;
    }
    std::string text;
    field.getValueByStr(text, index);
    SceneFileLexer::appendQuoted(text, out);
}

bool SceneFileValues::isWritable(const Field& field) {
    const auto* volume = dynamic_cast<const SFDynamicVolume*>(&field);
    return volume == nullptr || !volume->getValue().isEmpty();
}

bool SceneFileValues::read(SceneFileLexer& lexer, Field& field, SceneFileLog& log) {
    ValueReader reader(lexer, log);
    if (const Codec* codec = codecOf(field))
        return codec->read(reader, field);
    std::string text;
    if (!readValue(reader, text))
        return false;
    field.pushValueByStr(text.c_str());
    return true;
}

void SceneFileValues::clear(Field& field) {
    if (const Codec* codec = codecOf(field))
        codec->clear(field);
}

} // namespace osg
