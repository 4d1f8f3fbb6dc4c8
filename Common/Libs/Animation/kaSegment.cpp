#include "kaSegment.h"

#include <cmath>
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

} // namespace

kaSegment::kaSegment(const Points& points) : _points(points) {
    _dx = static_cast<double>(points.x3) - static_cast<double>(points.x0);
    if (_dx == 0.0)
        return;
    if (points.x1 == points.x0 && points.y1 == points.y0 && points.x2 == points.x3 &&
        points.y2 == points.y3) {
        _kind = Kind::Step;
        return;
    }
    const double a = (static_cast<double>(points.x1) - static_cast<double>(points.x0)) / _dx;
    const double b = (static_cast<double>(points.x2) - static_cast<double>(points.x0)) / _dx;
    _a = 1.0 - 3.0 * b + 3.0 * a;
    _b = 3.0 * (b - 2.0 * a);
    _c = 3.0 * a;
    // Handles at thirds of the segment, the most common ones of all, make the leading coefficient exactly 0.
    if (_a == 0.0) {
        _kind = _b == 0.0 ? Kind::Linear : Kind::Quadratic;
        return;
    }
    _kind = Kind::Cubic;
    _shift = _b / (3.0 * _a);
    _p = (3.0 * _a * _c - _b * _b) / (3.0 * _a * _a);
    _q0 = 2.0 * _b * _b * _b / (27.0 * _a * _a * _a) - _b * _c / (3.0 * _a * _a);
    const double third = _p / 3.0;
    _pThird3 = third * third * third;
}

bool kaSegment::sample(float frame, float& value) const {
    if (_kind == Kind::ZeroLength)
        return _points.y0 != 0.0F;
    if (_kind == Kind::Step) {
        value = _points.y0;
        return true;
    }
    double s = 0.0;
    if (frame == _points.x3)
        s = 1.0;
    else if (frame != _points.x0)
        s = (static_cast<double>(frame) - static_cast<double>(_points.x0)) / _dx;
    double t = 0.0;
    if (!parameter(s, t))
        return false;
    value = valueAt(t);
    return true;
}

bool kaSegment::parameter(double s, double& t) const {
    if (_kind == Kind::Cubic)
        return cubicParameter(s, t);
    if (_kind == Kind::Quadratic)
        return quadraticParameter(s, t);
    t = s / _c;
    return _c != 0.0 && inUnit(t);
}

/// B t^2 + C t - s = 0: the smallest root inside the segment. The root nearer to 0 comes from the quotient
/// form, which does not cancel.
bool kaSegment::quadraticParameter(double s, double& t) const {
    const double discriminant = _c * _c + 4.0 * _b * s;
    if (discriminant < 0.0)
        return false;
    const double root = std::sqrt(discriminant);
    const double half = -0.5 * (_c + (_c < 0.0 ? -root : root));
    const double first = half / _b;
    const double second = half != 0.0 ? -s / half : first;
    const double smaller = first < second ? first : second;
    const double larger = first < second ? second : first;
    t = inUnit(smaller) ? smaller : larger;
    return inUnit(t);
}

/// Cardano's formula for the cubic reduced by t = u - B/(3A).
bool kaSegment::cubicParameter(double s, double& t) const {
    const double q = _q0 - s / _a;
    const double half = q / 2.0;
    const double discriminant = _pThird3 + half * half;
    if (std::fabs(discriminant) < DiscriminantTolerance)
        return nearlyDoubleRoot(q, t);
    if (discriminant <= -DiscriminantTolerance)
        return threeRoots(q, t);
    if (!(discriminant >= DiscriminantTolerance))
        return false; // a handle that is not a number
    const double w = std::sqrt(discriminant);
    t = signedCubeRoot(-half + w) + signedCubeRoot(-half - w) - _shift;
    return true;
}

/// The plain cube roots are NaN for a negative base and then fall out of the range test; the samples near a
/// double root depend on it.
bool kaSegment::nearlyDoubleRoot(double q, double& t) const {
    if (_p == 0.0 && q == 0.0) {
        t = -_shift;
        return true;
    }
    t = -plainCubeRoot(4.0 * q) - _shift;
    if (inUnit(t))
        return true;
    t = plainCubeRoot(q / 2.0) - _shift;
    return inUnit(t);
}

bool kaSegment::threeRoots(double q, double& t) const {
    const double r = -2.0 * std::sqrt(-_pThird3);
    const double third = toDegrees(std::acos(q / r)) / 3.0;
    const double m = 2.0 * std::sqrt(-_p / 3.0);
    for (const double turn : {0.0, 120.0, 240.0}) {
        t = m * std::cos(toRadians(third + turn)) - _shift;
        if (t + RootTolerance >= 0.0 && t <= 1.0)
            return true;
    }
    return false;
}

float kaSegment::valueAt(double t) const {
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double value = static_cast<double>(_points.y0) * (1.0 - 3.0 * t + 3.0 * t2 - t3) +
                         static_cast<double>(_points.y1) * (3.0 * t - 6.0 * t2 + 3.0 * t3) +
                         static_cast<double>(_points.y2) * (3.0 * t2 - 3.0 * t3) +
                         static_cast<double>(_points.y3) * t3;
    return std::fabs(value) < ValueTolerance ? 0.0F : static_cast<float>(value);
}
