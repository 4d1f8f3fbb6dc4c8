#include "Ticks.h"

#include <cmath>

namespace ka::studio {

std::vector<double> niceTicks(double low, double high, double distance) {
    std::vector<double> ticks;
    if (!(low < high) || !(distance > 0.0) || (high - low) / distance > 1000)
        return ticks;
    const double power = std::pow(10.0, std::floor(std::log10(distance)));
    double step = 10 * power;
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= distance) {
            step = factor * power;
            break;
        }
    for (double i = std::ceil(low / step); i * step <= high; ++i)
        ticks.push_back(i * step);
    return ticks;
}

} // namespace ka::studio
