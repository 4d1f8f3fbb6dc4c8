#pragma once

#include <kaMotion/Failure.h>
#include <string>
#include <vector>

namespace ka::tools {

using namespace motion;

/// The faults of an import and those found once it had been saved, each line once.
std::vector<std::string> allFaults(std::vector<std::string> imported, const std::vector<std::string>& saved);

/// Says what is wrong with the curves of a result, the first of them by name.
/// @return the exit code that goes with it.
ExitCode sayFaults(const std::vector<std::string>& faults);

} // namespace ka::tools
