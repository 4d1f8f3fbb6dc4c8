#include "operations/BezierSplit.h"

#include <array>

namespace ka::motion {

namespace {

using Four = std::array<double, 4>;

double valueAt(const Four& p, double t) {
    const double v = 1.0 - t;
    return v * v * v * p[0] + 3 * v * v * t * p[1] + 3 * v * t * t * p[2] + t * t * t * p[3];
}

/// Time never runs backwards between keys: halving finds the one parameter.
double parameterOf(const Four& x, double frame) {
    double low = 0.0, high = 1.0;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (valueAt(x, middle) < frame ? low : high) = middle;
    }
    return (low + high) / 2;
}

/// The points of the part before `t`, then those of the part after it, one in common.
std::array<double, 7> casteljau(const Four& p, double t) {
    const auto mix = [t](double a, double b) { return a + (b - a) * t; };
    const double a = mix(p[0], p[1]), b = mix(p[1], p[2]), c = mix(p[2], p[3]);
    const double d = mix(a, b), e = mix(b, c);
    return {p[0], a, d, mix(d, e), e, c, p[3]};
}

struct Parts {
    std::array<double, 7> x, y;
};

Parts split(const kaSegmentPoints& s, float frame) {
    const Four x{static_cast<double>(s.x0), static_cast<double>(s.x1), static_cast<double>(s.x2),
                 static_cast<double>(s.x3)};
    const Four y{static_cast<double>(s.y0), static_cast<double>(s.y1), static_cast<double>(s.y2),
                 static_cast<double>(s.y3)};
    const double t = parameterOf(x, static_cast<double>(frame));
    return {casteljau(x, t), casteljau(y, t)};
}

} // namespace

kaSegmentPoints segmentFrom(const kaSegmentPoints& segment, float frame) {
    const Parts parts = split(segment, frame);
    const auto f = [](double number) { return static_cast<float>(number); };
    return {frame,         f(parts.y[3]), f(parts.x[4]), f(parts.y[4]),
            f(parts.x[5]), f(parts.y[5]), segment.x3,    segment.y3};
}

kaSegmentPoints segmentUpTo(const kaSegmentPoints& segment, float frame) {
    const Parts parts = split(segment, frame);
    const auto f = [](double number) { return static_cast<float>(number); };
    return {segment.x0,    segment.y0,    f(parts.x[1]), f(parts.y[1]),
            f(parts.x[2]), f(parts.y[2]), frame,         f(parts.y[3])};
}

} // namespace ka::motion
