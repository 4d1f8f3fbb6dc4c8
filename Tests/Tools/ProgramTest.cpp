#include "commands/Program.h"

#include "MotionTesting.h"
#include "ProgramRun.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const char* const commands[] = {"import", "convert", "info", "validate", "diff",  "sample",  "pose",
                                "plot",   "render",  "play", "copy",     "paste", "upgrade", "demo"};

class ProgramTest : public ::testing::Test {
  protected:
    void SetUp() override {
        _folder.put("walk.bvh", shortCapture(97));
        _folder.put("door.osg", contentOf(std::string(KA_LIFE_DATA) + "/one_curve.osg"));
    }

    ProgramRun run(const std::vector<std::string>& arguments) const {
        return runKaAnim(arguments, _folder.at(""));
    }

    /// The run fails with one line and this code.
    void expectFailure(const std::vector<std::string>& arguments, int code, const std::string& part) const {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.code, code) << result.messages;
        EXPECT_TRUE(result.isOneLine()) << result.messages;
        EXPECT_THAT(result.messages, HasSubstr(part));
        EXPECT_EQ(result.output, "");
    }

    TemporaryFolder _folder;
};

TEST_F(ProgramTest, HelpIsDataAndSaysHow) {
    const ProgramRun help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.messages, "");
    for (const char* command : commands)
        EXPECT_THAT(help.output, HasSubstr(std::string("  ") + command + " "));
    EXPECT_THAT(run({"--version"}).output, StartsWith("ka-anim "));
}

class HelpOf : public ProgramTest, public ::testing::WithParamInterface<const char*> {
  protected:
    /// What examples work on: a model, and the same as a scene with its document.
    void SetUp() override {
        ProgramTest::SetUp();
        ASSERT_EQ(run({"convert", "walk.bvh", "-o", "walk.osg", "--animation", "walk.xml"}).code, 0);
        _folder.put("copy.xml", contentOf(_folder.at("walk.xml")));
    }
};

TEST_P(HelpOf, HasExamplesThatRun) {
    const ProgramRun help = run({GetParam(), "--help"});
    EXPECT_EQ(help.code, 0);
    std::istringstream lines(help.output);
    std::size_t examples = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  ka-anim ", 0) != 0)
            continue;
        ++examples;
        const ProgramRun example = runShell(line, _folder.at(""));
        EXPECT_EQ(example.code, 0) << line << "\n" << example.messages;
    }
    EXPECT_GE(examples, 2U);
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, HelpOf, ::testing::ValuesIn(commands));

TEST_F(ProgramTest, MistakesInTheLineGetOneLineAndCodeTwo) {
    expectFailure({}, 2, "subcommand");
    expectFailure({"dance"}, 2, "dance");
    expectFailure({"pose", "walk.bvh", "--frame", "1", "--unknown"}, 2, "--unknown");
    expectFailure({"pose", "walk.bvh"}, 2, "--frame");
    expectFailure({"pose", "walk.bvh", "--frame", "abc"}, 2, "'abc' is not a finite number");
    expectFailure({"pose", "walk.bvh", "--frame", "nan"}, 2, "'nan' is not a finite number");
    expectFailure({"pose", "walk.bvh", "--frame", "1e300"}, 2, "'1e300' is beyond the range of a float");
    expectFailure({"sample", "walk.bvh", "--step", "0"}, 2, "above zero");
    expectFailure({"sample", "walk.bvh", "--step", "1e-20"}, 2, "more than a billion samples");
    expectFailure({"sample", "walk.bvh", "--format", "xml"}, 2, "xml");
    expectFailure({"sample", "walk.bvh", "--curve", "Tail"}, 2, "no curve is called 'Tail'");
    expectFailure({"pose", "walk.bvh", "--frame", "1", "--object", "fly"}, 2, "no animation is called 'fly'");
    expectFailure({"plot", "walk.bvh"}, 2, "--output");
    expectFailure({"import", "walk.bvh", "--fps", "-25"}, 2, "above zero");
    for (const char* command : {"plot", "render"}) {
        expectFailure({command, "walk.bvh", "-o", "a.svg"}, 2, ".png files, not a.svg");
        expectFailure({command, "walk.bvh", "-o", "a.JPG"}, 2, ".png files, not a.JPG");
        expectFailure({command, "walk.bvh", "-o", "a.png", "--from", "3", "--to", "2"}, 2,
                      "frame 3 to begin with lies behind frame 2");
    }
    EXPECT_FALSE(std::filesystem::exists(_folder.at("a.svg")));
    EXPECT_FALSE(std::filesystem::exists(_folder.at("a.png")));
}

