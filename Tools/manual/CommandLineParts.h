#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ka::tools {

/// An option of a command, or a value that is told by its place.
struct OptionParts {
    std::vector<std::string> spellings; ///< "-o", "--output"; of a value told by its place, its name alone
    std::string description;
    std::string typeName;    ///< what its value is called: "PATH", "csv|json"; may be empty
    std::string defaultText; ///< its default, where the help shows one
    bool isNeeded = false;
    bool takesValue = false;
};

/// A program, or one of its commands, as its help describes it and in the order of the help.
struct CommandParts {
    std::string name;
    std::string description;
    std::string ending; ///< what stands at the end of the help
    std::vector<OptionParts> positionals;
    std::vector<OptionParts> options;
    std::vector<CommandParts> commands;
};

/// What the program is made of, so that nobody else has to walk over the parser's objects.
CommandParts partsOf(const CLI::App& program);

} // namespace ka::tools
