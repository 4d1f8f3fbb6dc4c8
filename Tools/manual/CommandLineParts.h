#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace ka::tools {

/// The commands in the order of the help.
std::vector<const CLI::App*> commandsOf(const CLI::App& program);

/// The options (positionals) of a command in the order of the help.
std::vector<const CLI::Option*> optionsOf(const CLI::App& command);
std::vector<const CLI::Option*> positionalsOf(const CLI::App& command);

/// Every spelling of an option: "-o", "--output".
std::vector<std::string> spellingsOf(const CLI::Option& option);

bool takesValue(const CLI::Option& option);

} // namespace ka::tools
