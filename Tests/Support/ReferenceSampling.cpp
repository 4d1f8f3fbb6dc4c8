#include "ReferenceSampling.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

namespace ka_test {

namespace {

constexpr double SMALL = 1e-6;
/// Below this magnitude of A the formula is not used.
constexpr double SMALL_CUBE = 1e-5;
constexpr double PI = 3.14159265358;

bool same(const Spot& a, const Spot& b) {
    return a.x == b.x && a.y == b.y;
}

bool inUnit(double t) {
    return 0.0 <= t && t <= 1.0;
}

double signedCubeRoot(double x) {
    return x < 0.0 ? -std::pow(-x, 1.0 / 3.0) : std::pow(x, 1.0 / 3.0);
}

double radians(double degrees) {
    return degrees * PI / 180.0;
}

template <class Number>
Number bezier(Number y0, Number y1, Number y2, Number y3, Number t) {
    const Number t2 = t * t;
    const Number t3 = t2 * t;
    return y0 * (1 - 3 * t + 3 * t2 - t3) + y1 * (3 * t - 6 * t2 + 3 * t3) + y2 * (3 * t2 - 3 * t3) + y3 * t3;
}

using Wide = long double;

/// The time of a segment at t, relative to its first key: exact in its inputs, rounded only in long double.
struct WideTime {
    Wide x1;
    Wide x2;
    Wide x3;
    Wide target;

