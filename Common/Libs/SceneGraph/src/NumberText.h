#pragma once

#include <string>
#include <string_view>

/// @file
/// Numbers to text and back, the same in every locale.

namespace osg {

/// The number that `text` begins with, after blanks: decimal, hexadecimal after 0x, infinity or NaN; 0 when
/// there is none. What is too large becomes infinity, what is too small 0.
double leadingReal(std::string_view text);

/// Appends the number as `%e` does: 1.500000e+00.
void appendScientific(double value, std::string& text);

/// Appends the shortest text that exactReal reads back bit for bit. NaNs other than the plain one show their
/// bits: nan:ffc00000.
void appendShortest(float value, std::string& text);
void appendShortest(double value, std::string& text);

enum class NumberResult {
    Exact,      ///< the whole text is a number
    OutOfRange, ///< it is, but the type cannot hold it; the value is the nearest that it can
    NoNumber    ///< it is not; the value is left alone
};

/// Reads a text that is a number as a whole.
NumberResult exactReal(std::string_view text, float& value);
NumberResult exactReal(std::string_view text, double& value);

/// Whole numbers, decimal or hexadecimal after 0x; a number with a fraction or an exponent loses its
/// fraction.
template <class T>
NumberResult exactInteger(std::string_view text, T& value);

} // namespace osg
