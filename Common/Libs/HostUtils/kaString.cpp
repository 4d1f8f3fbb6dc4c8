#include "kaString.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <system_error>

namespace {

constexpr std::string_view SEPARATORS = " \t\n\v\f\r,";

template <class T>
std::from_chars_result parse(std::string_view word, T& value) {
    return std::from_chars(word.data(), word.data() + word.size(), value);
}

// For a number that fits no double: whether it is too small rather than too large. Its first non-zero digit's
// place, shifted by the exponent, tells.
bool isBelowOne(std::string_view number) {
    const auto exponentSign = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, exponentSign);
    const auto point = static_cast<long>(std::min(mantissa.find('.'), mantissa.size()));
    const auto digit = static_cast<long>(std::min(mantissa.find_first_of("123456789"), mantissa.size()));
    const long place = digit < point ? point - digit - 1 : point - digit;

    std::string_view digits = number.substr(std::min(exponentSign + 1, number.size()));
    const bool negative = !digits.empty() && digits.front() == '-';
    if (!digits.empty() && (digits.front() == '+' || digits.front() == '-')) {
        digits.remove_prefix(1);
    }
    int exponent = 0;
    if (parse(digits, exponent).ec == std::errc::result_out_of_range) {
        return negative;
    }
    return (negative ? place - exponent : place + exponent) < 0;
}

float clampToFloat(std::string_view word) {
    const bool negative = word.front() == '-';
    double wide = 0.0;
    if (parse(word, wide).ec == std::errc::result_out_of_range) {
        const std::string_view number = negative ? word.substr(1) : word;
        wide = isBelowOne(number) ? 0.0 : std::numeric_limits<double>::max();
        wide = negative ? -wide : wide;
    }
    constexpr double LARGEST = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(wide, -LARGEST, LARGEST));
}

std::optional<float> readNumber(std::string_view word) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') {
        word.remove_prefix(1);
    }
    float value = 0.0F;
    const auto [end, error] = parse(word, value);
    if (end != word.data() + word.size() || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    return error == std::errc::result_out_of_range ? clampToFloat(word) : value;
}

} // namespace

std::vector<float> kaString::getValuesFromString(std::string_view text) {
    std::vector<float> values;
    for (auto begin = text.find_first_not_of(SEPARATORS); begin != std::string_view::npos;
         begin = text.find_first_not_of(SEPARATORS, begin)) {
        const auto end = std::min(text.find_first_of(SEPARATORS, begin), text.size());
        if (const auto value = readNumber(text.substr(begin, end - begin))) {
            values.push_back(*value);
        }
        begin = end;
    }
    return values;
}

std::string kaString::createStringFromValues(const std::vector<float>& values) {
    // Scene fields of whole numbers read digits only: "1e+05" would be 1 to them.
    constexpr float INTEGER_LIMIT = 9223372036854775808.0F;
    // The longest forms, "-1.17549435e-38" and a sign with 19 digits, fit.
    std::array<char, 24> word{};
    std::string text;
    for (const float value : values) {
        if (!text.empty()) {
            text += ' ';
        }
        char* const limit = word.data() + word.size();
        const bool isWhole = std::abs(value) < INTEGER_LIMIT && std::trunc(value) == value;
        const auto end = isWhole ? std::to_chars(word.data(), limit, value, std::chars_format::fixed).ptr
                                 : std::to_chars(word.data(), limit, value).ptr;
        text.append(word.data(), end);
    }
    return text;
}
