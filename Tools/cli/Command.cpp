#include "cli/Command.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <kaMotion/Text.h>
#include <limits>
#include <map>

namespace ka::tools {

using namespace motion;

namespace {

/// What is wrong with a text that is to be a number above zero; empty for one that is.
std::string faultOfPositive(const std::string& text, double high) {
    const std::optional<double> value = parseNumber(text);
    if (!value || !(*value > 0.0))
        return "'" + oneLine(text) + "' is not a number above zero";
    return *value <= high ? std::string() : "'" + oneLine(text) + "' is above " + formatNumber(high);
}

/// Without the parser's own name for the type, which would stand in the help.
template <class Value>
CLI::Option* addOption(CLI::App& command, const std::string& names, Value& value,
                       const std::string& description) {
    return command.add_option(names, value, description)->type_name("");
}

/// A number with a fraction has a point in every locale; how the parser itself reads one depends on that.
template <class Number>
CLI::Option* addNumber(CLI::App& command, const std::string& names, Number& number,
                       const std::string& description) {
    const auto read = [&number](const std::vector<std::string>& words) {
        const std::optional<double> value = parseNumber(words.front());
        if (value)
            number = *value;
        return value.has_value();
    };
    const auto shown = [&number] {
        const std::optional<double> value = number;
        return value ? formatNumber(*value) : std::string();
    };
    return command.add_option(names, read, description, false, shown);
}

} // namespace

Command::Command(CLI::App& program, const std::string& name, const std::string& description)
    : _command(program.add_subcommand(name, description)) {}

Command::Option Command::option(const std::string& names, std::string& value,
                                const std::string& description) {
    return Option(addOption(*_command, names, value, description));
}

Command::Option Command::option(const std::string& names, double& value, const std::string& description) {
    return Option(addNumber(*_command, names, value, description));
}

Command::Option Command::option(const std::string& names, std::optional<double>& value,
                                const std::string& description) {
    return Option(addNumber(*_command, names, value, description));
}

Command::Option Command::option(const std::string& names, int& value, const std::string& description) {
    return Option(addOption(*_command, names, value, description));
}

Command::Option Command::option(const std::string& names, std::size_t& value,
                                const std::string& description) {
    return Option(addOption(*_command, names, value, description));
}

Command::Option Command::quantity(const std::string& names, double& value,
                                  const std::vector<std::pair<std::string, double>>& words, double high,
                                  const std::string& description) {
    const std::map<std::string, double> meanings(words.begin(), words.end());
    const auto read = [&value, meanings, high, names](const std::vector<std::string>& given) {
        const auto word = meanings.find(given.front());
        const std::string fault =
            word == meanings.end() ? faultOfPositive(given.front(), high) : std::string();
        if (!fault.empty())
            throw CLI::ValidationError(names, fault);
        value = word == meanings.end() ? *parseNumber(given.front()) : word->second;
        return true;
    };
    std::string list = "NUMBER";
    for (const auto& [word, meaning] : words)
        list += "|" + word;
    return Option(
        _command->add_option(names, read, description, false, [&value] { return formatNumber(value); })
            ->type_name(list));
}

Command::Option Command::option(const std::string& names, std::vector<std::string>& values,
                                const std::string& description) {
    return Option(addOption(*_command, names, values, description)->take_all()->allow_extra_args(false));
}

Command::Option Command::positionals(const std::string& name, std::vector<std::string>& values,
                                     const std::string& description) {
    return Option(addOption(*_command, name, values, description));
}

Command::Option Command::flag(const std::string& names, bool& value, const std::string& description) {
    return Option(_command->add_flag(names, value, description));
}

Command::Option Command::addChoice(const std::string& names, const std::vector<NumberedWord>& words,
                                   int chosen, const std::function<void(int)>& choose,
                                   const std::string& description) {
    std::map<std::string, int> numbers;
    std::string list, byDefault;
    for (const NumberedWord& entry : words) {
        numbers[entry.word] = entry.number;
        list += (list.empty() ? "" : "|") + entry.word;
        if (entry.number == chosen)
            byDefault = entry.word;
    }
    return Option(_command->add_option_function<int>(names, choose, description)
                      ->type_name(list)
                      ->transform(CLI::CheckedTransformer(numbers).description(""))
                      ->default_str(byDefault));
}

void Command::examples(const std::vector<std::string>& lines, const std::string& remark) {
    std::string text = remark + (remark.empty() ? "" : "\n\n") + "Examples:";
    for (const std::string& line : lines)
        text += "\n  " + line;
    _command->footer(text);
}

void Command::runs(Action& action, const Action& what) {
    _command->callback([&action, what] { action = what; });
}

Command::Option Command::Option::needed() const {
    _option->required();
    return *this;
}

Command::Option Command::Option::needs(const Option& other) const {
    _option->needs(other._option);
    return *this;
}

Command::Option Command::Option::takes(const std::string& what) const {
    _option->type_name(what);
    return *this;
}

Command::Option Command::Option::showsDefault() const {
    _option->capture_default_str();
    return *this;
}

Command::Option Command::Option::finite() const {
    _option->check([](const std::string& text) {
        const std::optional<double> value = parseNumber(text);
        if (!value || !std::isfinite(*value))
            return "'" + oneLine(text) + "' is not a finite number";
        const bool fits = std::abs(*value) <= static_cast<double>(std::numeric_limits<float>::max());
        return fits ? std::string() : "'" + oneLine(text) + "' is beyond the range of a float";
    });
    return *this;
}

Command::Option Command::Option::aboveZero(double high) const {
    _option->check([high](const std::string& text) { return faultOfPositive(text, high); });
    return *this;
}

Command::Option Command::Option::zeroOrMore() const {
    _option->check([](const std::string& text) {
        const std::optional<double> value = parseNumber(text);
        const bool fits = value && *value >= 0.0 && std::isfinite(*value);
        return fits ? std::string() : "'" + oneLine(text) + "' is not a finite number of at least 0";
    });
    return *this;
}

Command::Option Command::Option::between(int low, int high) const {
    _option->check(CLI::Range(low, high).description(""));
    return *this;
}

std::vector<std::string> splitWords(const std::string& line) {
    return CLI::detail::split_up(line);
}

void readLine(const std::string& line, const std::function<void(CLI::App&)>& declare) {
    CLI::App program;
    program.require_subcommand(1);
    declare(program);
    try {
        program.parse(line);
    } catch (const CLI::ParseError& outcome) {
        throw Failure(ExitCode::Usage, "'" + oneLine(line) + "': " + oneLine(outcome.what()));
    }
}

} // namespace ka::tools
