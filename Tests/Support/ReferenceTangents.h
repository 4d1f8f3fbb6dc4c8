#pragma once

#include "Builders.h"

#include <optional>

namespace ka_test {

/// Where a key's two handles belong, worked out apart from the module, in double precision.
struct Handles {
    double inX;
    double inY;
    double outX;
    double outY;
};

/// @param type, mode  any numbers; what is no known tangent type or length mode collapses the handles.
/// @param previous, next  the neighbours by frame; at least one must be there.
Handles referenceHandles(unsigned int type, unsigned int mode, const Spot& key,
                         const std::optional<Spot>& previous, const std::optional<Spot>& next);

} // namespace ka_test
