#include "commands/Program.h"

#include "cli/Progress.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <kaMotion/Text.h>
#include <sstream>

namespace ka::tools {

namespace {

void addCommands(CLI::App& program, Action& action) {
    addImportCommand(program, action);
    addConvertCommand(program, action);
    addExportCommand(program, action);
    addDiffCommand(program, action);
    addInfoCommand(program, action);
    addValidateCommand(program, action);
    addSampleCommand(program, action);
    addPoseCommand(program, action);
    addPlotCommand(program, action);
    addRenderCommand(program, action);
    addPlayCommand(program, action);
    addCopyCommand(program, action);
    addPasteCommand(program, action);
    addOperationCommands(program, action);
    addUpgradeCommand(program, action);
    addBatchCommand(program, action);
    addDemoCommand(program, action);
}

/// The command that the user got as far as naming.
std::string commandName(const CLI::App& program) {
    const auto chosen = program.get_subcommands();
    return chosen.empty() ? "ka-anim" : "ka-anim " + chosen.front()->get_name();
}

/// @param first  the first word of the line; empty when there is none.
std::string mistakeOf(const CLI::App& program, const CLI::ParseError& outcome, const std::string& first) {
    const bool isUnknownCommand =
        program.get_subcommands().empty() && !first.empty() && first.rfind('-', 0) != 0;
    return isUnknownCommand ? "no command is called '" + oneLine(first, 40) + "'" : oneLine(outcome.what());
}

int run(std::vector<std::string> arguments) {
    Output output;
    const CommandLine line = readCommandLine(std::move(arguments));
    if (!line.mistake.empty())
        say(line.mistake);
    output.write(line.answer);
    const ExitCode code = line.action ? line.action(output) : line.code;
    output.finish();
    return static_cast<int>(code);
}

} // namespace

std::shared_ptr<CLI::App> describedProgram(Action& action) {
    auto program = std::make_shared<CLI::App>();
    program->name("ka-anim");
    program->description("Imports, samples, plays and draws keyframe animations of 3D scenes.");
    program->footer(
        "Data goes to standard output, messages to standard error. Exit codes: 0 fine, 1 findings, "
        "2 a mistake in the command line, 3 an input that cannot be read, 4 an output that cannot "
        "be written.");
    program->set_version_flag("--version", "ka-anim " KA_VERSION, "Print the version and exit");
    program->require_subcommand(1);
    program->get_formatter()->column_width(32);
    addCommands(*program, action);
    return program;
}

CommandLine readCommandLine(std::vector<std::string> arguments) {
    CommandLine line;
    const std::shared_ptr<CLI::App> program = describedProgram(line.action);
    const std::string first = arguments.empty() ? std::string() : arguments.front();
    try {
        std::reverse(arguments.begin(), arguments.end());
        program->parse(arguments);
    } catch (const CLI::ParseError& outcome) {
        line.action = nullptr;
        if (outcome.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            std::ostringstream answer, none;
            program->exit(outcome, answer, none);
            line.answer = answer.str();
        } else {
            line.mistake =
                mistakeOf(*program, outcome, first) + " (see " + commandName(*program) + " --help)";
            line.code = ExitCode::Usage;
        }
    }
    return line;
}

int runProgram(std::vector<std::string> arguments) {
    try {
        return run(std::move(arguments));
    } catch (const Failure& failure) {
        say(failure.what());
        return static_cast<int>(failure.code());
    } catch (const std::bad_alloc&) {
        say("out of memory");
    } catch (const std::exception& failure) {
        say(oneLine(failure.what()));
    }
    return static_cast<int>(ExitCode::Unreadable);
}

} // namespace ka::tools
