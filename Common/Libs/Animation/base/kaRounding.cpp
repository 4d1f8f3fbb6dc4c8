#include "kaRounding.h"

#include <cmath>
#include <limits>

bool kaRounding::toBool(float value) {
    return value >= 0.5F;
}

/// In double precision, where adding a half is exact for every float.
int kaRounding::toInt(float value) {
    const double rounded = std::round(static_cast<double>(value));
    constexpr double LOWEST = std::numeric_limits<int>::min();
    constexpr double HIGHEST = std::numeric_limits<int>::max();
    return rounded >= LOWEST && rounded <= HIGHEST ? static_cast<int>(rounded)
                                                   : std::numeric_limits<int>::min();
}

/// Adding 0 turns -0 into 0: rounding to a whole number and back knows no sign of zero.
float kaRounding::snap(float value) {
    return std::round(value) + 0.0F;
}

osg::Pnt2f kaRounding::snap(osg::Pnt2f point, bool snapX, bool snapY) {
    if (snapX)
        point[0] = snap(point[0]);
    if (snapY)
        point[1] = snap(point[1]);
    return point;
}