TEST_F(ProgramTest, APlotOfNothingIsAFindingAndNoFile) {
    expectFailure({"plot", "walk.bvh", "-o", "a.png", "--from", "1000", "--to", "1010"}, 1,
                  "nothing to draw");
    _folder.put("empty.xml", "<!DOCTYPE ORVA>\n<AnimationPool objects=\"0\"/>\n");
    expectFailure({"plot", "empty.xml", "-o", "a.png"}, 1, "empty.xml: there is nothing to draw");
    EXPECT_FALSE(std::filesystem::exists(_folder.at("a.png")));
}

/// Two takes of one node: what every command works on unless told is the first by name.
TEST_F(ProgramTest, SampleTakesTheFirstClipUnlessToldAndWritesIdsAsText) {
    const std::string model = modelPath("MDL/MDL (HL1)/man.mdl");
    const auto lines = [this](const std::vector<std::string>& words) {
        const std::string text = run(words).output;
        return std::count(text.begin(), text.end(), '\n');
    };
    const auto all = nlohmann::json::parse(run({"info", model, "--format", "json"}).output);
    ASSERT_GT(all["counts"]["clips"].get<int>(), 1);
    EXPECT_GT(lines({"sample", model}), 1);
    EXPECT_LT(lines({"sample", model, "--from", "0", "--to", "0"}) - 1, all["counts"]["curves"].get<int>());
    const auto sampled = nlohmann::json::parse(
        run({"sample", "walk.bvh", "--curve", "Hips.translationX", "--format", "json"}).output);
    ASSERT_FALSE(sampled.empty());
    EXPECT_TRUE(sampled[0]["curve"].is_string());
}

TEST_F(ProgramTest, InputsThatCannotBeReadGetOneLineAndCodeThree) {
    _folder.put("broken.bvh", "HIERARCHY\nROOT\n");
    _folder.put("broken.glb", "glTF");
    _folder.put("notes.txt", "text");
    for (const char* command : {"import", "sample"}) {
        expectFailure({command, "none.bvh"}, 3, "none.bvh: no such file");
        expectFailure({command, "broken.bvh"}, 3, "broken.bvh:2:5: a joint without a name");
        expectFailure({command, "broken.glb"}, 3, "broken.glb: not readable as glTF");
        expectFailure({command, "notes.txt"}, 3, "notes.txt: no reader for '.txt' files");
        expectFailure({command, "."}, 3, "not a plain file");
    }
}

TEST_F(ProgramTest, OutputsThatCannotBeWrittenGetOneLineAndCodeFour) {
    expectFailure({"plot", "walk.bvh", "-o", "none/curves.png"}, 4, "none");
    expectFailure({"render", "walk.bvh", "-o", "/dev/full"}, 4, "/dev/full");
    _folder.put("file", "");
    expectFailure({"demo", "walk.bvh", "-o", "file/out"}, 4, "file/out");
}

TEST_F(ProgramTest, AClosedPipeEndsWithOneLineAndCodeFour) {
    const ProgramRun result =
        runShell("ka-anim sample walk.bvh | true; exit ${PIPESTATUS[0]}", _folder.at(""));
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.messages, "ka-anim: standard output was closed by its reader\n");
    const ProgramRun full = runShell("ka-anim --help > /dev/full", _folder.at(""));
    EXPECT_EQ(full.code, 4);
    EXPECT_TRUE(full.isOneLine()) << full.messages;
    EXPECT_EQ(runShell("ka-anim --help >&-", _folder.at("")).code, 4);
}

TEST_F(ProgramTest, SamplePrintsEveryStepOfACurve) {
    const ProgramRun csv =
        run({"sample", "walk.bvh", "--curve", "Hips.translationX", "--to", "2", "--step", "0.5"});
    EXPECT_EQ(csv.code, 0);
    std::istringstream lines(csv.output);
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, "curve,frame,value,clip,node,attribute,unit");
    std::size_t count = 0;
    for (const char* frame : {",0,", ",0.5,", ",1,", ",1.5,", ",2,"}) {
        std::getline(lines, line);
        EXPECT_THAT(line, HasSubstr(frame));
        EXPECT_THAT(line, HasSubstr(",Hips,translationX,units"));
        ++count;
    }
    EXPECT_FALSE(std::getline(lines, line));
    const auto json = nlohmann::json::parse(
        run({"sample", "walk.bvh", "--curve", "Hips.translationX", "--to", "2", "--format", "json"}).output);
    ASSERT_EQ(json.size(), 3U);
    EXPECT_EQ(json[1]["frame"], 1);
    EXPECT_TRUE(json[1]["value"].is_number());
    EXPECT_EQ(json[1]["node"], "Hips");
    EXPECT_EQ(json[1]["attribute"], "translationX");
    EXPECT_EQ(json[1]["unit"], "units");
    EXPECT_TRUE(json[1]["curve"].is_string());
}

TEST_F(ProgramTest, SampleWithoutOptionsPrintsEveryCurveOverItsRange) {
    const ProgramRun all = run({"sample", "walk.bvh"});
    // 96 channels; 97 frames of 1/120 s end just before frame 20.
    EXPECT_EQ(std::count(all.output.begin(), all.output.end(), '\n'), 1 + 96 * 20);
}

