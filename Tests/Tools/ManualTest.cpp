#include "MotionTesting.h"
#include "ProgramRun.h"
#include "commands/Program.h"
#include "manual/CommandLineParts.h"
#include "manual/Completion.h"
#include "manual/ManPage.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <sstream>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::UnorderedElementsAre;

class ManualTest : public ::testing::Test {
  protected:
    ManualTest() {
        _folder.put("ka-anim.1", manPage(_program, "1.0.0"));
        _folder.put("ka-anim.bash", bashCompletion(_program));
    }

    /// What bash offers at the end of a line of these words.
    std::vector<std::string> completed(const std::vector<std::string>& words) const {
        std::string list;
        for (const std::string& word : words)
            list += " '" + word + "'";
        const ProgramRun run = runShell("source ./ka-anim.bash; COMP_WORDS=(ka-anim" + list +
                                            "); COMP_CWORD=" + std::to_string(words.size()) +
                                            "; _ka_anim; printf '%s\\n' \"${COMPREPLY[@]}\"",
                                        _folder.at(""));
        EXPECT_EQ(run.messages, "");
        std::istringstream lines(run.output);
        std::vector<std::string> offers;
        for (std::string line; std::getline(lines, line);)
            if (!line.empty())
                offers.push_back(line);
        return offers;
    }

    std::vector<std::string> commandNames() const {
        std::vector<std::string> names;
        for (const CommandParts& command : _program.commands)
            names.push_back(command.name);
        return names;
    }

    Action _none;
    const CommandParts _program = partsOf(*describedProgram(_none));
    TemporaryFolder _folder;
};

/// As a terminal would show it, without its layout.
std::string withoutSpace(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c) != 0; }),
               text.end());
    return text;
}

TEST_F(ManualTest, ThePageIsCleanRoff) {
    const std::string page = contentOf(_folder.at("ka-anim.1"));
    EXPECT_EQ(page.rfind(".TH KA-ANIM 1 ", 0), 0U);
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && (line.front() == '.' || line.front() == '\'')) {
            EXPECT_THAT(line.substr(0, 3),
                        ::testing::AnyOf(".TH", ".SH", ".SS", ".TP", ".PP", ".RS", ".RE", ".nf", ".fi"))
                << line;
        }
    if (runShell("command -v groff", "/").code != 0)
        GTEST_SKIP() << "no groff here";
    const ProgramRun shown = runShell("groff -man -Tutf8 -ww -rLL=500n ka-anim.1", _folder.at(""));
    EXPECT_EQ(shown.code, 0);
    EXPECT_EQ(shown.messages, "");
}

TEST_F(ManualTest, ThePageShowsEveryCommandOptionAndExample) {
    if (runShell("command -v groff", "/").code != 0)
        GTEST_SKIP() << "no groff here";
    const ProgramRun shown =
        runShell("groff -man -Tascii -P-c -P-b -P-u -rLL=500n ka-anim.1", _folder.at(""));
    const std::string page = withoutSpace(shown.output);
    for (const CommandParts& command : _program.commands) {
        EXPECT_THAT(page, HasSubstr("ka-anim" + command.name));
        EXPECT_THAT(page, HasSubstr(withoutSpace(command.description)));
        for (const OptionParts& option : command.options) {
            std::string title;
            for (const std::string& spelling : option.spellings)
                title += (title.empty() ? "" : ",") + spelling;
            EXPECT_THAT(page, HasSubstr(title)) << command.name;
            EXPECT_THAT(page, HasSubstr(withoutSpace(option.description)));
        }
        std::istringstream footer(command.ending);
        for (std::string line; std::getline(footer, line);)
            if (line.rfind("  ", 0) == 0) {
                EXPECT_THAT(page, HasSubstr(withoutSpace(line)));
            }
    }
}

TEST_F(ManualTest, BashCompletesCommands) {
    EXPECT_THAT(completed({""}), ElementsAreArray(commandNames()));
    EXPECT_THAT(completed({"upg"}), ElementsAre("upgrade"));
    EXPECT_THAT(completed({"dance"}), ElementsAre());
    EXPECT_THAT(completed({"--"}), UnorderedElementsAre("--help", "--version"));
}

TEST_F(ManualTest, BashCompletesEveryOptionOfEveryCommand) {
    for (const CommandParts& command : _program.commands) {
        std::vector<std::string> options;
        for (const OptionParts& option : command.options)
            for (const std::string& spelling : option.spellings)
                options.push_back(spelling);
        EXPECT_THAT(completed({command.name, "-"}), ElementsAreArray(options)) << command.name;
    }
    EXPECT_THAT(completed({"sample", "walk.bvh", "--fro"}), ElementsAre("--from"));
    EXPECT_THAT(completed({"sample", "walk.bvh", "--for"}), ElementsAre("--format"));
}

TEST_F(ManualTest, BashCompletesWhatFollowsAnOption) {
    EXPECT_THAT(completed({"sample", "--format", ""}), ElementsAre("csv", "json", "npz"));
    EXPECT_THAT(completed({"sample", "--format", "=", "j"}), ElementsAre("json"));
    EXPECT_THAT(completed({"sample", "--format", "="}), ElementsAre("csv", "json", "npz"));
    EXPECT_THAT(completed({"upgrade", "old.osg", "--format", "t"}), ElementsAre("text"));
    EXPECT_THAT(completed({"sample", "--step", ""}), ElementsAre());
    EXPECT_THAT(completed({"plot", "-o", "ka-anim."}), UnorderedElementsAre("ka-anim.1", "ka-anim.bash"));
}

TEST_F(ManualTest, BashCompletesFilesWhateverTheirNames) {
    _folder.put("a walk.bvh", "");
    EXPECT_THAT(completed({"sample", "a w"}), ElementsAre("a walk.bvh"));
    EXPECT_THAT(completed({"sample", ""}), IsSupersetOf({"a walk.bvh", "ka-anim.1"}));
}

TEST_F(ManualTest, TheScriptTakesOverInBash) {
    EXPECT_THAT(runShell("source ./ka-anim.bash; complete -p ka-anim", _folder.at("")).output,
                HasSubstr("complete -F _ka_anim ka-anim"));
    EXPECT_EQ(runShell("bash -n ka-anim.bash", _folder.at("")).messages, "");
}

} // namespace
} // namespace ka::tools::testing
