#pragma once

#include <string>

namespace ka::studio {

/// A figure that walks on the spot for two seconds, as a BVH file: something to try things with.
std::string sampleMotion();

} // namespace ka::studio
