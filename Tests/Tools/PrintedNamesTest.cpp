#include "MotionTesting.h"
#include "ProgramRun.h"

#include <QString>
#include <QVector>
#include <gmock/gmock.h>
#include <sstream>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A colour of the terminal begun in two ways, a line that looks like one of the program's, an override.
const std::string hostileFile = "x\x1b[31m\xC2\x9B"
                                "32m\nka-anim: fine\xE2\x80\xAE"
                                "y";
/// What a capture can have in a word.
const std::string hostileNode = "n\x1b[31m\xC2\x9B"
                                "32m\xC2\x85z";

/// The characters of a text that it must not have.
std::vector<uint> unprintable(const std::string& text) {
    std::vector<uint> found;
    for (const uint c : QString::fromStdString(text).toUcs4()) {
        const bool isControl = (c < 0x20 && c != '\n') || (c >= 0x7F && c <= 0x9F);
        const bool turns = c == 0x61C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
                           (c >= 0x2066 && c <= 0x2069);
        if (isControl || turns)
            found.push_back(c);
    }
    return found;
}

class PrintedNames : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string capture = shortCapture(31);
        const std::string root = "ROOT ";
        const std::size_t at = capture.find(root) + root.size();
        capture.replace(at, capture.find_first_of(" \r\n", at) - at, hostileNode);
        _folder.put(hostileFile + ".bvh", capture);
        const ProgramRun made = runIn({"convert", hostileFile + ".bvh", "-o", hostileFile + ".osg",
                                       "--animation", hostileFile + ".xml"});
        ASSERT_EQ(made.code, 0) << made.messages;
        expectPrintable(made);
        _folder.put("hostile.xml", "<!DOCTYPE ORVA>\n<AnimationPool objects=\"&#x202E;&#x9B;\"><a&#x202E;/>"
                                   "<block id=\"&#x9B;&#x202E;&#10;5\" typeID=\"3\" \xE2\x80\xAE"
                                   "b=\"1\"/><block id=\"7\" typeID=\"&#x85;\"/></AnimationPool>\n");
    }
    ProgramRun runIn(const std::vector<std::string>& arguments) const {
        return runKaAnim(arguments, _folder.at(""));
    }
    static void expectPrintable(const ProgramRun& run) {
        EXPECT_EQ(unprintable(run.output), std::vector<uint>()) << run.output;
        EXPECT_EQ(unprintable(run.messages), std::vector<uint>()) << run.messages;
        std::istringstream lines(run.messages);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_THAT(line, StartsWith("ka-anim: "));
            EXPECT_NE(line.substr(0, 13), "ka-anim: fine") << run.messages;
        }
    }

    TemporaryFolder _folder;
};

TEST_F(PrintedNames, OfFilesAndInFilesAreOneLineThatNoTerminalObeys) {
    const std::string model = hostileFile + ".bvh", scene = hostileFile + ".osg",
                      document = hostileFile + ".xml";
    const std::vector<std::vector<std::string>> commands{
        {"import", model},
        {"info", model},
        {"info", scene, "--animation", document},
        {"info", hostileFile},
        {"info", hostileFile + "/none.bvh"},
        {"validate", document, "--scene", scene},
        {"validate", "hostile.xml"},
        {"validate", hostileFile},
        {"diff", model, document},
        {"diff", scene, "hostile.xml"},
        {"copy", model, "--from", hostileFile, "--to", "*", "-o", "a.osg", "--animation-out", "a.xml"},
        {"copy", scene, "--animation", document, "--from", "*z", "--to", "*", "-o", "a.osg",
         "--animation-out", "a.xml"},
        {"play", model, "--frames", "8", "--verbose"},
        {"play", model, "--frames", "8", "--object", hostileFile},
        {"sample", model, "--curve", hostileFile},
        {"upgrade", scene, "-o", hostileFile, "--animation", document},
        {"convert", model, "-o", hostileFile + "/none.osg"},
        {"plot", model, "-o", hostileFile + "/none.png"},
        {"plot", model, "-o", hostileFile + ".png"},
        {hostileFile},
        {"info", model, "--" + hostileFile},
        {"info", model, "--fps", hostileFile}};
    for (const auto& command : commands) {
        SCOPED_TRACE(command[0]);
        const ProgramRun run = runIn(command);
        EXPECT_GE(run.code, 0);
        EXPECT_NE(run.output + run.messages, "");
        expectPrintable(run);
    }
}

TEST_F(PrintedNames, StayAsTheyAreInJson) {
    const ProgramRun run = runIn({"info", hostileFile + ".bvh", "--format", "json"});
    EXPECT_THAT(run.output, HasSubstr(R"("file": "x\u001b[31m)"
                                      "\xC2\x9B"
                                      R"(32m\nka-anim: fine)"
                                      "\xE2\x80\xAEy.bvh\""));
    EXPECT_THAT(run.output, HasSubstr(R"("name": "n\u001b[31m)"
                                      "\xC2\x9B"
                                      "32m\xC2\x85z\""));
}

} // namespace
} // namespace ka::tools::testing
