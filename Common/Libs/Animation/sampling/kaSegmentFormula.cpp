#include "kaSegmentFormula.h"

#include <cmath>
#include <initializer_list>

namespace {

/// Pi as the angle conversion has always had it, short of full precision: samples depend on it.
constexpr double ConversionPi = 3.14159265358;

double toDegrees(double radians) {
    return radians * 180.0 / ConversionPi;
}

double toRadians(double degrees) {
    return degrees * ConversionPi / 180.0;
}

bool inUnit(double t) {
    return t >= 0.0 && t <= 1.0;
}

/// The plain power, undefined (NaN) below 0.
double plainCubeRoot(double x) {
    return std::pow(x, 1.0 / 3.0);
}

double signedCubeRoot(double x) {
    return x < 0.0 ? -plainCubeRoot(-x) : plainCubeRoot(x);
}

/// Results below this magnitude are written as 0, in the unit of the value.
constexpr double ValueTolerance = 1e-6;

/// A sample by the formula from the parameter: by the weights of the four values, which round otherwise than
/// the powers of t.
float blend(const kaSegmentPoints& points, double t) {
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double result = points.y0 * (1.0 - 3.0 * t + 3.0 * t2 - t3) +
                          points.y1 * (3.0 * t - 6.0 * t2 + 3.0 * t3) + points.y2 * (3.0 * t2 - 3.0 * t3) +
                          points.y3 * t3;
    return std::fabs(result) < ValueTolerance ? 0.0F : static_cast<float>(result);
}

} // namespace

bool kaSegmentFormula::sample(const kaSegmentPoints& points, float frame, float& value) {
    if (points.x0 == points.x3)
        return points.y0 != 0.0F;
    if (points.isStep()) {
        value = points.y0;
        return true;
    }
    double t = 0.0;
    if (!kaSegmentFormula(points).parameter(frame, t))
        return false;
    value = blend(points, t);
    return true;
}

kaSegmentFormula::kaSegmentFormula(const kaSegmentPoints& points) : _points(points) {
    const double x1 = (static_cast<double>(points.x1) - static_cast<double>(points.x0)) / length();
    const double x2 = (static_cast<double>(points.x2) - static_cast<double>(points.x0)) / length();
    _a = 1.0 - 3.0 * x2 + 3.0 * x1;
    _b = 3.0 * (x2 - 2.0 * x1);
    _c = 3.0 * x1;
}

double kaSegmentFormula::length() const {
    return static_cast<double>(_points.x3) - static_cast<double>(_points.x0);
}

bool kaSegmentFormula::isNearlyParabolic() const {
    return std::fabs(_a) < SmallCube;
}

/// s: where the frame stands between the keys.
double kaSegmentFormula::positionOf(float frame) const {
    if (frame == _points.x0 || frame == _points.x3)
        return frame == _points.x0 ? 0.0 : 1.0;
    return (static_cast<double>(frame) - static_cast<double>(_points.x0)) / length();
}

/// 1 - s, without the rounding that would cost a small one its digits.
double kaSegmentFormula::positionBefore(float frame) const {
    return (static_cast<double>(_points.x3) - static_cast<double>(frame)) / length();
}

/// Of 1 - s for 1 - t: the same polynomial with the handles exchanged.
kaSegmentFormula::Powers kaSegmentFormula::powersFromRight() const {
    const double x1 = (static_cast<double>(_points.x3) - static_cast<double>(_points.x2)) / length();
    const double x2 = (static_cast<double>(_points.x3) - static_cast<double>(_points.x1)) / length();
    return {_a, 3.0 * (x2 - 2.0 * x1), 3.0 * x1};
}

