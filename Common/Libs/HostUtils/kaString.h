#pragma once

#include "kaHostUtilsExport.h"

#include <string>
#include <string_view>
#include <vector>

/// Lists of numbers as text, read and written the same whatever the process's locale.
namespace kaString {

/// The numbers that `text` holds, in their order.
///
/// Numbers are decimal, with an optional sign, fraction and exponent, and are parted by blanks (spaces, tabs,
/// line ends) and commas, any number of them. "nan" and "inf" count as numbers, so that each number of a
/// scene value keeps its place in the list.
///
/// Edges:  a word that is not wholly a number ("TRUE", "12px", "0x1F") is skipped. A number that no float can
/// hold becomes the largest float of its sign, one too small becomes 0 of its sign. An empty text gives an
/// empty list.
/// Cost:   linear in the text, one allocation pattern of a growing vector.
KA_HOSTUTILS_API std::vector<float> getValuesFromString(std::string_view text);

/// The text of `values`, parted by one space: for each the shortest decimal that reads back as the same
/// float, whole numbers within 64 bits in digits alone.
///
/// Edges:  an empty list gives an empty text; NaN is written "nan" or "-nan", the infinities "inf" and
/// "-inf".
KA_HOSTUTILS_API std::string createStringFromValues(const std::vector<float>& values);

} // namespace kaString
