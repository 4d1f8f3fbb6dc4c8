#include "PlainSegment.h"

#include <cmath>

namespace {

double cubeRoot(double x) {
    return x < 0.0 ? -std::pow(-x, 1.0 / 3.0) : std::pow(x, 1.0 / 3.0);
}

bool solve(double A, double B, double C, double s, double& t) {
    const double p = (3.0 * A * C - B * B) / (3.0 * A * A);
    const double q = 2.0 * B * B * B / (27.0 * A * A * A) - B * C / (3.0 * A * A) - s / A;
    const double D = (p / 3.0) * (p / 3.0) * (p / 3.0) + (q / 2.0) * (q / 2.0);
    const double shift = B / (3.0 * A);
    if (D >= 1e-6) {
        const double w = std::sqrt(D);
        t = cubeRoot(-q / 2.0 + w) + cubeRoot(-q / 2.0 - w) - shift;
        return true;
    }
    if (D > -1e-6) {
        t = -std::pow(4.0 * q, 1.0 / 3.0) - shift;
        if (t >= 0.0 && t <= 1.0)
            return true;
        t = std::pow(q / 2.0, 1.0 / 3.0) - shift;
        return t >= 0.0 && t <= 1.0;
    }
    const double r = -2.0 * std::sqrt(-(p / 3.0) * (p / 3.0) * (p / 3.0));
    const double third = std::acos(q / r) * 180.0 / 3.14159265358 / 3.0;
    const double m = 2.0 * std::sqrt(-p / 3.0);
    for (int turn = 0; turn < 3; ++turn) {
        t = m * std::cos((third + 120.0 * turn) * 3.14159265358 / 180.0) - shift;
        if (t + 1e-6 >= 0.0 && t <= 1.0)
            return true;
    }
    return false;
}

} // namespace

bool samplePlainly(const PlainSegment& g, float frame, float& value) {
    const double dx = static_cast<double>(g.x3) - static_cast<double>(g.x0);
    const double s = (static_cast<double>(frame) - static_cast<double>(g.x0)) / dx;
    const double a = (static_cast<double>(g.x1) - static_cast<double>(g.x0)) / dx;
    const double b = (static_cast<double>(g.x2) - static_cast<double>(g.x0)) / dx;
    double t = 0.0;
    if (!solve(1.0 - 3.0 * b + 3.0 * a, 3.0 * (b - 2.0 * a), 3.0 * a, s, t))
        return false;
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double y = static_cast<double>(g.y0) * (1.0 - 3.0 * t + 3.0 * t2 - t3) +
                     static_cast<double>(g.y1) * (3.0 * t - 6.0 * t2 + 3.0 * t3) +
                     static_cast<double>(g.y2) * (3.0 * t2 - 3.0 * t3) + static_cast<double>(g.y3) * t3;
    value = std::fabs(y) < 1e-6 ? 0.0F : static_cast<float>(y);
    return true;
}
