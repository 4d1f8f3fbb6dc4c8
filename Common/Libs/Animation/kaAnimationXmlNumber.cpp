#include "kaAnimationXmlNumber.h"

#include <QByteArray>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

namespace kaAnimationXmlNumber {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

void skipSpace(std::string_view& text) {
    const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
    text.remove_prefix(begin == std::string_view::npos ? text.size() : begin);
}

/// Of an unsigned type a '-' is taken off the text, too: extraction negates the number behind it.
template <class Integer>
bool takeInteger(std::string_view& text, Integer& value) {
    skipSpace(text);
    const bool minus = std::is_unsigned_v<Integer> && !text.empty() && text.front() == '-';
    const bool sign = minus || (!text.empty() && text.front() == '+');
    const char* begin = text.data() + (sign ? 1 : 0);
    const char* end = text.data() + text.size();
    if (sign && (begin == end || !isDigit(*begin)))
        return false;
    Integer number = 0;
    const auto result = std::from_chars(begin, end, number);
    if (result.ec != std::errc())
        return false;
    value = minus ? Integer{0} - number : number;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return true;
}

/// Length of the front of `text` that extraction of a floating-point number would gather: sign, digits with
/// at most one point, and after a digit an exponent with a sign of its own. Whether that is a number is
/// another question: "1e" is gathered and is none.
std::size_t gathered(std::string_view text) {
    std::size_t at = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    bool digits = false;
    bool point = false;
    bool exponent = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (isDigit(c)) {
            digits = true;
        } else if (c == '.' && !point && !exponent) {
            point = true;
        } else if ((c == 'e' || c == 'E') && digits && !exponent) {
            exponent = true;
            if (at + 1 < text.size() && (text[at + 1] == '+' || text[at + 1] == '-'))
                ++at;
        } else {
            break;
        }
    }
    return at;
}

/// Whether an unsigned number that no float can hold is out of range at the small end, that is, below 1.
bool isTiny(std::string_view number) {
    const std::size_t e = number.find_first_of("eE");
    long long exponent = 0;
    if (e != std::string_view::npos) {
        const std::size_t begin = number[e + 1] == '+' ? e + 2 : e + 1;
        const char* end = number.data() + number.size();
        if (std::from_chars(number.data() + begin, end, exponent).ec == std::errc::result_out_of_range)
            return number[begin] == '-';
    }
    const std::string_view mantissa = number.substr(0, e);
    const auto point = static_cast<long long>(std::min(mantissa.find('.'), mantissa.size()));
    const auto first = static_cast<long long>(mantissa.find_first_not_of("0."));
    return point - first + (first > point ? 1 : 0) + exponent <= 0;
}

} // namespace

Text::Text(unsigned long long value) {
    _size = static_cast<std::size_t>(std::to_chars(_text.data(), _text.data() + _text.size(), value).ptr -
                                     _text.data());
}

Text::Text(float value) {
    const QByteArray text = QByteArray::number(static_cast<double>(value), 'g', 6);
    _size = static_cast<std::size_t>(text.size());
    std::copy(text.begin(), text.end(), _text.begin());
}

Text::Text(float x, float y) {
    appendFixed(x);
    _text[_size++] = ' ';
    appendFixed(y);
}

void Text::appendFixed(float value) {
    const double wide =
        std::isnan(value) ? std::fabs(static_cast<double>(value)) : static_cast<double>(value);
    char* begin = _text.data() + _size;
    const auto result = std::to_chars(begin, _text.data() + _text.size(), wide, std::chars_format::fixed, 6);
    _size += static_cast<std::size_t>(result.ptr - begin);
}

bool take(std::string_view& text, unsigned long long& value) {
    return takeInteger(text, value);
}

bool take(std::string_view& text, unsigned int& value) {
    return takeInteger(text, value);
}

bool take(std::string_view& text, int& value) {
    return takeInteger(text, value);
}

bool take(std::string_view& text, float& value) {
    skipSpace(text);
    const std::string_view whole = text.substr(0, gathered(text));
    const bool negative = !whole.empty() && whole.front() == '-';
    const std::string_view number =
        whole.substr(negative || (!whole.empty() && whole.front() == '+') ? 1 : 0);
    float magnitude = 0.0F;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), magnitude);
    const bool complete = result.ptr == number.data() + number.size();
    if (!complete || result.ec == std::errc::invalid_argument)
        return false;
    if (result.ec == std::errc::result_out_of_range && !isTiny(number))
        return false;
    value = negative ? -magnitude : magnitude;
    text.remove_prefix(whole.size());
    return true;
}

} // namespace kaAnimationXmlNumber
