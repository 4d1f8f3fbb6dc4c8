#pragma once

#include "manual/CommandLineParts.h"

#include <string>

namespace ka::tools {

/// A bash script that completes the program's commands, their options and what can follow an option: one of
/// its choices (type names such as "csv|json"), a file for type names "PATH", nothing for other values.
/// Everything else on a line completes to files.
std::string bashCompletion(const CommandParts& program);

} // namespace ka::tools
