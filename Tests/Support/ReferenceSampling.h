#pragma once

#include "Builders.h"

#include <map>
#include <vector>

namespace ka_test {

/// What sampling answers: the returned flag, and the value where one is written.
struct Sample {
    bool returned = false;
    bool written = false;
    float value = 0.0F;
};

/// Samples one segment by the closed cubic formula, step by step in double precision, as plainly as it can be
/// put; where the cubic coefficient is below 1e-5 in magnitude, by bisection in long double instead. `frame`
/// lies within [left, right].
Sample referenceSegment(const Key& left, const Key& right, float frame);

/// Samples a curve given by its registered keys in child order, handles that are missing standing on their
/// keys.
Sample referenceSample(const std::vector<Key>& keys, float frame);

/// The keys that sampling goes by: by frame, of equal frames the first; none whose frame is no number.
std::map<float, Key> referencePoints(const std::vector<Key>& keys);

/// Coefficients of the time polynomial A t^3 + B t^2 + C t - s of a segment, in double precision.
struct TimePolynomial {
    double a;
    double b;
    double c;
};
TimePolynomial timePolynomial(const Key& left, const Key& right);

/// The values of the segment at `frame`, one for each root of the time polynomial in [-1e-6, 1], which is
/// where the formula accepts roots, found by bisection in long double. Where the polynomial only touches the
/// frame the touching place is no sign change and is not found.
std::vector<long double> trueValues(const Key& left, const Key& right, float frame);

/// Distance of `value` from the nearest of `values`; infinite when there are none.
double errorAgainst(const std::vector<long double>& values, float value);

} // namespace ka_test
