#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace osg {

namespace {

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isHexPrefix(std::string_view text) {
    const auto isHexDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == '.';
    };
    return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && isHexDigit(text[2]);
}

/// A number without a sign that from_chars calls out of range: too small when its first digit stands far
/// behind the point, else too large.
bool isTooSmall(std::string_view number) {
    const std::size_t exponent = number.find_first_of("eEpP");
    if (exponent != std::string_view::npos)
        return number.substr(exponent + 1, 1) == "-";
    return number.find_first_of("123456789") > number.find('.');
}

template <class T>
struct Scanned {
    T value;
    NumberResult result;
    std::size_t length;
};

/// The number that `text` begins with; `length` counts its characters.
template <class T>
Scanned<T> scanReal(std::string_view text) {
    std::size_t start = 0;
    bool negative = false;
    if (!text.empty() && (text[0] == '+' || text[0] == '-'))
        negative = text[start++] == '-';
    auto format = std::chars_format::general;
    if (isHexPrefix(text.substr(start))) {
        start += 2;
        format = std::chars_format::hex;
    }
    const std::string_view number = text.substr(start);
    if (number.empty() || number.front() == '-') // from_chars would take the sign
        return {T(0), NumberResult::NoNumber, 0};
    T value = T(0);
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value, format);
    const auto length = static_cast<std::size_t>(end - number.data());
    if (error == std::errc::invalid_argument)
        return {T(0), NumberResult::NoNumber, 0};
    auto result = NumberResult::Exact;
    if (error == std::errc::result_out_of_range) {
        result = NumberResult::OutOfRange;
        value = isTooSmall(number.substr(0, length)) ? T(0) : std::numeric_limits<T>::infinity();
    }
    return {negative ? -value : value, result, start + length};
}

template <class T>
struct BitsOf;
template <>
struct BitsOf<float> {
    using Type = std::uint32_t;
    static constexpr Type PlainNan = 0x7fc00000U;
};
template <>
struct BitsOf<double> {
    using Type = std::uint64_t;
    static constexpr Type PlainNan = 0x7ff8000000000000U;
};

constexpr std::string_view NAN_BITS = "nan:";

template <class T>
void appendShortestOf(T value, std::string& text) {
    char buffer[64];
    if (std::isnan(value)) {
        typename BitsOf<T>::Type bits;
        std::memcpy(&bits, &value, sizeof bits);
        if (bits == BitsOf<T>::PlainNan) {
            text += "nan";
            return;
        }
        text += NAN_BITS;
        text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, bits, 16).ptr);
        return;
    }
    text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

template <class T>
NumberResult readNanBits(std::string_view digits, T& value) {
    typename BitsOf<T>::Type bits = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
    T read = T(0);
    std::memcpy(&read, &bits, sizeof bits);
    if (error != std::errc() || end != digits.data() + digits.size() || !std::isnan(read))
        return NumberResult::NoNumber;
    value = read;
    return NumberResult::Exact;
}

template <class T>
NumberResult exactRealOf(std::string_view text, T& value) {
    if (text.substr(0, NAN_BITS.size()) == NAN_BITS)
        return readNanBits(text.substr(NAN_BITS.size()), value);
    const Scanned<T> scanned = scanReal<T>(text);
    if (scanned.result == NumberResult::NoNumber || scanned.length != text.size())
        return NumberResult::NoNumber;
    value = scanned.value;
    return scanned.result;
}

template <class T>
NumberResult integerFromReal(std::string_view text, T& value) {
    double real = 0.0;
    if (exactReal(text, real) == NumberResult::NoNumber || std::isnan(real))
        return NumberResult::NoNumber;
    // The largest T may round up to a double that T cannot hold; its successor is a power of two and exact.
    const double lowest = static_cast<double>(std::numeric_limits<T>::min());
    constexpr T half = std::numeric_limits<T>::max() / 2 + 1;
    const double beyond = 2.0 * static_cast<double>(half);
    const double whole = std::trunc(real);
    if (whole >= lowest && whole < beyond) {
        value = static_cast<T>(whole);
        return NumberResult::Exact;
    }
    value = whole < lowest ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
    return NumberResult::OutOfRange;
}

} // namespace

double leadingReal(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return scanReal<double>(text).value;
}

void appendScientific(double value, std::string& text) {
    char buffer[64];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 6).ptr;
    text.append(buffer, end);
}

void appendShortest(float value, std::string& text) {
    appendShortestOf(value, text);
}

void appendShortest(double value, std::string& text) {
    appendShortestOf(value, text);
}

NumberResult exactReal(std::string_view text, float& value) {
    return exactRealOf(text, value);
}

NumberResult exactReal(std::string_view text, double& value) {
    return exactRealOf(text, value);
}

template <class T>
NumberResult exactInteger(std::string_view text, T& value) {
    std::string_view digits = text;
    if (!digits.empty() && digits.front() == '+')
        digits.remove_prefix(1);
    int base = 10;
    if (isHexPrefix(digits)) {
        digits.remove_prefix(2);
        base = 16;
    }
    T read = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), read, base);
    if (error == std::errc() && end == digits.data() + digits.size()) {
        value = read;
        return NumberResult::Exact;
    }
    return integerFromReal(text, value);
}

template NumberResult exactInteger(std::string_view, std::int8_t&);
template NumberResult exactInteger(std::string_view, std::uint8_t&);
template NumberResult exactInteger(std::string_view, std::int16_t&);
template NumberResult exactInteger(std::string_view, std::uint16_t&);
template NumberResult exactInteger(std::string_view, std::int32_t&);
template NumberResult exactInteger(std::string_view, std::uint32_t&);
template NumberResult exactInteger(std::string_view, std::int64_t&);
template NumberResult exactInteger(std::string_view, std::uint64_t&);

} // namespace osg
