#include "kaSegment.h"

#include "kaLanes.h"

#include <cmath>
#include <initializer_list>

namespace {

/// Below this magnitude the discriminant counts as zero.
constexpr double DiscriminantTolerance = 1e-6;
/// A root this little below 0 still counts as inside the segment.
constexpr double RootTolerance = 1e-6;
/// Below this magnitude of the coefficient of t^3 the cubic formula loses too many digits.
constexpr double SmallCube = 1e-5;
/// Results below this magnitude are written as 0, in the unit of the value.
constexpr double ValueTolerance = 1e-6;
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

/// Where a segment stands for a parameter t, between its four values: the polynomial in powers of t, most of
/// which is there before t is.
template <class Real>
Real quickBlend(const Real& t, const Real& y0, const Real& y1, const Real& y2, const Real& y3) {
    const Real first = 3.0 * (y1 - y0);
    const Real second = 3.0 * (y2 - y1);
    return y0 + t * (first + t * ((second - first) + t * (y3 - y0 - second)));
}

/// What the formula for one real root gives with quick cube roots, of one segment (`double`) or of several.
template <class Real>
struct Estimate {
    Real t;
    Real value;
    Real error; ///< `value` is off by less
};

/// The error allows for the rounding of everything from the cube roots on, here and in the literal formula.
template <class Real>
Estimate<Real> estimate(const Real& half, const Real& discriminant, const Real& shift, const Real& y0,
                        const Real& y1, const Real& y2, const Real& y3) {
    const Real w = kaSquareRoot(discriminant);
    const auto [u, v] = kaQuickSignedCubeRoots<Real>(w - half, -half - w);
    const Real t = u + v - shift;
    // For t near the segment the value changes by less than 4 times the sum of the four values for each unit
    // of t.
    const Real reach = kaMagnitude(y0) + kaMagnitude(y1) + kaMagnitude(y2) + kaMagnitude(y3);
    const Real size = kaMagnitude(u) + kaMagnitude(v) + kaMagnitude(shift) + 1.0;
    return {t, quickBlend(t, y0, y1, y2, y3), reach * size * 0x1p-42};
}

/// Where all numbers within the error are the same float, that float is the literal result.
/// @return whether they are; else nothing is written.
inline bool accept(double t, double result, double error, float& value) {
    if (!(t >= -0.01 && t <= 1.01))
        return false;
    const auto lowest = static_cast<float>(result - error);
    if (lowest != static_cast<float>(result + error) || !(std::fabs(result) - error >= ValueTolerance))
        return false;
    value = lowest;
    return true;
}

} // namespace

kaSegment::kaSegment(const Points& points) : _points(points) {
    static_assert(sizeof(kaSegment) == 64, "one cache line");
    if (length() == 0.0 || isStep())
        return;
    const double b = squareCoefficient();
    const double c = linearCoefficient();
    const double x1 = (static_cast<double>(points.x1) - static_cast<double>(points.x0)) / length();
    const double x2 = (static_cast<double>(points.x2) - static_cast<double>(points.x0)) / length();
    const double a = 1.0 - 3.0 * x2 + 3.0 * x1;
    if (std::fabs(a) < SmallCube) {
        _powers = {a, b, c};
        return;
    }
    _a = a;
    const double third = p() / 3.0;
    _reduced.shift = b / (3.0 * _a);
    _reduced.q0 = 2.0 * b * b * b / (27.0 * _a * _a * _a) - b * c / (3.0 * _a * _a);
    _reduced.pThird3 = third * third * third;
}

bool kaSegment::isStep() const {
    return _points.x1 == _points.x0 && _points.y1 == _points.y0 && _points.x2 == _points.x3 &&
           _points.y2 == _points.y3;
}

/// B.
double kaSegment::squareCoefficient() const {
    const double x1 = (static_cast<double>(_points.x1) - static_cast<double>(_points.x0)) / length();
    const double x2 = (static_cast<double>(_points.x2) - static_cast<double>(_points.x0)) / length();
    return 3.0 * (x2 - 2.0 * x1);
}

/// C.
double kaSegment::linearCoefficient() const {
    return 3.0 * ((static_cast<double>(_points.x1) - static_cast<double>(_points.x0)) / length());
}

/// Of the reduced cubic.
double kaSegment::p() const {
    const double b = squareCoefficient();
    return (3.0 * _a * linearCoefficient() - b * b) / (3.0 * _a * _a);
}

/// s: where the frame stands between the keys.
double kaSegment::positionOf(float frame) const {
    if (frame == _points.x0 || frame == _points.x3)
        return frame == _points.x0 ? 0.0 : 1.0;
    return (static_cast<double>(frame) - static_cast<double>(_points.x0)) / length();
}

/// 1 - s, without the rounding that would cost a small one its digits.
double kaSegment::positionBefore(float frame) const {
    return (static_cast<double>(_points.x3) - static_cast<double>(frame)) / length();
}

/// Of 1 - s for 1 - t: the same polynomial with the handles exchanged.
kaSegment::Powers kaSegment::powersFromRight() const {
    const double x1 = (static_cast<double>(_points.x3) - static_cast<double>(_points.x2)) / length();
    const double x2 = (static_cast<double>(_points.x3) - static_cast<double>(_points.x1)) / length();
    return {_powers.a, 3.0 * (x2 - 2.0 * x1), 3.0 * x1};
}

