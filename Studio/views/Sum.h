#pragma once

#include <QString>
#include <optional>

namespace ka::studio {

/// What is typed into a field of numbers: a number, with a decimal point in every locale, or a change of the
/// former one: "+=5", "-=5", "*=1.5", "/=2", and short "*1.5" and "/2". "+5" and "-5" are numbers.
/// @return what comes of `former`; none for any other text and where the result is not finite.
std::optional<double> applySum(const QString& text, double former);

} // namespace ka::studio
