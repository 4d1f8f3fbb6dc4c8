#pragma once

#include "commands/Commands.h"

#include <memory>
#include <string>
#include <vector>

namespace ka::tools {

/// What a command line asks for.
struct CommandLine {
    Action action;                  ///< empty when there is nothing to run
    std::string answer;             ///< help or version, to be printed as data
    std::string mistake;            ///< what is wrong with the line, in one line
    ExitCode code = ExitCode::Fine; ///< to end with when there is nothing to run
};

/// The program with its name, commands, options and help. A line that it parses sets `action`, which must
/// last as long as the program does.
std::shared_ptr<CLI::App> describedProgram(Action& action);

/// Reads a command line, without the program's name. Nothing is run and no file is touched.
CommandLine readCommandLine(std::vector<std::string> arguments);

/// Runs the program: standard output gets data, standard error messages.
/// @return the exit code.
int runProgram(std::vector<std::string> arguments);

} // namespace ka::tools