/// a t^3 + b t^2 + c t = s for |a| < 1e-5 and 0 <= s <= 1: the root in [0, 1/2], which has to lie there and
/// not to be 0. The parabola without a comes within 1e-5 of it, by the quotient in which nothing cancels; two
/// steps of Newton's method, each of which squares that, take the rest.
double kaSegmentFormula::Powers::root(double s) const {
    const double square = std::sqrt(std::fmax(c * c + 4.0 * b * s, 0.0));
    double t = c < 0.0 ? (square - c) / (2.0 * b) : 2.0 * s / (c + square);
    for (int step = 0; step < 2; ++step)
        t -= (((a * t + b) * t + c) * t - s) / ((3.0 * a * t + 2.0 * b) * t + c);
    return t;
}

/// The one root in [0, 1]: A + B + C = 1, so a second or third one lies far outside. It is counted from the
/// key that it is nearer to, where a handle above or below its key makes the time stand still.
///
/// A handle that points backwards at its key makes the key's frame come twice, and that frame alone has two
/// roots in [0, 1]. Of three roots the formula tries the largest, the smallest and the one between: which of
/// the two comes first is decided by the side on which the third lies, that is by the sign of A. A = 0 has no
/// third, and the smaller counts.
bool kaSegmentFormula::nearlyParabolicParameter(float frame, double& t) const {
    const double s = positionOf(frame);
    if (!(s >= 0.0 && s <= 1.0))
        return false; // not a frame of the segment
    const Powers right = powersFromRight();
    if (frame == _points.x0 && !(_c < 0.0 && _a > 0.0))
        t = 0.0;
    else if (frame == _points.x3 && !(right.c < 0.0 && _a >= 0.0))
        t = 1.0;
    else if (s <= (_a + 2.0 * _b + 4.0 * _c) / 8.0) // the time at t = 1/2
        t = Powers{_a, _b, _c}.root(s);
    else
        t = 1.0 - right.root(positionBefore(frame));
    return true;
}

/// Cardano's formula for the reduced cubic.
bool kaSegmentFormula::parameter(float frame, double& t) const {
    if (isNearlyParabolic())
        return nearlyParabolicParameter(frame, t);
    const Reduced cubic = reduced(positionOf(frame));
    const double half = cubic.q / 2.0;
    const double discriminant = cubic.pThird3 + half * half;
    if (std::fabs(discriminant) < DiscriminantTolerance)
        return nearlyDoubleRoot(cubic, t);
    if (discriminant <= -DiscriminantTolerance)
        return threeRoots(cubic, t);
    if (!(discriminant >= DiscriminantTolerance))
        return false; // a handle that is not a number
    const double w = std::sqrt(discriminant);
    t = signedCubeRoot(-half + w) + signedCubeRoot(-half - w) - cubic.shift;
    return true;
}

kaSegmentFormula::Reduced kaSegmentFormula::reduced(double s) const {
    const double p = (3.0 * _a * _c - _b * _b) / (3.0 * _a * _a);
    const double q = 2.0 * _b * _b * _b / (27.0 * _a * _a * _a) - _b * _c / (3.0 * _a * _a) - s / _a;
    const double third = p / 3.0;
    return {p, q, _b / (3.0 * _a), third * third * third};
}

/// The plain cube roots are NaN for a negative base and then fall out of the range test; the samples near a
/// double root depend on it.
bool kaSegmentFormula::nearlyDoubleRoot(const Reduced& cubic, double& t) {
    if (cubic.q == 0.0 && cubic.p == 0.0) {
        t = -cubic.shift;
        return true;
    }
    t = -plainCubeRoot(4.0 * cubic.q) - cubic.shift;
    if (inUnit(t))
        return true;
    t = plainCubeRoot(cubic.q / 2.0) - cubic.shift;
    return inUnit(t);
}

bool kaSegmentFormula::threeRoots(const Reduced& cubic, double& t) {
    const double r = -2.0 * std::sqrt(-cubic.pThird3);
    const double third = toDegrees(std::acos(cubic.q / r)) / 3.0;
    const double m = 2.0 * std::sqrt(-cubic.p / 3.0);
    for (const double turn : {0.0, 120.0, 240.0}) {
        t = m * std::cos(toRadians(third + turn)) - cubic.shift;
        if (t + RootTolerance >= 0.0 && t <= 1.0)
            return true;
    }
    return false;
}
