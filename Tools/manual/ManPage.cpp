#include "manual/ManPage.h"

#include <kaMotion/Text.h>
#include <sstream>

namespace ka::tools {

using namespace motion;

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

std::string valueName(const OptionParts& option) {
    return option.typeName.empty() ? "VALUE" : option.typeName;
}

/// "ka-anim plot [OPTIONS] FILE", with the options that are needed spelled out.
std::string synopsis(const std::string& program, const CommandParts& command) {
    std::string line = bold(program + " " + command.name) + " [" + italic("OPTIONS") + "]";
    for (const OptionParts& option : command.options)
        if (option.isNeeded)
            line += " " + bold(option.spellings.back()) + " " + italic(valueName(option));
    for (const OptionParts& positional : command.positionals) {
        const std::string name = italic(positional.spellings.front());
        line += positional.isNeeded ? " " + name : " [" + name + "]";
    }
    return line;
}

std::string entry(const std::string& title, const OptionParts& option) {
    std::string text = ".TP\n" + title + "\n" + plain(option.description);
    if (!option.defaultText.empty())
        text += " (default: " + plain(option.defaultText) + ")";
    return text + "\n";
}

std::string optionTitle(const OptionParts& option) {
    std::string title;
    for (const std::string& spelling : option.spellings)
        title += (title.empty() ? "" : ", ") + bold(spelling);
    return option.takesValue ? title + " " + italic(valueName(option)) : title;
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

std::string section(const std::string& program, const CommandParts& command) {
    std::string text = ".SS " + plain(program + " " + command.name) + "\n";
    text += synopsis(program, command) + "\n.PP\n" + plain(command.description) + "\n";
    for (const OptionParts& positional : command.positionals)
        text += entry(italic(positional.spellings.front()), positional);
    for (const OptionParts& option : command.options)
        text += entry(optionTitle(option), option);
    return text + ending(command.ending);
}

} // namespace

std::string manPage(const CommandParts& program, const std::string& version) {
    const std::string name = program.name;
    std::string title = name;
    for (char& c : title)
        c = upperCase(c);
    std::string text = ".TH " + title + " 1 \"\" \"kaAnimation " + version + "\" \"User Commands\"\n";
    text += ".SH NAME\n" + name + " \\- " + plain(program.description) + "\n";
    text += ".SH SYNOPSIS\n" + bold(name) + " " + italic("COMMAND") + " [" + italic("OPTIONS") + "] [" +
            italic("FILE") + "]\n";
    text += ".SH DESCRIPTION\n" + plain(program.ending) + "\n.SH OPTIONS\n";
    for (const OptionParts& option : program.options)
        text += entry(optionTitle(option), option);
    text += ".SH COMMANDS\n";
    for (const CommandParts& command : program.commands)
        text += section(name, command);
    return text;
}

} // namespace ka::tools
