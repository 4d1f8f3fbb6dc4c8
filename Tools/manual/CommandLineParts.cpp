#include "manual/CommandLineParts.h"

#include <CLI/CLI.hpp>

namespace ka::tools {

namespace {

std::vector<std::string> spellingsOf(const CLI::Option& option) {
    if (option.get_positional())
        return {option.get_single_name()};
    std::vector<std::string> spellings;
    for (const std::string& name : option.get_snames())
        spellings.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        spellings.push_back("--" + name);
    return spellings;
}

OptionParts optionParts(const CLI::Option& option) {
    OptionParts parts;
    parts.spellings = spellingsOf(option);
    parts.description = option.get_description();
    parts.typeName = option.get_type_name();
    parts.defaultText = option.get_default_str();
    parts.isNeeded = option.get_required();
    parts.takesValue = option.get_items_expected_max() > 0;
    return parts;
}

} // namespace

CommandParts partsOf(const CLI::App& program) {
    CommandParts parts;
    parts.name = program.get_name();
    parts.description = program.get_description();
    parts.ending = program.get_footer();
    for (const CLI::Option* option : program.get_options())
        (option->get_positional() ? parts.positionals : parts.options).push_back(optionParts(*option));
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; }))
        parts.commands.push_back(partsOf(*command));
    return parts;
}

} // namespace ka::tools
