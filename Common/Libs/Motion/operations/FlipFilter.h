#pragma once

#include "operations/KeyEdits.h"

#include <array>
#include <cstddef>

namespace ka::motion {

/// The three rotation curves of one node without flips.
struct Unflipped {
    std::array<Keys, 3> curves;
    std::size_t flips = 0;                          ///< keys that stand for their rotation in another way now
    double largestBefore = 0.0, largestAfter = 0.0; ///< step of an angle from key to key, degrees
    double where = 0.0;                             ///< frame of the first of these
};

/// @param curves  about X, Y and Z, each of at least two keys.
Unflipped unflipped(const std::array<Keys, 3>& curves);

} // namespace ka::motion
