#include "kaSegmentBounds.h"

#include "kaSegmentFormula.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

namespace {

/// Of one rounding in double precision.
constexpr double U = 0x1p-53;
/// What the short pi of the formula's angles makes of 120 degrees: less than they are, by this angle.
constexpr double TurnError = 2.0 / 3.0 * 9.7932384626e-12;

/// Below it a coefficient of t^3 may leave one root so far away that the formula loses digits to it.
constexpr double SmallCube = 0.01;

constexpr float Infinity = std::numeric_limits<float>::infinity();

/// An interval that grows to cover others.
struct Hull {
    double from = std::numeric_limits<double>::infinity();
    double to = -std::numeric_limits<double>::infinity();

    void add(double low, double high) {
        if (!(high >= 0.0 && low <= 1.0))
            return; // no place on the segment
        from = std::min(from, low);
        to = std::max(to, high);
    }
};

/// How far the formula's result is from the truth where A is not nearly 0.
///
/// Each t that it gives is the true root for a time that is a little off: its steps, taken backwards, are
/// exact for other p and q. The sums below add up how much the roundings on the way change these two, with S
/// = (P/3)^3 + (Q/2)^2 of the bounds P, Q that p and q would have if nothing cancelled, and what that makes
/// of the time. They are doubled for what is of second order.
class FormulaError {
  public:
    explicit FormulaError(const kaSegmentFormula& formula) : _a(formula.a()), _cubic(formula.reduced(0.0)) {
        const double a = std::fabs(_a);
        const double b = std::fabs(formula.b());
        const double c = std::fabs(formula.c());
        _p = (3.0 * a * c + b * b) / (3.0 * a * a);
        _q = (2.0 * b * b / (9.0 * a) + c) * b / (3.0 * a * a) + 1.0 / a;
        const double third = _p / 3.0;
        _s = third * third * third + _q * _q / 4.0;
        _reach = 1.0 + b / (3.0 * a);
        _third = std::fabs(_cubic.p / 3.0);
        _root = std::sqrt(_third);
    }

    /// Where the discriminant may be on either side of the formula's tolerance, or nearly 0.
    double tolerance() const { return kaSegmentFormula::DiscriminantTolerance + 128.0 * U * _s; }

    /// The parts of the length where that is so.
    Hull doubtful() const {
        // The discriminant is (p/3)^3 + h^2, where h falls by 1 / (2A) along the segment.
        const double inner = std::sqrt(std::max(0.0, -_cubic.pThird3 - tolerance()));
        const double outer = std::sqrt(std::max(0.0, -_cubic.pThird3 + tolerance()));
        Hull hull;
        if (-_cubic.pThird3 + tolerance() >= 0.0)
            for (const double sign : {-1.0, 1.0}) {
                const double one = partOf(sign * inner);
                const double other = partOf(sign * outer);
                hull.add(std::min(one, other) - Margin, std::max(one, other) + Margin);
            }
        return hull;
    }

    bool hasOneRootSomewhere() const { return std::max(discriminant(0.0), discriminant(1.0)) > -tolerance(); }
    bool hasThreeRootsSomewhere() const {
        const bool turns = (partOf(0.0) >= 0.0) == (partOf(0.0) <= 1.0);
        return std::min({discriminant(0.0), discriminant(1.0), turns ? _cubic.pThird3 : 1.0}) < tolerance();
    }

    /// Of the time at most, in parts of the segment; infinite where there is no telling.
    double bound() const {
        double error = 0.0;
        if (hasOneRootSomewhere())
            error = ofOneRoot();
        if (hasThreeRootsSomewhere())
            error = std::max(error, ofThreeRoots());
        return 2.0 * error + 40.0 * U * (_reach + _root);
    }

    /// What the short pi lowers t by, from and to. The roots tried second and third are turned by one and two
    /// such angles. Where A is positive the time rises at the outer ones of three, tried first and second:
    /// the latter lies higher for it. Where A is negative it rises at the middle one, tried last.
    std::pair<double, double> lowered() const {
        const double turned = hasThreeRootsSomewhere() ? 2.0 * _root * TurnError : 0.0;
        if (_a > 0.0)
            return {-turned, 0.0};
        return {hasOneRootSomewhere() ? 0.0 : 2.0 * turned * (1.0 - turnedSpread()), 2.0 * turned};
    }

  private:
    /// Of a part of the segment, for what single precision rounds off.
    static constexpr double Margin = 2e-6;

    double partOf(double h) const { return (_cubic.q / 2.0 - h) * 2.0 * _a; }
    double discriminant(double s) const {
        const double h = _cubic.q / 2.0 - s / (2.0 * _a);
        return _cubic.pThird3 + h * h;
    }

    /// u and v are exact cube roots of numbers whose sum misses -q by 114 U sqrt(S) and whose product misses
    /// -(p/3)^3 by 29 U S: together they solve the cubic of another q and another p.
    double ofOneRoot() const {
        const double cube = _third * _third * _third;
        if (!(58.0 * U * _s <= cube))
            return std::numeric_limits<double>::infinity();
        const double p = 44.0 * U * _s / (_third * _third) + 96.0 * U * _third;
        return std::fabs(_a) * (p * _reach + 114.0 * U * std::sqrt(_s));
    }

    /// m cos(angle) solves the cubic of p = -3/4 m^2 and q = -m^3/4 cos(3 angle).
    double ofThreeRoots() const {
        const double p = 11.0 * U * _p;
        const double q = 20.0 * U * _q + 40.0 * U * _root * _p;
        return std::fabs(_a) * (p * _reach + q);
    }

