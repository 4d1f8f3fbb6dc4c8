#pragma once

#include "manual/CommandLineParts.h"

#include <string>

namespace ka::tools {

/// The manual page (section 1) of a program that is described as a command line: its commands, their options
/// and examples, as the help has them.
std::string manPage(const CommandParts& program, const std::string& version);

} // namespace ka::tools
