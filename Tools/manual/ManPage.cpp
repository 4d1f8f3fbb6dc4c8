#include "manual/ManPage.h"

#include "base/Text.h"
#include "manual/CommandLineParts.h"

#include <sstream>

namespace ka::tools {

namespace {

/// Text as roff shows it letter by letter, whatever stands at the beginning of its lines.
std::string plain(const std::string& text) {
    std::string escaped;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && (c == '.' || c == '\''))
            escaped += "\\&";
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
        isLineStart = c == '\n';
    }
    return escaped;
}

std::string bold(const std::string& text) {
    return "\\fB" + plain(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + plain(text) + "\\fR";
}

std::string valueName(const CLI::Option& option) {
    return option.get_type_name().empty() ? "VALUE" : option.get_type_name();
}

/// "ka-anim plot [OPTIONS] FILE", with the options that are needed spelled out.
std::string synopsis(const std::string& program, const CLI::App& command) {
    std::string line = bold(program + " " + command.get_name()) + " [" + italic("OPTIONS") + "]";
    for (const CLI::Option* option : optionsOf(command))
        if (option->get_required())
            line += " " + bold(spellingsOf(*option).back()) + " " + italic(valueName(*option));
    for (const CLI::Option* positional : positionalsOf(command)) {
        const std::string name = italic(positional->get_single_name());
        line += positional->get_required() ? " " + name : " [" + name + "]";
    }
    return line;
}

std::string entry(const std::string& title, const CLI::Option& option) {
    std::string text = ".TP\n" + title + "\n" + plain(option.get_description());
    if (!option.get_default_str().empty())
        text += " (default: " + plain(option.get_default_str()) + ")";
    return text + "\n";
}

std::string optionTitle(const CLI::Option& option) {
    std::string title;
    for (const std::string& spelling : spellingsOf(option))
        title += (title.empty() ? "" : ", ") + bold(spelling);
    return takesValue(option) ? title + " " + italic(valueName(option)) : title;
}

/// The end of a help text: lines of prose, and examples, which are indented.
std::string ending(const std::string& footer) {
    std::istringstream lines(footer);
    std::string text;
    bool isExample = false;
    for (std::string line; std::getline(lines, line);) {
        const bool wasExample = isExample;
        isExample = line.rfind("  ", 0) == 0;
        if (isExample)
            text += (wasExample ? "" : ".PP\n.RS 4\n.nf\n") + plain(line.substr(2)) + "\n";
        else if (!line.empty())
            text += (wasExample ? ".fi\n.RE\n.PP\n" : ".PP\n") + plain(line) + "\n";
    }
    return isExample ? text + ".fi\n.RE\n" : text;
}

std::string section(const std::string& program, const CLI::App& command) {
    std::string text = ".SS " + plain(program + " " + command.get_name()) + "\n";
    text += synopsis(program, command) + "\n.PP\n" + plain(command.get_description()) + "\n";
    for (const CLI::Option* positional : positionalsOf(command))
        text += entry(italic(positional->get_single_name()), *positional);
    for (const CLI::Option* option : optionsOf(command))
        text += entry(optionTitle(*option), *option);
    return text + ending(command.get_footer());
}

} // namespace

std::string manPage(const CLI::App& program, const std::string& version) {
    const std::string name = program.get_name();
    std::string title = name;
    for (char& c : title)
        c = upperCase(c);
    std::string text = ".TH " + title + " 1 \"\" \"kaAnimation " + version + "\" \"User Commands\"\n";
    text += ".SH NAME\n" + name + " \\- " + plain(program.get_description()) + "\n";
    text += ".SH SYNOPSIS\n" + bold(name) + " " + italic("COMMAND") + " [" + italic("OPTIONS") + "] [" +
            italic("FILE") + "]\n";
    text += ".SH DESCRIPTION\n" + plain(program.get_footer()) + "\n.SH OPTIONS\n";
    for (const CLI::Option* option : optionsOf(program))
        text += entry(optionTitle(*option), *option);
    text += ".SH COMMANDS\n";
    for (const CLI::App* command : commandsOf(program))
        text += section(name, *command);
    return text;
}

} // namespace ka::tools
