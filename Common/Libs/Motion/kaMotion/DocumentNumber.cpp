#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>
#include <limits>

namespace ka::motion {

namespace {

/// From here on floats lie further apart than two steps, and six digits tell them all.
constexpr float coarse = 16.0F;

constexpr double stepsToOne = 1e6;

} // namespace

float documentFloat(double value) {
    constexpr double largest = std::numeric_limits<float>::max();
    // By way of six digits a number beside the middle between two coarse floats could come to the farther
    // one.
    const double clamped = std::clamp(value, -largest, largest);
    if (std::abs(clamped) >= coarse)
        return static_cast<float>(clamped);
    // Twenty-four bits times the fourteen of 15625 are a double without rounding, so that a float's digits
    // come out as the writer prints them; and no quotient is so close to the middle between two floats that
    // rounding it twice would matter.
    return static_cast<float>(std::nearbyint(clamped * stepsToOne) / stepsToOne);
}

float documentNeighbour(float value, int steps) {
    if (std::abs(value) < coarse)
        return documentFloat(static_cast<double>(value) + steps * documentStep);
    const float towards =
        steps < 0 ? std::numeric_limits<float>::lowest() : std::numeric_limits<float>::max();
    for (int i = 0; i < std::abs(steps); ++i)
        value = std::nextafter(value, towards);
    return value;
}

} // namespace ka::motion
