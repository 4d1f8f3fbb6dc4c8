#include "operations/HandleShape.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

/// Of the sampler's discriminant, well beyond what it takes for 0.
constexpr double leastDiscriminant = 2e-5;
/// Of the coefficient of t³.
constexpr double leastCube = 1e-3;

double partAt(double out, double in, double t) {
    const double v = 1.0 - t;
    return 3 * v * v * t * out + 3 * v * t * t * (1.0 - in) + t * t * t;
}

/// The curve's parameter at the part `u` of the time, which never runs backwards.
double parameterAt(double out, double in, double u) {
    double low = 0.0, high = 1.0;
    for (int i = 0; i < 50; ++i) {
        const double middle = (low + high) / 2;
        (partAt(out, in, middle) < u ? low : high) = middle;
    }
    return (low + high) / 2;
}

double unevenness(const HandleShape& shape) {
    return std::abs(std::log(3 * shape.out())) + std::abs(std::log(3 * shape.in()));
}

} // namespace

HandleShape::HandleShape(double out, double in) : _out(out), _in(in) {
    for (int i = 0; i <= steps; ++i) {
        const double t = parameterAt(out, in, static_cast<double>(i) / steps), v = 1.0 - t;
        _weights[static_cast<std::size_t>(i)] = {
            static_cast<float>(v * v * v), static_cast<float>(3 * v * v * t),
            static_cast<float>(3 * v * t * t), static_cast<float>(t * t * t)};
    }
    _weights[steps + 1] = _weights[steps];
}

bool HandleShape::isSampledExactly() const {
    const double a = 3 * (_out + _in) - 2, b = 3 * (1.0 - _in - 2 * _out), c = 3 * _out;
    if (std::abs(a) < leastCube)
        return false;
    const double p = (3 * a * c - b * b) / (3 * a * a);
    const double atStart = (2 * b * b * b / (27 * a * a * a) - b * c / (3 * a * a)) / 2;
    const double atEnd = atStart - 1.0 / (2 * a);
    const double cube = p * p * p / 27;
    const double largest = std::max(atStart * atStart, atEnd * atEnd);
    const double least = atStart * atEnd < 0 ? 0.0 : std::min(atStart * atStart, atEnd * atEnd);
    return cube + least > leastDiscriminant || cube + largest < -leastDiscriminant;
}

const std::vector<HandleShape>& handleShapes() {
    static const std::vector<HandleShape> shapes = [] {
        constexpr std::array<double, 5> lengths{0.02, 0.12, 0.28, 0.5, 0.75};
        std::vector<HandleShape> all;
        for (const double out : lengths)
            for (const double in : lengths)
                if (HandleShape shape(out, in); shape.isSampledExactly())
                    all.push_back(shape);
        std::stable_sort(all.begin(), all.end(), [](const HandleShape& a, const HandleShape& b) {
            return unevenness(a) < unevenness(b);
        });
        return all;
    }();
    return shapes;
}

} // namespace ka::motion