TEST_F(ProgramTest, PosePrintsTheDocumentedShape) {
    const ProgramRun pose = run({"pose", "walk.bvh", "--frame", "5", "--format", "json"});
    EXPECT_EQ(pose.code, 0);
    const auto document = nlohmann::json::parse(pose.output);
    EXPECT_EQ(document["frame"], 5);
    ASSERT_EQ(document["nodes"].size(), 38U);
    const auto& hips = document["nodes"][0];
    EXPECT_EQ(hips["name"], "Hips");
    for (const char* part : {"translation", "rotation", "scale", "position"})
        EXPECT_EQ(hips[part].size(), 3U) << part;
    EXPECT_EQ(hips["translation"], hips["position"]);
}

TEST_F(ProgramTest, PicturesArePngFiles) {
    EXPECT_EQ(run({"plot", "walk.bvh", "-o", "curves.png", "--width", "400"}).code, 0);
    EXPECT_EQ(run({"render", "walk.bvh", "-o", "figure.png", "--width", "400", "--count", "2"}).code, 0);
    for (const char* name : {"curves.png", "figure.png"})
        EXPECT_EQ(contentOf(_folder.at(name)).substr(1, 3), "PNG") << name;
}

TEST_F(ProgramTest, ImportReportsAndIsStrictOnlyWhenAsked) {
    _folder.put("damaged.bvh",
                "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 1 Xposition }\nMOTION\nFrames: 3\nFrame "
                "Time: 1\n1\nnan\n3\n");
    const ProgramRun lenient = run({"import", "damaged.bvh", "--json"});
    EXPECT_EQ(lenient.code, 0);
    const auto report = nlohmann::json::parse(lenient.output);
    EXPECT_EQ(report["findings"], 1);
    EXPECT_EQ(report["keys"], 6);
    EXPECT_THAT(lenient.messages, HasSubstr("dropped 1 key"));
    EXPECT_EQ(run({"import", "damaged.bvh", "--strict"}).code, 1);
    EXPECT_EQ(run({"import", "walk.bvh", "--strict"}).code, 0);
}

/// The poses of a new process that opens the two files are those of the model, within the six decimals of a
/// document.
TEST_F(ProgramTest, WhatAnImportWroteMovesLikeItsModel) {
    ASSERT_EQ(run({"import", "walk.bvh", "-o", "walk.osg", "--animation", "walk.xml"}).code, 0);
    for (const char* frame : {"0", "0.5", "1.25", "3"}) {
        const auto model = nlohmann::json::parse(run({"pose", "walk.bvh", "--frame", frame}).output);
        const auto saved = nlohmann::json::parse(
            run({"pose", "walk.osg", "--animation", "walk.xml", "--frame", frame}).output);
        ASSERT_EQ(model["nodes"].size(), saved["nodes"].size());
        ASSERT_GT(model["nodes"].size(), 1U);
        for (std::size_t node = 0; node < model["nodes"].size(); ++node)
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(model["nodes"][node]["position"][axis].get<double>(),
                            saved["nodes"][node]["position"][axis].get<double>(), 1e-4)
                    << "frame " << frame << ", node " << model["nodes"][node]["name"];
    }
}

TEST_F(ProgramTest, AnImportWritesBothFilesOrNone) {
    expectFailure({"import", "walk.bvh", "-o", "half.osg"}, 2, "--animation");
    expectFailure({"import", "walk.bvh", "--animation", "half.xml"}, 2, "--output");
    expectFailure({"import", "walk.bvh", "-o", "half.txt", "--animation", "half.xml"}, 2, "half.txt");
    expectFailure({"import", "walk.bvh", "-o", "half.osg", "--animation", "none/half.xml"}, 4,
                  "none/half.xml");
    EXPECT_FALSE(std::filesystem::exists(_folder.at("half.osg")));
    EXPECT_FALSE(std::filesystem::exists(_folder.at("half.xml")));
}

TEST_F(ProgramTest, AHostileModelCannotTakeTheProgramDown) {
    std::string deep = "{\"asset\":{\"version\":\"2.0\"},\"nodes\":[";
    for (int i = 0; i < 20000; ++i)
        deep += "{\"children\":[" + std::to_string(i + 1) + "]},";
    _folder.put("deep.gltf", deep + "{}]}");
    expectFailure({"import", "deep.gltf"}, 3, "nested deeper than 500 levels");
}

TEST_F(ProgramTest, NumbersDoNotDependOnTheLocale) {
    const std::string line = "ka-anim sample walk.bvh --curve Hips.translationX --to 3";
    EXPECT_EQ(runShell("LC_ALL=de_DE.UTF-8 " + line, _folder.at("")).output,
              runShell(line, _folder.at("")).output);
}

} // namespace
} // namespace ka::tools::testing
