#pragma once

#include "kaAnimationExport.h"

#include <array>
#include <cstddef>
#include <string_view>

/// Numbers as animation documents hold them, the same whatever the process's locale: a decimal point is a
/// point.
namespace kaAnimationXmlNumber {

/// The text of one number, without storage elsewhere.
class KA_ANIMATION_API Text {
  public:
    /// Decimal digits.
    explicit Text(unsigned long long value);
    /// General notation with 6 significant digits: 0.1, 1e+06, -2.5e-05; "0" for both zeros; "nan", "inf",
    /// "-inf".
    explicit Text(float value);
    /// A place as two numbers in fixed notation with six decimals and one space between: "12.000000
    /// -0.500000"; "nan", "inf", "-inf" where a coordinate is not finite.
    Text(float x, float y);

    /// The characters; valid as long as this object.
    operator std::string_view() const { return {_text.data(), _size}; }

  private:
    void appendFixed(float value);

    std::array<char, 100> _text; ///< two of the longest numbers: sign, 39 digits, point, six decimals
    std::size_t _size = 0;
};

/// Takes a number off the front of `text` by the rules of formatted stream extraction: white space before it
/// is skipped, a '+' accepted, and reading ends at the first character that does not fit. For an unsigned
/// type a '-' counts down from the type's end: "-1" is its largest number.
/// @return false when there is no such number or it is out of the type's range, for a float also when it is
///         written as "nan" or "inf"; `value` is untouched then. A float too small to be told from 0 is 0.
/// @{
KA_ANIMATION_API bool take(std::string_view& text, unsigned long long& value);
KA_ANIMATION_API bool take(std::string_view& text, unsigned int& value);
KA_ANIMATION_API bool take(std::string_view& text, int& value);
KA_ANIMATION_API bool take(std::string_view& text, float& value);
/// @}

/// The number that `text` begins with, by the rules of `take`, or `otherwise`. What follows it is ignored.
template <class Number>
Number parse(std::string_view text, Number otherwise) {
    take(text, otherwise);
    return otherwise;
}

} // namespace kaAnimationXmlNumber
