#include "NumberText.h"

#include <charconv>
#include <cmath>
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

/// What from_chars calls out of range: too small when the first digit stands far behind the point.
double outOfRange(std::string_view number) {
    const std::size_t exponent = number.find_first_of("eEpP");
    const bool isSmall = exponent != std::string_view::npos
                             ? number.substr(exponent + 1, 1) == "-"
                             : number.find_first_of("123456789") > number.find('.');
    return isSmall ? 0.0 : std::numeric_limits<double>::infinity();
}

template <class T>
void appendShortestOf(T value, std::string& text) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    text.append(buffer, end);
}

} // namespace

double leadingReal(std::string_view text, std::size_t* length) {
    std::size_t start = 0;
    while (start < text.size() && isBlank(text[start]))
        ++start;
    bool negative = false;
    if (start < text.size() && (text[start] == '+' || text[start] == '-'))
        negative = text[start++] == '-';
    auto format = std::chars_format::general;
    if (isHexPrefix(text.substr(start))) {
        start += 2;
        format = std::chars_format::hex;
    }
    const std::string_view number = text.substr(start);
    double value = 0.0;
    std::from_chars_result result{number.data(), std::errc::invalid_argument};
    if (number.empty() || number.front() != '-') // a second sign
        result = std::from_chars(number.data(), number.data() + number.size(), value, format);
    const auto used = static_cast<std::size_t>(result.ptr - number.data());
    if (result.ec == std::errc::result_out_of_range)
        value = outOfRange(number.substr(0, used));
    else if (result.ec != std::errc())
        value = 0.0;
    if (length != nullptr)
        *length = result.ec == std::errc::invalid_argument ? 0 : start + used;
    return negative ? -value : value;
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

} // namespace osg
