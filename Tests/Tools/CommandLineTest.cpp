#include "MotionTesting.h"
#include "ProgramRun.h"
#include "commands/Program.h"
#include "manual/CommandLineParts.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>

namespace ka::tools::testing {

using namespace motion::testing;
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
    std::vector<std::string> line(const CommandParts& command, const std::string& input) const {
        std::vector<std::string> words{command.name};
        for (const OptionParts& positional : command.positionals)
            if (positional.isNeeded || &positional == &command.positionals.front())
                words.push_back(input);
        for (const OptionParts& option : command.options) {
            const std::string name = option.spellings.back();
            // An operation that names no output only says what it would do.
            if (name == "--dry-run")
                words.push_back(name);
            // A conversion needs one of its outputs, whichever.
            const bool isNeeded = command.name == "convert" && name == "--output";
            if (!option.isNeeded && !isNeeded)
                continue;
            words.push_back(name);
            const auto known = values.find(name);
            words.push_back(known != values.end() ? known->second : outputFor(option));
        }
        return words;
    }

    static std::string outputFor(const OptionParts& option) {
        for (const char* extension : {".osg", ".xml", ".glb", ".png"})
            if (option.description.find(extension) != std::string::npos)
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

    /// The same of a line that is refused before anything is run: read here, since a process for each of
    /// some hundred lines takes most of a minute where memory is watched.
    static void expectMistake(const std::vector<std::string>& words, const std::string& part = "") {
        const CommandLine read = readCommandLine(words);
        const std::string shown = ::testing::PrintToString(words);
        EXPECT_EQ(read.code, ExitCode::Usage) << shown << read.mistake;
        EXPECT_THAT(read.mistake, ::testing::AllOf(HasSubstr(part), Not(HasSubstr("\n")))) << shown;
        EXPECT_EQ(read.answer, "") << shown;
        EXPECT_FALSE(read.action) << shown;
    }

    Action _none;
    const CommandParts _program = partsOf(*describedProgram(_none));
    TemporaryFolder _folder;
};

TEST_F(CommandLineTest, UnknownOptionsEndWithCodeTwo) {
    for (const CommandParts& command : _program.commands) {
        std::vector<std::string> words = line(command, "move.bvh");
        words.emplace_back("--no-such-option");
        expectOneLine(words, 2, "--no-such-option");
    }
    expectOneLine({"--no-such-option"}, 2);
    expectOneLine({"no-such-command"}, 2, "no command is called 'no-such-command'");
    expectOneLine({}, 2);
    expectOneLine({""}, 2);
}

TEST_F(CommandLineTest, MissingWordsEndWithCodeTwo) {
    for (const CommandParts& command : _program.commands) {
        if (line(command, "move.bvh").size() > 1 && command.positionals.front().isNeeded)
            expectMistake({command.name});
        for (const OptionParts& option : command.options) {
            if (!option.takesValue)
                continue;
            std::vector<std::string> words = line(command, "move.bvh");
            words.push_back(option.spellings.back());
            expectMistake(words, option.spellings.back());
        }
    }
}

TEST_F(CommandLineTest, ValuesThatMakeNoSenseEndWithCodeTwo) {
    for (const CommandParts& command : _program.commands)
        for (const OptionParts& option : command.options) {
            const bool isChoice = option.typeName.find('|') != std::string::npos;
            const bool isNumber = option.takesValue && option.typeName.empty();
            if (!isChoice && !isNumber)
                continue;
            std::vector<std::string> words = line(command, "move.bvh");
            const auto stands = std::find(words.begin(), words.end(), option.spellings.back());
            if (stands != words.end())
                *(stands + 1) = "nonsense";
            else
                words.insert(words.end(), {option.spellings.back(), "nonsense"});
            expectMistake(words, "nonsense");
        }
}

TEST_F(CommandLineTest, InputsThatCannotBeReadEndWithCodeThree) {
#ifdef KA_WATCHED_MEMORY
    const std::vector<const char*> names{"none.bvh", "broken.osg",
                                         "empty.glb"}; // processes start slowly here
#else
    const std::vector<const char*> names{"none.bvh",   "none.osg",   "none",      "folder.bvh", "folder.osg",
                                         ".",          "empty.bvh",  "empty.osg", "empty.glb",  "broken.bvh",
                                         "broken.osg", "broken.glb", "notes.txt", "/dev/null"};
#endif
    for (const CommandParts& command : _program.commands) {
        // To validate, damage is what it looks for: a finding, no failure. A batch lists the files that failed.
        if (command.name == "validate" || command.name == "batch")
            continue;
        for (const char* name : names)
            expectOneLine(line(command, name), 3, name);
        EXPECT_FALSE(std::filesystem::exists(_folder.at("result.osg"))) << command.name;
    }
}

TEST_F(CommandLineTest, DocumentsThatCannotBeReadEndWithCodeThree) {
    _folder.put("scene.osg", "#OSG V1.0\nDEF mover Node { core Transform3D { } }\n");
    for (const CommandParts& command : _program.commands) {
        for (const OptionParts& option : command.options) {
            const bool isWritten = option.description.find("to write") != std::string::npos;
            if (option.spellings.back() != "--animation" || isWritten)
                continue;
            for (const char* name : {"none.xml", "empty.xml", "broken.xml", "notes.txt", "."}) {
                std::vector<std::string> words = line(command, "scene.osg");
                words.insert(words.end(), {"--animation", name});
                expectOneLine(words, 3, name);
            }
        }
    }
}

TEST_F(CommandLineTest, HelpIsDataOfEveryCommand) {
    for (const CommandParts& command : _program.commands)
        for (const char* spelling : {"-h", "--help"}) {
            const ProgramRun help = runKaAnim({command.name, spelling}, _folder.at(""));
            EXPECT_EQ(help.code, 0);
            EXPECT_EQ(help.messages, "");
            EXPECT_THAT(help.output, HasSubstr("Examples:"));
        }
}

TEST_F(CommandLineTest, AReaderThatGoesAwayEndsWithCodeFour) {
    for (const CommandParts& command : _program.commands) {
        const std::string name = command.name;
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
    EXPECT_EQ(sample.output, "curve,frame,value,clip,node,attribute,unit\n");
    EXPECT_TRUE(sample.isOneLine()) << sample.messages;
}

} // namespace
} // namespace ka::tools::testing
