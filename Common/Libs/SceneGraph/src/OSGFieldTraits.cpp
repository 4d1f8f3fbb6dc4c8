#include "NumberText.h"

#include <OpenSG/OSGFieldTraits.h>
#include <OpenSG/OSGSField.h>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace osg {

namespace {

bool isSeparator(Char8 c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == ',';
}

/// Calls `take(word)` for every word between separators.
template <class Take>
void forEachWord(const Char8* text, const Take& take) {
    while (text != nullptr && *text != '\0') {
        while (isSeparator(*text))
            ++text;
        const Char8* end = text;
        while (*end != '\0' && !isSeparator(*end))
            ++end;
        if (end != text)
            take(std::string_view(text, static_cast<std::size_t>(end - text)));
        text = end;
    }
}

template <std::size_t N>
std::size_t takeReals(const Char8* text, Real32 (&values)[N]) {
    std::size_t count = 0;
    forEachWord(text, [&](std::string_view word) {
        if (count < N)
            values[count] = static_cast<Real32>(leadingReal(word));
        ++count;
    });
    return count;
}

bool startsWithIgnoringCase(const Char8* text, const Char8* upperCase) {
    for (; *upperCase != '\0'; ++text, ++upperCase) {
        const Char8 c = *text >= 'a' && *text <= 'z' ? static_cast<Char8>(*text - 'a' + 'A') : *text;
        if (c != *upperCase)
            return false;
    }
    return true;
}

} // namespace

void textToReals(const Char8* text, Real32* values, UInt32 count) {
    UInt32 next = 0;
    forEachWord(text, [&](std::string_view word) {
        if (next < count)
            values[next++] = static_cast<Real32>(leadingReal(word));
    });
    while (next < count)
        values[next++] = 0.0F;
}

void realsToText(const Real32* values, UInt32 count, const Char8* separator, std::string& text) {
    for (UInt32 i = 0; i < count; ++i) {
        if (i > 0)
            text += separator;
        realToText(values[i], text);
    }
}

Real64 textToReal(const Char8* text) {
    return text == nullptr ? 0.0 : leadingReal(text);
}

void realToText(Real64 value, std::string& text) {
    appendScientific(value, text);
}

Int64 textToInteger(const Char8* text) {
    return text == nullptr ? 0 : std::strtoll(text, nullptr, 0);
}

UInt64 textToUnsigned(const Char8* text) {
    return text == nullptr ? 0 : std::strtoull(text, nullptr, 0);
}

bool refusePointerText() {
    std::fputs("a field of handles cannot be read from text\n", stderr);
    return false;
}

void pointerToText(const FieldContainerPtr& handle, std::string& text) {
    if (handle == NullFC) {
        text += "(nil)";
        return;
    }
    Char8 buffer[32];
    std::snprintf(buffer, sizeof buffer, "%p", reinterpret_cast<const void*>(handle.getCPtr()));
    text += buffer;
}

bool FieldTraits<bool, 2>::read(const Char8* text, bool& value) {
    if (text == nullptr)
        return false;
    if (startsWithIgnoringCase(text, "TRUE"))
        value = true;
    else if (startsWithIgnoringCase(text, "FALSE"))
        value = false;
    else
        return false;
    return true;
}

void FieldTraits<bool, 2>::write(const bool& value, std::string& text) {
    text += value ? "TRUE" : "FALSE";
}

bool FieldTraits<std::string>::read(const Char8* text, std::string& value) {
    value = text == nullptr ? "" : text;
    return true;
}

void FieldTraits<std::string>::write(const std::string& value, std::string& text) {
    text += '"';
    text += value;
    text += '"';
}

bool FieldTraits<Quaternion>::read(const Char8* text, Quaternion& value) {
    Real32 numbers[4] = {};
    takeReals(text, numbers);
    value.setValueAsAxisRad(numbers[0], numbers[1], numbers[2], numbers[3]);
    return true;
}

void FieldTraits<Quaternion>::write(const Quaternion& value, std::string& text) {
    Real32 numbers[4];
    value.getValueAsAxisRad(numbers[0], numbers[1], numbers[2], numbers[3]);
    realsToText(numbers, 4, " ", text);
}

bool FieldTraits<Matrix>::read(const Char8* text, Matrix& value) {
    Real32 rows[16] = {};
    takeReals(text, rows);
    value.setValueTransposed(rows);
    return true;
}

void FieldTraits<Matrix>::write(const Matrix& value, std::string& text) {
    Matrix rows = value;
    rows.transpose();
    realsToText(rows.getValues(), 16, " ", text);
}

bool FieldTraits<DynamicVolume>::read(const Char8* text, DynamicVolume& value) {
    Real32 numbers[6] = {};
    const std::size_t count = takeReals(text, numbers);
    if (count == 4)
        value.setSphere(Pnt3f(numbers), numbers[3]);
    else if (count == 6)
        value.setBox(Pnt3f(numbers), Pnt3f(numbers + 3));
    else
        return false;
    return true;
}

void FieldTraits<DynamicVolume>::write(const DynamicVolume& value, std::string& text) {
    if (value.getType() == DynamicVolume::SPHERE_VOLUME) {
        realsToText(value.getCenter().getValues(), 3, " ", text);
        text += ' ';
        realToText(value.getRadius(), text);
        return;
    }
    Pnt3f minimum;
    Pnt3f maximum;
    value.getBounds(minimum, maximum);
    realsToText(minimum.getValues(), 3, " ", text);
    text += ' ';
    realsToText(maximum.getValues(), 3, " ", text);
}

bool FieldTraits<AttachmentMap>::read(const Char8*, AttachmentMap&) {
    return refusePointerText();
}

void FieldTraits<AttachmentMap>::write(const AttachmentMap& value, std::string& text) {
    text += std::to_string(value.size());
}

} // namespace osg
