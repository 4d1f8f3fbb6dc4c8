#pragma once

#include <vector>

namespace ka::studio {

/// Places for lines and labels between two values: multiples of 1, 2 or 5 times a power of ten, `distance` or
/// more apart. At most some hundreds of them.
std::vector<double> niceTicks(double low, double high, double distance);

} // namespace ka::studio
