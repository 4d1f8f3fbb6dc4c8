#include "ProgramRun.h"
#include "ToolsTesting.h"
#include "commands/Program.h"
#include "manual/CommandLineParts.h"

#include <gmock/gmock.h>
#include <map>

namespace ka::tools::testing {
namespace {

using ::testing::HasSubstr;

/// Two joints, the first of which moves along x.
const char* const model = "HIERARCHY ROOT mover\n{ OFFSET 0 0 0 CHANNELS 1 Xposition\n"
                          "JOINT tail { OFFSET 0 1 0 CHANNELS 0 } }\n"
                          "MOTION\nFrames: 3\nFrame Time: 0.04\n0\n1\n2\n";

/// Values for options that a command cannot do without. An option that is not listed gets a file name.
const std::map<std::string, std::string> values{
    {"--frame", "1"}, {"--from", "mover"}, {"--to", "tail"}, {"--source", "move.bvh"}};

/// What holds for every command, those to come included: the lines are put together from the program's own
/// description of itself.
class CommandLineTest : public ::testing::Test {
  protected:
    CommandLineTest() {
        describeProgram(_program, _none);
        _folder.put("move.bvh", model);
        std::filesystem::create_directory(_folder.at("folder.osg"));
        std::filesystem::create_directory(_folder.at("folder.bvh"));
        for (const char* name : {"empty.bvh", "empty.osg", "empty.xml", "empty.glb"})
            _folder.put(name, "");
        _folder.put("broken.bvh", "HIERARCHY\nROOT\n");
        _folder.put("broken.glb", "glTF");
        _folder.put("broken.osg", "#OSG V1.0\nNode { core");
        _folder.put("broken.xml", "<objects");
        _folder.put("notes.txt", "text");
    }

    /// The command with `input` for what it reads and with everything else that it needs.
    std::vector<std::string> line(const CLI::App& command, const std::string& input) const {
        std::vector<std::string> words{command.get_name()};
        for (const CLI::Option* positional : positionalsOf(command))
            if (positional->get_required() || positional == positionalsOf(command).front())
                words.push_back(input);
        for (const CLI::Option* option : optionsOf(command)) {
            const std::string name = spellingsOf(*option).back();
            // A conversion needs one of its outputs, whichever.
            const bool isNeeded = command.get_name() == "convert" && name == "--output";
            if (!option->get_required() && !isNeeded)
                continue;
            words.push_back(name);
            const auto known = values.find(name);
            words.push_back(known != values.end() ? known->second : outputFor(*option));
        }
        return words;
    }

    static std::string outputFor(const CLI::Option& option) {
        for (const char* extension : {".osg", ".xml", ".png"})
            if (option.get_description().find(extension) != std::string::npos)
                return std::string("result") + extension;
        return "result.png";
    }

    void expectOneLine(const std::vector<std::string>& words, int code, const std::string& part = "") const {
        const ProgramRun run = runKaAnim(words, _folder.at(""));
        const std::string shown = ::testing::PrintToString(words);
        EXPECT_EQ(run.code, code) << shown << run.messages;
        EXPECT_TRUE(run.isOneLine()) << shown << run.messages;
        EXPECT_THAT(run.messages, HasSubstr(part)) << shown;
        EXPECT_EQ(run.output, "") << shown;
    }

