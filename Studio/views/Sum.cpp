#include "Sum.h"

#include <QRegularExpression>
#include <cmath>

namespace ka::studio {

std::optional<double> applySum(const QString& text, double former) {
    static const QRegularExpression form(QStringLiteral("^\\s*(\\+=|-=|\\*=|/=|\\*|/)?\\s*(\\S+)\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    bool isNumber = false;
    const double number = match.captured(2).toDouble(&isNumber); // the C locale
    if (!match.hasMatch() || !isNumber)
        return std::nullopt;
    const QString sign = match.captured(1);
    double result = number;
    if (sign == QLatin1String("+="))
        result = former + number;
    else if (sign == QLatin1String("-="))
        result = former - number;
    else if (sign.startsWith(QLatin1Char('*')))
        result = former * number;
    else if (sign.startsWith(QLatin1Char('/')))
        result = former / number;
    return std::isfinite(result) ? std::optional(result) : std::nullopt;
}

} // namespace ka::studio
