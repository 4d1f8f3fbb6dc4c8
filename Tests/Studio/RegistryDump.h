#pragma once

#include <string>

namespace ka::studio::testing {

/// Everything that is registered, every bit of it but what is selected: a line an object, key and field, in
/// the order of their ids.
std::string registryDump();

} // namespace ka::studio::testing
