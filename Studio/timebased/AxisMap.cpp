#include "AxisMap.h"

#include <algorithm>
#include <cmath>

namespace ka::studio {

void AxisMap::setScale(double scale) {
    const double size = std::clamp(std::abs(scale), Smallest, Largest);
    _scale = scale < 0 ? -size : size;
}

void AxisMap::show(double low, double high, double pixels) {
    if (!std::isfinite(low) || !std::isfinite(high) || !std::isfinite(pixels) || pixels == 0.0)
        return;
    if (high < low)
        std::swap(low, high);
    if (high - low < 1e-6 * std::max({1.0, std::abs(low), std::abs(high)})) { // a float's resolution
        low -= 0.5;
        high += 0.5;
    }
    const double middle = low + (high - low) / 2;
    setScale(pixels / (high - low));
    _origin = middle - std::abs(pixels) / _scale / 2;
}

void AxisMap::pan(double pixels) {
    if (std::isfinite(pixels))
        _origin -= pixels / _scale;
}

void AxisMap::zoom(double pixel, double factor) {
    if (!std::isfinite(pixel) || !std::isfinite(factor) || factor <= 0.0)
        return;
    const double value = toValue(pixel);
    setScale(_scale * factor);
    _origin = value - pixel / _scale;
}

} // namespace ka::studio