bool kaSegment::sample(float frame, float& value) const {
    if (_a == 0.0)
        return sampleWithoutFormula(frame, value);
    const double q = _reduced.q0 - positionOf(frame) / _a;
    const double half = q / 2.0;
    const double discriminant = _reduced.pThird3 + half * half;
    if (discriminant >= DiscriminantTolerance) {
        const Estimate<double> quick = estimate<double>(half, discriminant, _reduced.shift, _points.y0,
                                                        _points.y1, _points.y2, _points.y3);
        if (accept(quick.t, quick.value, quick.error, value))
            return true;
    }
    double t = 0.0;
    return parameter(q, discriminant, t) && write(t, value);
}

bool kaSegment::sampleWithoutFormula(float frame, float& value) const {
    if (length() == 0.0)
        return _points.y0 != 0.0F;
    if (isStep()) {
        value = _points.y0;
        return true;
    }
    double t = 0.0;
    return nearlyParabolicParameter(frame, t) && write(t, value);
}

void kaSegment::sampleSideBySide(const kaSegment* const (&segments)[Side], const float (&frames)[Side],
                                 float (&values)[Side], bool (&written)[Side]) {
    static_assert(Side == kaLaneCount, "one lane each");
    kaLanes elapsed, length, a, q0, pThird3, shift, y0, y1, y2, y3;
    for (std::size_t i = 0; i < Side; ++i) {
        const kaSegment& segment = *segments[i];
        const Points& points = segment._points;
        elapsed[i] = static_cast<double>(frames[i]) - static_cast<double>(points.x0);
        length[i] = segment.length();
        a[i] = segment._a;
        q0[i] = segment._reduced.q0;
        pThird3[i] = segment._reduced.pThird3;
        shift[i] = segment._reduced.shift;
        y0[i] = points.y0;
        y1[i] = points.y1;
        y2[i] = points.y2;
        y3[i] = points.y3;
    }
    const kaLanes half = (q0 - elapsed / length / a) / 2.0;
    const kaLanes discriminant = pThird3 + half * half;
    const Estimate<kaLanes> quick = estimate<kaLanes>(half, discriminant, shift, y0, y1, y2, y3);
    for (std::size_t i = 0; i < Side; ++i)
        written[i] = (discriminant[i] >= DiscriminantTolerance &&
                      accept(quick.t[i], quick.value[i], quick.error[i], values[i])) ||
                     segments[i]->sample(frames[i], values[i]);
}

/// By the weights of the four values, which round otherwise than the powers of t.
inline double kaSegment::blend(double t) const {
    const double t2 = t * t;
    const double t3 = t2 * t;
    return _points.y0 * (1.0 - 3.0 * t + 3.0 * t2 - t3) + _points.y1 * (3.0 * t - 6.0 * t2 + 3.0 * t3) +
           _points.y2 * (3.0 * t2 - 3.0 * t3) + _points.y3 * t3;
}

/// Cardano's formula for the reduced cubic.
bool kaSegment::parameter(double q, double discriminant, double& t) const {
    if (std::fabs(discriminant) < DiscriminantTolerance)
        return nearlyDoubleRoot(q, t);
    if (discriminant <= -DiscriminantTolerance)
        return threeRoots(q, t);
    if (!(discriminant >= DiscriminantTolerance))
        return false; // a handle that is not a number
    const double w = std::sqrt(discriminant);
    t = signedCubeRoot(-(q / 2.0) + w) + signedCubeRoot(-(q / 2.0) - w) - _reduced.shift;
    return true;
}

/// a t^3 + b t^2 + c t = s for |a| < 1e-5 and 0 <= s <= 1: the root in [0, 1/2], which has to lie there and
/// not to be 0. The parabola without a comes within 1e-5 of it, by the quotient in which nothing cancels; two
/// steps of Newton's method, each of which squares that, take the rest.
double kaSegment::Powers::root(double s) const {
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
bool kaSegment::nearlyParabolicParameter(float frame, double& t) const {
    const double s = positionOf(frame);
    if (!(s >= 0.0 && s <= 1.0))
        return false; // not a frame of the segment
    const Powers right = powersFromRight();
    if (frame == _points.x0 && !(_powers.c < 0.0 && _powers.a > 0.0))
        t = 0.0;
    else if (frame == _points.x3 && !(right.c < 0.0 && _powers.a >= 0.0))
        t = 1.0;
    else if (s <= (_powers.a + 2.0 * _powers.b + 4.0 * _powers.c) / 8.0) // the time at t = 1/2
        t = _powers.root(s);
    else
        t = 1.0 - right.root(positionBefore(frame));
    return true;
}

/// The plain cube roots are NaN for a negative base and then fall out of the range test; the samples near a
/// double root depend on it.
bool kaSegment::nearlyDoubleRoot(double q, double& t) const {
    if (q == 0.0 && p() == 0.0) {
        t = -_reduced.shift;
        return true;
    }
    t = -plainCubeRoot(4.0 * q) - _reduced.shift;
    if (inUnit(t))
        return true;
    t = plainCubeRoot(q / 2.0) - _reduced.shift;
    return inUnit(t);
}

bool kaSegment::threeRoots(double q, double& t) const {
    const double r = -2.0 * std::sqrt(-_reduced.pThird3);
    const double third = toDegrees(std::acos(q / r)) / 3.0;
    const double m = 2.0 * std::sqrt(-p() / 3.0);
    for (const double turn : {0.0, 120.0, 240.0}) {
        t = m * std::cos(toRadians(third + turn)) - _reduced.shift;
        if (t + RootTolerance >= 0.0 && t <= 1.0)
            return true;
    }
    return false;
}

bool kaSegment::write(double t, float& value) const {
    const double result = blend(t);
    value = std::fabs(result) < ValueTolerance ? 0.0F : static_cast<float>(result);
    return true;
}

bool kaSampleSegment(const kaSegment::Points& points, float frame, float& value) {
    return kaSegment(points).sample(frame, value);
}