    Wide operator()(Wide t) const { return bezier<Wide>(0, x1, x2, x3, t) - target; }
};

Wide bisect(const WideTime& time, Wide low, Wide high) {
    const bool rising = time(low) < 0;
    for (int i = 0; i < 80; ++i) {
        const Wide middle = (low + high) / 2;
        ((time(middle) < 0) == rising ? low : high) = middle;
    }
    return (low + high) / 2;
}

WideTime timeOf(const Key& left, const Key& right, float frame) {
    const Wide x0 = left.key.x;
    return {left.out.x - x0, right.in.x - x0, right.key.x - x0, frame - x0};
}

/// `first`, 0, 1 and where between `first` and 1 the derivative of the time changes sign: between these
/// places the time is monotone.
std::vector<Wide> monotonePieces(const WideTime& time, Wide first) {
    const Wide c2 = 3 * (3 * time.x1 - 3 * time.x2 + time.x3);
    const Wide c1 = 6 * (time.x2 - 2 * time.x1);
    const Wide c0 = 3 * time.x1;
    std::vector<Wide> places = {first, 0, 1};
    const auto add = [&](Wide t) {
        if (t > first && t < 1)
            places.push_back(t);
    };
    const Wide square = c1 * c1 - 4 * c2 * c0;
    if (square > 0) {
        // The sum of like signs loses no digits, whichever coefficient is nearly 0.
        const Wide sum = -(c1 + std::copysign(std::sqrt(square), c1)) / 2;
        if (c2 != 0)
            add(sum / c2);
        if (sum != 0)
            add(c0 / sum);
    }
    std::sort(places.begin(), places.end());
    return places;
}

/// Every place in [first, 1] where the time is the frame, `first` not being above 0. A place where it only
/// touches is no sign change and is not found, unless it is an end.
std::vector<Wide> wideRoots(const WideTime& time, Wide first) {
    const std::vector<Wide> places = monotonePieces(time, first);
    std::vector<Wide> roots;
    for (std::size_t i = 1; i < places.size(); ++i) {
        const Wide low = time(places[i - 1]);
        const Wide high = time(places[i]);
        if ((low <= 0 && high >= 0) || (low >= 0 && high <= 0))
            roots.push_back(low == 0    ? places[i - 1]
                            : high == 0 ? places[i]
                                        : bisect(time, places[i - 1], places[i]));
    }
    return roots;
}

/// The root in [0, 1] where the time is nearly a parabola. Where there are two, which is at the frame of a
/// key with a handle that points backwards, they are tried as the formula tries three roots: the largest, the
/// smallest, the one between; of a parabola the smaller one counts.
std::optional<double> nearlyParabolicRoot(const WideTime& time, const TimePolynomial& x) {
    std::vector<Wide> roots = wideRoots(time, 0);
    std::sort(roots.begin(), roots.end());
    roots.erase(std::unique(roots.begin(), roots.end()), roots.end());
    if (roots.empty())
        return std::nullopt;
    if (roots.size() == 1 || x.a == 0.0)
        return static_cast<double>(roots.front());
    // The sum of all three is -B / A.
    roots.push_back(-static_cast<Wide>(x.b) / x.a - roots[0] - roots[1]);
    std::sort(roots.begin(), roots.end());
    for (Wide t : {roots[2], roots[0], roots[1]})
        if (t >= 0 && t <= 1)
            return static_cast<double>(t);
    return std::nullopt;
}

std::optional<double> formulaRoot(double a, double b, double c, double s) {
    const double p = (3.0 * a * c - b * b) / (3.0 * a * a);
    const double q = 2.0 * b * b * b / (27.0 * a * a * a) - b * c / (3.0 * a * a) - s / a;
    const double shift = b / (3.0 * a);
    const double d = (p / 3.0) * (p / 3.0) * (p / 3.0) + (q / 2.0) * (q / 2.0);
    if (std::fabs(d) < SMALL) {
        if (p == 0.0 && q == 0.0)
            return -shift;
        const double first = -std::pow(4.0 * q, 1.0 / 3.0) - shift;
        if (inUnit(first))
            return first;
        const double second = std::pow(q / 2.0, 1.0 / 3.0) - shift;
        return inUnit(second) ? std::optional<double>(second) : std::nullopt;
    }
    if (d >= SMALL) {
        const double w = std::sqrt(d);
        return signedCubeRoot(-q / 2.0 + w) + signedCubeRoot(-q / 2.0 - w) - shift;
    }
    const double r = -2.0 * std::sqrt((-p / 3.0) * (-p / 3.0) * (-p / 3.0));
    const double theta = std::acos(q / r) * 180.0 / PI / 3.0;
    const double m = 2.0 * std::sqrt(-p / 3.0);
    for (double turn : {0.0, 120.0, 240.0}) {
        const double t = m * std::cos(radians(theta + turn)) - shift;
        if (t + SMALL >= 0.0 && t <= 1.0)
            return t;
    }
    return std::nullopt;
}

Sample found(double value) {
    Sample sample;
    sample.returned = true;
    sample.written = true;
    sample.value = std::fabs(value) < SMALL ? 0.0F : static_cast<float>(value);
    return sample;
}

} // namespace

TimePolynomial timePolynomial(const Key& left, const Key& right) {
    const double x0 = static_cast<double>(left.key.x);
    const double dx = static_cast<double>(right.key.x) - x0;
    const double a = (static_cast<double>(left.out.x) - x0) / dx;
    const double b = (static_cast<double>(right.in.x) - x0) / dx;
    return {1.0 - 3.0 * b + 3.0 * a, 3.0 * (b - 2.0 * a), 3.0 * a};
}

Sample referenceSegment(const Key& left, const Key& right, float frame) {
    const double x0 = static_cast<double>(left.key.x);
    const double dx = static_cast<double>(right.key.x) - x0;
    if (dx == 0.0) {
        Sample sample;
        sample.returned = left.key.y != 0.0F;
        return sample;
    }
    double s = (static_cast<double>(frame) - x0) / dx;
    if (frame == left.key.x)
        s = 0.0;
    else if (frame == right.key.x)
        s = 1.0;
    if (same(left.out, left.key) && same(right.in, right.key)) {
        Sample sample;
        sample.returned = true;
        sample.written = true;
        sample.value = left.key.y;
        return sample;
    }
    const TimePolynomial x = timePolynomial(left, right);
    const std::optional<double> t = std::fabs(x.a) < SMALL_CUBE
                                        ? nearlyParabolicRoot(timeOf(left, right, frame), x)
                                        : formulaRoot(x.a, x.b, x.c, s);
    if (!t)
        return {};
    return found(bezier(static_cast<double>(left.key.y), static_cast<double>(left.out.y),
                        static_cast<double>(right.in.y), static_cast<double>(right.key.y), *t));
}

std::map<float, Key> referencePoints(const std::vector<Key>& keys) {
    std::map<float, Key> points;
    for (const Key& key : keys)
        if (!std::isnan(key.key.x))
            points.emplace(key.key.x, key);
    return points;
}

Sample referenceSample(const std::vector<Key>& keys, float frame) {
    Sample sample;
    const auto placed =
        std::count_if(keys.begin(), keys.end(), [](const Key& key) { return !std::isnan(key.key.x); });
    if (placed < 2)
        return sample;
    const std::map<float, Key> points = referencePoints(keys);
    if (points.size() == 1) {
        sample.returned = points.begin()->second.key.y != 0.0F;
        return sample;
    }
    const auto right = points.upper_bound(frame);
    sample.returned = true;
    sample.written = true;
    if (right == points.begin()) {
        sample.value = std::next(points.begin())->second.key.y;
        return sample;
    }
    if (right == points.end()) {
        sample.value = std::prev(right)->second.key.y;
        return sample;
    }
    return referenceSegment(std::prev(right)->second, right->second, frame);
}

std::vector<long double> trueValues(const Key& left, const Key& right, float frame) {
    std::vector<Wide> values;
    for (Wide t : wideRoots(timeOf(left, right, frame), -static_cast<Wide>(SMALL)))
        values.push_back(bezier<Wide>(left.key.y, left.out.y, right.in.y, right.key.y, t));
    return values;
}

double errorAgainst(const std::vector<long double>& values, float value) {
    long double error = std::numeric_limits<long double>::infinity();
    for (long double candidate : values)
        error = std::min(error, std::fabs(candidate - static_cast<long double>(value)));
    return static_cast<double>(error);
}

} // namespace ka_test