    CLI::App _program;
    Action _none;
    TemporaryFolder _folder;
};

TEST_F(CommandLineTest, UnknownOptionsEndWithCodeTwo) {
    for (const CLI::App* command : commandsOf(_program)) {
        std::vector<std::string> words = line(*command, "move.bvh");
        words.emplace_back("--no-such-option");
        expectOneLine(words, 2, "--no-such-option");
    }
    expectOneLine({"--no-such-option"}, 2);
    expectOneLine({"no-such-command"}, 2, "no command is called 'no-such-command'");
    expectOneLine({}, 2);
    expectOneLine({""}, 2);
}

TEST_F(CommandLineTest, MissingWordsEndWithCodeTwo) {
    for (const CLI::App* command : commandsOf(_program)) {
        if (line(*command, "move.bvh").size() > 1 && positionalsOf(*command).front()->get_required())
            expectOneLine({command->get_name()}, 2);
        for (const CLI::Option* option : optionsOf(*command)) {
            if (!takesValue(*option))
                continue;
            std::vector<std::string> words = line(*command, "move.bvh");
            words.push_back(spellingsOf(*option).back());
            expectOneLine(words, 2, spellingsOf(*option).back());
        }
    }
}

TEST_F(CommandLineTest, ValuesThatMakeNoSenseEndWithCodeTwo) {
    for (const CLI::App* command : commandsOf(_program))
        for (const CLI::Option* option : optionsOf(*command)) {
            const bool isChoice = option->get_type_name().find('|') != std::string::npos;
            const bool isNumber = takesValue(*option) && option->get_type_name().empty();
            if (!isChoice && !isNumber)
                continue;
            std::vector<std::string> words = line(*command, "move.bvh");
            const auto stands = std::find(words.begin(), words.end(), spellingsOf(*option).back());
            if (stands != words.end())
                *(stands + 1) = "nonsense";
            else
                words.insert(words.end(), {spellingsOf(*option).back(), "nonsense"});
            expectOneLine(words, 2, "nonsense");
        }
}

TEST_F(CommandLineTest, InputsThatCannotBeReadEndWithCodeThree) {
    for (const CLI::App* command : commandsOf(_program)) {
        // To validate, damage is what it looks for: a finding, no failure.
        if (command->get_name() == "validate")
            continue;
        for (const char* name :
             {"none.bvh", "none.osg", "none", "folder.bvh", "folder.osg", ".", "empty.bvh", "empty.osg",
              "empty.glb", "broken.bvh", "broken.osg", "broken.glb", "notes.txt", "/dev/null"})
            expectOneLine(line(*command, name), 3, name);
        EXPECT_FALSE(std::filesystem::exists(_folder.at("result.osg"))) << command->get_name();
    }
}

TEST_F(CommandLineTest, DocumentsThatCannotBeReadEndWithCodeThree) {
    _folder.put("scene.osg", "#OSG V1.0\nDEF mover Node { core Transform3D { } }\n");
    for (const CLI::App* command : commandsOf(_program)) {
        for (const CLI::Option* option : optionsOf(*command)) {
            const bool isWritten = option->get_description().find("to write") != std::string::npos;
            if (spellingsOf(*option).back() != "--animation" || isWritten)
                continue;
            for (const char* name : {"none.xml", "empty.xml", "broken.xml", "notes.txt", "."}) {
                std::vector<std::string> words = line(*command, "scene.osg");
                words.insert(words.end(), {"--animation", name});
                expectOneLine(words, 3, name);
            }
        }
    }
}

TEST_F(CommandLineTest, HelpIsDataOfEveryCommand) {
    for (const CLI::App* command : commandsOf(_program))
        for (const char* spelling : {"-h", "--help"}) {
            const ProgramRun help = runKaAnim({command->get_name(), spelling}, _folder.at(""));
            EXPECT_EQ(help.code, 0);
            EXPECT_EQ(help.messages, "");
            EXPECT_THAT(help.output, HasSubstr("Examples:"));
        }
}

TEST_F(CommandLineTest, AReaderThatGoesAwayEndsWithCodeFour) {
    for (const CLI::App* command : commandsOf(_program)) {
        const std::string name = command->get_name();
        const ProgramRun help =
            runShell("ka-anim " + name + " --help | true; exit ${PIPESTATUS[0]}", _folder.at(""));
        // Where all fits into the pipe before the reader goes, nobody can tell.
        EXPECT_TRUE(help.code == 0 || help.code == 4) << name;
        EXPECT_EQ(runShell("ka-anim " + name + " --help >&-", _folder.at("")).code, 4) << name;
        EXPECT_EQ(runShell("ka-anim " + name + " --help >/dev/full", _folder.at("")).code, 4) << name;
    }
    const ProgramRun sample = runShell(
        "ka-anim sample move.bvh --to 100000 --step 0.1 | head -1; exit ${PIPESTATUS[0]}", _folder.at(""));
    EXPECT_EQ(sample.code, 4);
    EXPECT_EQ(sample.output, "curve,frame,value\n");
    EXPECT_TRUE(sample.isOneLine()) << sample.messages;
}

} // namespace
} // namespace ka::tools::testing
