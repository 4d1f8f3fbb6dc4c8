#include "cli/Command.h"

#include "DecimalComma.h"
#include "commands/Program.h"
#include "manual/CommandLineParts.h"

#include <gmock/gmock.h>

namespace ka::tools::testing {
namespace {

using ::testing::HasSubstr;

/// What is wrong with the line; empty when there is something to run.
std::string mistakeOf(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words);
    EXPECT_EQ(line.mistake.empty(), static_cast<bool>(line.action)) << line.mistake;
    return line.mistake;
}

void expectAccepted(const std::vector<std::string>& words) {
    EXPECT_EQ(mistakeOf(words), "") << ::testing::PrintToString(words);
}

void expectRefused(const std::vector<std::string>& words, const std::string& why) {
    EXPECT_THAT(mistakeOf(words), HasSubstr(why)) << ::testing::PrintToString(words);
}

/// The option of that name, as help and completion see it.
OptionParts partOf(const std::string& commandName, const std::string& spelling) {
    Action none;
    const CommandParts program = partsOf(*describedProgram(none));
    for (const CommandParts& command : program.commands)
        for (const OptionParts& option : command.options)
            if (command.name == commandName && option.spellings.back() == spelling)
                return option;
    ADD_FAILURE() << commandName << " has no " << spelling;
    return {};
}

TEST(CommandTest, LimitsHoldAtTheirEdges) {
    expectAccepted({"render", "walk.bvh", "-o", "a.png", "--count", "1"});
    expectAccepted({"render", "walk.bvh", "-o", "a.png", "--count=400"});
    expectRefused({"render", "walk.bvh", "-o", "a.png", "--count", "0"}, "--count");
    expectRefused({"render", "walk.bvh", "-o", "a.png", "--count", "401"}, "not in range 1 to 400");
    expectRefused({"render", "walk.bvh", "-o", "a.png", "--count", "1.5"}, "not in range 1 to 400");
    expectAccepted({"info", "walk.bvh", "--tolerance", "360"});
    expectRefused({"info", "walk.bvh", "--tolerance", "360.1"}, "'360.1' is above 360");
    expectRefused({"info", "walk.bvh", "--tolerance", "-0"}, "'-0' is not a number above zero");
    expectAccepted({"diff", "a.bvh", "b.bvh", "--by", "0"});
    expectRefused({"diff", "a.bvh", "b.bvh", "--by=-1"}, "'-1' is not a finite number of at least 0");
    expectRefused({"diff", "a.bvh", "b.bvh", "--by", "inf"}, "'inf' is not a finite number of at least 0");
    expectAccepted({"pose", "walk.bvh", "--frame", "-3.4e38"});
    expectRefused({"pose", "walk.bvh", "--frame", "3.5e38"}, "'3.5e38' is beyond the range of a float");
}

TEST(CommandTest, NumbersHaveAPointInEveryLocale) {
    const ka_test::DecimalComma comma;
    expectAccepted({"pose", "walk.bvh", "--frame", "-1.5"});
    expectRefused({"pose", "walk.bvh", "--frame", "1,5"}, "'1,5' is not a finite number");
    expectAccepted({"info", "walk.bvh", "--tolerance", "0.25"});
    expectRefused({"info", "walk.bvh", "--tolerance", "0,25"}, "'0,25' is not a number above zero");
    EXPECT_EQ(partOf("info", "--tolerance").defaultText, "0.01");
}

TEST(CommandTest, AnOptionIsGivenOnceUnlessItMayBeRepeated) {
    expectRefused({"pose", "walk.bvh", "--frame", "1", "--frame", "1"}, "--frame");
    expectRefused({"plot", "walk.bvh", "-o", "a.png", "--output", "b.png"}, "--output");
    expectAccepted({"sample", "walk.bvh", "--curve", "1", "--curve", "2"});
    // The words after a value are none of its own.
    expectRefused({"sample", "walk.bvh", "--curve", "1", "2"}, "2");
    expectAccepted({"sample", "--curve", "1", "walk.bvh"});
}

TEST(CommandTest, OptionsThatNeedEachOtherComeTogether) {
    expectAccepted({"import", "walk.bvh"});
    expectAccepted({"import", "walk.bvh", "--animation", "a.xml", "-o", "a.osg"});
    expectRefused({"import", "walk.bvh", "-o", "a.osg"}, "--output requires --animation");
    expectRefused({"import", "walk.bvh", "--animation", "a.xml"}, "--animation requires --output");
}

TEST(CommandTest, AChoiceIsOneOfItsWords) {
    expectAccepted({"info", "walk.bvh", "--format", "json"});
    expectRefused({"info", "walk.bvh", "--format", "csv"}, "csv");
    expectRefused({"info", "walk.bvh", "--format", "JSON"}, "JSON");
    expectRefused({"info", "walk.bvh", "--format", ""}, "--format");
    EXPECT_EQ(partOf("info", "--format").typeName, "text|json");
    EXPECT_EQ(partOf("info", "--format").defaultText, "text");
    EXPECT_EQ(partOf("sample", "--format").typeName, "csv|json|npz");
    EXPECT_EQ(partOf("play", "--format").typeName, "text|json") << "what completion offers";
    EXPECT_EQ(partOf("sample", "--format").defaultText, "csv");
    EXPECT_EQ(partOf("pose", "--format").defaultText, "json");
}

TEST(CommandTest, HelpShowsWhatIsAskedOfAnOption) {
    const OptionParts output = partOf("plot", "--output");
    EXPECT_THAT(output.spellings, ::testing::ElementsAre("-o", "--output"));
    EXPECT_EQ(output.typeName, "PATH");
    EXPECT_EQ(output.defaultText, "");
    EXPECT_TRUE(output.isNeeded);
    EXPECT_TRUE(output.takesValue);
    const OptionParts width = partOf("plot", "--width");
    EXPECT_EQ(width.typeName, "");
    EXPECT_EQ(width.defaultText, "1600");
    EXPECT_FALSE(width.isNeeded);
    EXPECT_EQ(partOf("plot", "--height").defaultText, "");
    EXPECT_FALSE(partOf("plot", "--handles").takesValue);
}

} // namespace
} // namespace ka::tools::testing