    /// The sine of the middle root's angle is between this less than -1 and -1.
    double turnedSpread() const {
        const double r = 2.0 * _third * _root;
        const double h = std::max(std::fabs(_cubic.q), std::fabs(_cubic.q - 1.0 / _a));
        const double cosine = std::min(1.0, h / r);
        return 0.135 * cosine * cosine + 1e-6;
    }

    double _a;
    kaSegmentFormula::Reduced _cubic;
    double _p;
    double _q;
    double _s;
    double _reach; ///< of u = t + B/(3A)
    double _third; ///< |p / 3|
    double _root;  ///< of that
};

/// Whether the time never runs backwards, by its derivative in Bernstein form: `left`, `middle`, `right`.
bool runsForwards(double left, double right) {
    const double middle = 3.0 - left - right;
    return left >= 0.0 && right >= 0.0 && (middle >= 0.0 || middle * middle <= left * right * (1.0 - 1e-9));
}

/// Rounded up to single precision.
float above(double x) {
    return static_cast<float>(x * 1.000001);
}

/// At least the largest derivative of the time, in Bernstein form.
double fastest(double left, double right) {
    return std::max({left, right, 3.0 - left - right}) * 1.000001;
}

/// Two numbers in one: the first to seven bits, whatever the second is; the upper half of the second.
float packed(float first, float second) {
    const auto bitsOf = [](float x) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &x, sizeof(bits));
        return bits;
    };
    const std::uint32_t bits = (bitsOf(first) & 0xFFFF0000U) | bitsOf(second) >> 16U;
    float both = 0.0F;
    std::memcpy(&both, &bits, sizeof(both));
    return both;
}

/// `kaSegmentBounds::lowered`.
float packedRange(const std::pair<double, double>& range) {
    const double middle = (range.first + range.second) / 2.0;
    const double off = (range.second - range.first) / 2.0 + std::fabs(middle) / 128.0;
    return packed(static_cast<float>(middle), static_cast<float>(off * 1.01));
}

/// `kaSegmentBounds::inverseSlopes`: a start does best with less than vertical slopes, smoothly from 0.9 down
/// to half of that.
float startingSlopes(float left, float right) {
    const auto lessSteep = [](float slope) {
        return slope > 0.9F ? slope : 0.45F + slope * slope * (0.25F / 0.45F);
    };
    return packed(1.0F / lessSteep(left), 1.0F / lessSteep(right));
}

/// Of blending the values, here and in the formula.
double roundingOf(const kaSegmentPoints& points) {
    double sum = 0.0;
    for (const float y : {points.y0, points.y1, points.y2, points.y3})
        sum += std::fabs(static_cast<double>(y));
    return sum * 0x1p-45;
}

} // namespace

kaSegmentBounds::kaSegmentBounds(const kaSegmentPoints& points) : doubtFrom(-Infinity), doubtTo(Infinity) {
    const double length = static_cast<double>(points.x3) - static_cast<double>(points.x0);
    if (!(length > 1e-20 && length < 1e20) || points.isStep())
        return;
    const kaSegmentFormula formula(points);
    const double right = 3.0 * ((static_cast<double>(points.x3) - static_cast<double>(points.x2)) / length);
    if (!runsForwards(formula.c(), right))
        return;
    double missed = 512.0 * U; // of the polynomial itself, whose coefficients are below 13
    std::pair<double, double> shift;
    Hull doubtful;
    if (!formula.isNearlyParabolic()) {
        const FormulaError error(formula);
        missed += error.bound();
        shift = error.lowered();
        doubtful = error.doubtful();
        // Beside a vertical handle the formula may take a root from before the key.
        if (formula.c() < 1e-5 * (std::fabs(formula.a()) + std::fabs(formula.b())))
            doubtful.add(-1.0, 1e-9 + 2.0 * missed);
    }
    // Else hardly any t would be known well enough.
    const bool mayBeFar = std::fabs(formula.a()) < SmallCube && !formula.isNearlyParabolic();
    const double known = mayBeFar ? 1e-10 : 2e-9;
    if (!(missed < known * fastest(formula.c(), right))) {
        perFrame = mayBeFar ? -1.0F : 0.0F;
        return;
    }
    perFrame = static_cast<float>(1.0 / length);
    slack = above(missed * length);
    lowered = packedRange(shift);
    doubtFrom = doubtful.from < doubtful.to ? static_cast<float>(doubtful.from) : Infinity;
    doubtTo = static_cast<float>(std::min(doubtful.to, 2.0));
    const auto bending = [](double p, double q, double r) { return 6.0 * std::fabs(p - 2.0 * q + r); };
    bend =
        above(std::max(bending(points.x0, points.x1, points.x2), bending(points.x1, points.x2, points.x3)));
    const auto step = [](float p, float q) {
        return std::fabs(static_cast<double>(q) - static_cast<double>(p));
    };
    const double steepest =
        3.05 * std::max({step(points.y0, points.y1), step(points.y1, points.y2), step(points.y2, points.y3)});
    // Of a value that hardly changes more than it does, lest its roundings be much of that.
    const double rounding = roundingOf(points);
    slope = above(std::max(1.2 * steepest, rounding * 0x1p40));
    if (slope > 0.0F)
        slack = above(missed * length +
                      rounding / static_cast<double>(slope) * fastest(formula.c(), right) * length);
    inverseSlopes = startingSlopes(static_cast<float>(formula.c()), static_cast<float>(right));
}
