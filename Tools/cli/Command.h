#pragma once

#include "cli/Output.h"

#include <cstddef>
#include <functional>
#include <kaMotion/Failure.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace ka::tools {

using namespace motion;

/// What the chosen command does once the whole command line has been read. It throws a Failure, or gives the
/// code to end with.
using Action = std::function<ExitCode(Output&)>;

/// One command of the program, for as long as it is being declared: its options, its examples and what it
/// runs.
///
/// It is a handle to what the program owns, and all that a command needs to see of the option parser, whose
/// headers take longer to compile than any command. The variables that options are bound to must last as long
/// as the program; a line that is read writes those whose options it names.
class Command {
  public:
    class Option;

    /// Adds a command to the program.
    Command(CLI::App& program, const std::string& name, const std::string& description);

    /// Adds an option with a value: "-o,--output", or "FILE" for one that is told by its place. The line may
    /// give it once and is refused when the value is not of the variable's type.
    Option option(const std::string& names, std::string& value, const std::string& description);
    Option option(const std::string& names, double& value, const std::string& description);
    Option option(const std::string& names, std::optional<double>& value, const std::string& description);
    Option option(const std::string& names, int& value, const std::string& description);
    Option option(const std::string& names, std::size_t& value, const std::string& description);

    /// Adds an option whose value is a number above zero, up to `high`, or one of these words, which stand for numbers.
    Option quantity(const std::string& names, double& value,
                    const std::vector<std::pair<std::string, double>>& words, double high,
                    const std::string& description);

    /// Adds an option that may be repeated, with one value each time.
    Option option(const std::string& names, std::vector<std::string>& values, const std::string& description);

    /// Adds what is told by its place and may be any number of words, such as files.
    Option positionals(const std::string& name, std::vector<std::string>& values,
                       const std::string& description);

    /// Adds an option without a value, which sets its variable.
    Option flag(const std::string& names, bool& value, const std::string& description);

    /// Adds an option whose value is one of these words; help and completion list them ("csv|json") and show
    /// the default. The numbers of the enumeration are accepted, too.
    template <class Value>
    Option choice(const std::string& names, Value& value,
                  const std::vector<std::pair<std::string, Value>>& words, const std::string& description);

    /// Sets the examples that stand at the end of the command's help, one command line each, and a remark
    /// before them.
    void examples(const std::vector<std::string>& lines, const std::string& remark = "");

    /// A line that chooses the command puts `what` into `action`, which must last as long as the program.
    void runs(Action& action, const Action& what);

  private:
    struct NumberedWord {
        std::string word;
        int number;
    };

    Option addChoice(const std::string& names, const std::vector<NumberedWord>& words, int chosen,
                     const std::function<void(int)>& choose, const std::string& description);

    CLI::App* _command;
};

/// What is asked of an option beyond its type. A value that breaks a limit refuses the line.
class Command::Option {
  public:
    /// A line without it is refused.
    Option needed() const;

    /// A line that has it and not `other` is refused.
    Option needs(const Option& other) const;

    /// What the value is called: "PATH", which completes to files, "NAME" or "NODE". Without a call: nothing.
    Option takes(const std::string& what) const;

    /// Help shows what the variable holds now.
    Option showsDefault() const;

    /// Accepts the numbers that a float can hold: frames.
    Option finite() const;

    /// Accepts numbers greater than 0, up to `high`.
    Option aboveZero(double high = 1e30) const;

    /// Accepts 0 and the finite numbers above it.
    Option zeroOrMore() const;

    /// Accepts whole numbers from `low` to `high`.
    Option between(int low, int high) const;

  private:
    friend class Command;
    explicit Option(CLI::Option* option) : _option(option) {}

    CLI::Option* _option;
};

/// The words of a line, split as a shell splits it, quotes taken off.
std::vector<std::string> splitWords(const std::string& line);

/// Reads one line, split as a shell splits it, by the commands that `declare` adds to a program of its own.
/// @throws Failure (Usage) when it does not fit them, or is a question for help.
void readLine(const std::string& line, const std::function<void(CLI::App&)>& declare);

template <class Value>
Command::Option Command::choice(const std::string& names, Value& value,
                                const std::vector<std::pair<std::string, Value>>& words,
                                const std::string& description) {
    std::vector<NumberedWord> numbered;
    for (const auto& [word, meaning] : words)
        numbered.push_back({word, static_cast<int>(meaning)});
    const auto choose = [&value](int number) { value = static_cast<Value>(number); };
    return addChoice(names, numbered, static_cast<int>(value), choose, description);
}

} // namespace ka::tools
