#include "manual/Completion.h"

#include <algorithm>

namespace ka::tools {

namespace {

/// What can follow an option.
struct Values {
    std::vector<std::string> after; ///< command and option, as bash patterns
    std::string reply;              ///< a bash command that fills in the reply
};

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::string replyFor(const OptionParts& option) {
    std::string type = option.typeName;
    if (type == "PATH")
        return "_ka_anim_files";
    if (type.find('|') == type.npos)
        return "COMPREPLY=()";
    std::replace(type.begin(), type.end(), '|', ' ');
    return "_ka_anim_words '" + type + "'";
}

void addValues(const CommandParts& command, std::vector<Values>& all) {
    for (const OptionParts& option : command.options) {
        if (!option.takesValue)
            continue;
        const std::string reply = replyFor(option);
        auto same = std::find_if(all.begin(), all.end(), [&](const Values& v) { return v.reply == reply; });
        if (same == all.end())
            same = all.insert(all.end(), {{}, reply});
        for (const std::string& spelling : option.spellings)
            same->after.push_back("'" + command.name + " " + spelling + "'");
    }
}

std::string optionWords(const CommandParts& command) {
    std::vector<std::string> words;
    for (const OptionParts& option : command.options)
        for (const std::string& spelling : option.spellings)
            words.push_back(spelling);
    return joined(words, " ");
}

constexpr const char* helpers = R"(_ka_anim_words()
{
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_ka_anim_files()
{
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

)";

// An option and its value may be written with "=" between them, which is a word of its own then.
constexpr const char* wordsSoFar = R"(_ka_anim()
{
    local current="${COMP_WORDS[COMP_CWORD]}" at=$((COMP_CWORD - 1)) previous command="" options i
    COMPREPLY=()
    if [[ $current == = ]]; then
        current=""
    elif [[ ${COMP_WORDS[at]} == = ]]; then
        at=$((at - 1))
    fi
    previous="${COMP_WORDS[at]}"
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} != -* ]]; then
            command="${COMP_WORDS[i]}"
            break
        fi
    done
)";

} // namespace

std::string bashCompletion(const CommandParts& program) {
    std::vector<std::string> names;
    std::vector<Values> values;
    std::string cases;
    for (const CommandParts& command : program.commands) {
        names.push_back(command.name);
        addValues(command, values);
        cases += "        " + command.name + ") options='" + optionWords(command) + "' ;;\n";
    }
    std::string script = "# What bash completes on a command line of " + program.name + ".\n\n";
    script += std::string(helpers) + wordsSoFar;
    script += "    case \"$command $previous\" in\n";
    for (const Values& value : values)
        script += "        " + joined(value.after, " | ") + ")\n            " + value.reply +
                  "\n            return ;;\n";
    script += "    esac\n    case \"$command\" in\n" + cases + "        *) options='" + optionWords(program) +
              "' ;;\n    esac\n";
    script += "    if [[ $current == -* ]]; then\n        _ka_anim_words \"$options\"\n"
              "    elif [[ -z $command ]]; then\n        _ka_anim_words '" +
              joined(names, " ") + "'\n    else\n        _ka_anim_files\n    fi\n}\n\n";
    return script + "complete -F _ka_anim " + program.name + "\n";
}

} // namespace ka::tools
