#include "manual/CommandLineParts.h"

namespace ka::tools {

std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}

std::vector<const CLI::Option*> positionalsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> spellingsOf(const CLI::Option& option) {
    std::vector<std::string> spellings;
    for (const std::string& name : option.get_snames())
        spellings.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        spellings.push_back("--" + name);
    return spellings;
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

} // namespace ka::tools
