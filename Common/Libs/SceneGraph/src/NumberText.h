#pragma once

#include <string>
#include <string_view>

/// @file
/// Numbers to text and back, the same in every locale.

namespace osg {

/// The number that `text` begins with, after blanks: decimal, hexadecimal after 0x, infinity or NaN; 0 when
/// there is none. What is too large becomes infinity, what is too small 0.
/// @param length  if not null, receives how many characters were used; 0 when there is no number.
double leadingReal(std::string_view text, std::size_t* length = nullptr);

/// Appends the number as `%e` does: 1.500000e+00.
void appendScientific(double value, std::string& text);

/// Appends the shortest text that reads back as the same number, bit for bit ("inf", "-inf" and "nan"
/// included).
void appendShortest(float value, std::string& text);
void appendShortest(double value, std::string& text);

} // namespace osg
