#include "kaSegment.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace {

/// Below this magnitude the discriminant counts as zero.
constexpr double DiscriminantTolerance = 1e-6;
/// A root this little below 0 still counts as inside the segment.
constexpr double RootTolerance = 1e-6;
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

/// The cube root of a positive number, relative error below 2^-50, in a third of the time of the power. Of 0
/// it is 0; of other numbers that are no normal ones it is anything.
double quickCubeRoot(double x) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof(bits));
    bits = 0x553ef0ff289dd796ULL - bits / 3; // a third of the exponent: 1 / cube root to within 4 %
    double inverse = 0.0;
    std::memcpy(&inverse, &bits, sizeof(inverse));
    // The series of (1 - r)^(-1/3), twice.
    double r = 1.0 - x * inverse * (inverse * inverse);
    inverse += inverse * r * ((1.0 / 3.0 + 2.0 / 9.0 * r) + r * r * (14.0 / 81.0 + 35.0 / 243.0 * r));
    r = 1.0 - x * inverse * (inverse * inverse);
    inverse += inverse * r * (1.0 / 3.0 + r * (2.0 / 9.0 + 14.0 / 81.0 * r));
    return x * (inverse * inverse);
}

double quickSignedCubeRoot(double x) {
    return std::copysign(quickCubeRoot(std::fabs(x)), x);
}

} // namespace

kaSegment::kaSegment(const Points& points) : _points(points) {
    static_assert(sizeof(kaSegment) == 64, "one cache line");
    if (length() == 0.0)
        return;
    const double b = squareCoefficient();
    const double c = linearCoefficient();
    const double x1 = (static_cast<double>(points.x1) - static_cast<double>(points.x0)) / length();
    const double x2 = (static_cast<double>(points.x2) - static_cast<double>(points.x0)) / length();
    _a = 1.0 - 3.0 * x2 + 3.0 * x1;
    // Handles at thirds of the segment, the most common ones of all, make the leading coefficient exactly 0.
    if (_a == 0.0) {
        _quadratic = {b, c};
        return;
    }
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

bool kaSegment::sample(float frame, float& value) const {
    if (length() == 0.0)
        return _points.y0 != 0.0F;
    if (isStep()) {
        value = _points.y0;
        return true;
    }
    const double s = positionOf(frame);
    double t = 0.0;
    if (_a == 0.0)
        return quadraticParameter(s, t) && write(t, value);
    const double q = _reduced.q0 - s / _a;
    const double half = q / 2.0;
    const double discriminant = _reduced.pThird3 + half * half;
    if (discriminant >= DiscriminantTolerance && sampleOneRoot(half, std::sqrt(discriminant), value))
        return true;
    return parameter(q, discriminant, t) && write(t, value);
}

inline double kaSegment::blend(double t) const {
    const double t2 = t * t;
    const double t3 = t2 * t;
    return static_cast<double>(_points.y0) * (1.0 - 3.0 * t + 3.0 * t2 - t3) +
           static_cast<double>(_points.y1) * (3.0 * t - 6.0 * t2 + 3.0 * t3) +
           static_cast<double>(_points.y2) * (3.0 * t2 - 3.0 * t3) + static_cast<double>(_points.y3) * t3;
}

/// The formula for one real root with quick cube roots. The value is off by less than `error`, which allows
/// for the rounding of everything from the cube roots on, here and in the literal formula. Where all numbers
/// within the error are the same float, that float is the literal result.
/// @return whether they are; else nothing is written.
bool kaSegment::sampleOneRoot(double half, double w, float& value) const {
    const double u = quickSignedCubeRoot(-half + w);
    const double v = quickSignedCubeRoot(-half - w);
    const double t = u + v - _reduced.shift;
    if (!(t >= -0.01 && t <= 1.01))
        return false;
    // In this range of t the value changes by less than 4 times the sum of the four values for each unit of
    // t.
    const double reach =
        std::fabs(static_cast<double>(_points.y0)) + std::fabs(static_cast<double>(_points.y1)) +
        std::fabs(static_cast<double>(_points.y2)) + std::fabs(static_cast<double>(_points.y3));
    const double size = std::fabs(u) + std::fabs(v) + std::fabs(_reduced.shift) + 1.0;
    const double error = reach * (4.0 * size) * 0x1p-44;
    const double result = blend(t);
    const auto lowest = static_cast<float>(result - error);
    if (lowest != static_cast<float>(result + error) || !(std::fabs(result) - error >= ValueTolerance))
        return false;
    value = lowest;
    return true;
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

/// B t^2 + C t - s = 0: the smallest root inside the segment. The root nearer to 0 comes from the quotient
/// form, which does not cancel.
bool kaSegment::quadraticParameter(double s, double& t) const {
    const double b = _quadratic.b;
    const double c = _quadratic.c;
    if (b == 0.0) {
        t = s / c;
        return c != 0.0 && inUnit(t);
    }
    const double discriminant = c * c + 4.0 * b * s;
    if (discriminant < 0.0)
        return false;
    const double root = std::sqrt(discriminant);
    const double half = -0.5 * (c + (c < 0.0 ? -root : root));
    const double first = half / b;
    const double second = half != 0.0 ? -s / half : first;
    const double smaller = first < second ? first : second;
    const double larger = first < second ? second : first;
    t = inUnit(smaller) ? smaller : larger;
    return inUnit(t);
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
