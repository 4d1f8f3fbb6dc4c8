#include "MotionTesting.h"
#include "ProgramRun.h"
#include "check/WrittenCheck.h"

#include <gmock/gmock.h>
#include <kaAnimationManager.h>
#include <kaAnimationXmlOutput.h>
#include <kaMotion/Project.h>
#include <nlohmann/json.hpp>

namespace ka::tools::testing {

using namespace motion;
using namespace motion::testing;
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// A saved motion plays as it was imported, and where something does not, the user is told.
class FaithfulTest : public ::testing::Test {
  protected:
    ProgramRun run(const std::vector<std::string>& arguments) const {
        return runKaAnim(arguments, _folder.at(""));
    }

    /// A document with one curve of these keys, each "position / in / out".
    void putDocument(const std::vector<std::array<std::string, 3>>& keys) const {
        std::string points, references;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const std::string id = std::to_string(11 + i);
            points += "<point id=\"" + id +
                      R"(" typeID="1" tangentType="16" tangentLengthMode="64"><position>)" + keys[i][0] +
                      "</position><inTangent>" + keys[i][1] + "</inTangent><outTangent>" + keys[i][2] +
                      "</outTangent></point>\n";
            references += "<point id=\"" + id + "\"/>";
        }
        _folder.put(
            "d.xml",
            "<!DOCTYPE ORVA>\n<AnimationPool objects=\"" + std::to_string(keys.size() + 2) +
                "\">\n<field id=\"7\" typeID=\"-1\" fcID=\"0\" name=\"translation\" "
                "attribute=\"translationX\" value=\"0\" valuePos=\"0\" dirty=\"0\"/>\n" +
                points +
                "<curve id=\"21\" typeID=\"2\" name=\"door\" field=\"7\" active=\"1\" repeating=\"0\" "
                "flipped=\"0\" motionBlur=\"0\" parentNodeID=\"0\">" +
                references + "</curve>\n</AnimationPool>\n");
    }

    TemporaryFolder _folder;
};

struct SavedModel {
    const char* file;
    const char* framesPerSecond;
};

class SavedModelTest : public FaithfulTest, public ::testing::WithParamInterface<SavedModel> {};

/// Models whose thirds do not fall on six decimals at these rates.
TEST_P(SavedModelTest, PlaysAsItWasImported) {
    const std::string model = modelPath(GetParam().file), rate = GetParam().framesPerSecond;
    const ProgramRun saved = run({"convert", model, "--fps", rate, "-o", "m.osg", "--animation", "m.xml"});
    EXPECT_EQ(saved.code, 0) << saved.messages;
    EXPECT_EQ(run({"validate", "m.xml", "--scene", "m.osg"}).output, "");
    const ProgramRun diff =
        run({"diff", model, "m.osg", "--animation-b", "m.xml", "--fps", rate, "--by", "1e-5"});
    EXPECT_EQ(diff.code, 0) << diff.output;
}

INSTANTIATE_TEST_SUITE_P(Models, SavedModelTest,
                         ::testing::Values(SavedModel{"X/Testwuson.X", "25"},
                                           SavedModel{"X/Testwuson.X", "24"},
                                           SavedModel{"Collada/box_nested_animation.dae", "25"},
                                           SavedModel{"glTF2/simple_skin/simple_skin.gltf", "60"}),
                         [](const auto& row) { return "Model" + std::to_string(row.index); });

TEST_F(FaithfulTest, ACurveWithoutAValueInItsSpanIsSaidByEveryCommandThatSavesIt) {
    putDocument({{"5 0", "5 0", "5 0"}, {"25 10", "15 10", "25 10"}});
    const ProgramRun convert = run({"convert", "d.xml", "--animation", "copy.xml"});
    EXPECT_EQ(convert.code, 1);
    EXPECT_THAT(convert.messages, HasSubstr("ka-anim: wrote copy.xml\n"));
    EXPECT_THAT(convert.messages, HasSubstr("curve 'translationX': no value at frame 5\n"));
    const ProgramRun validate = run({"validate", "copy.xml"});
    EXPECT_EQ(validate.code, 1);
    EXPECT_THAT(validate.output, HasSubstr("no value at frame 5 between frames 5 and 25 of curve 21"));
    putDocument({{"5 0", "5 0", "5 0"}});
    EXPECT_EQ(run({"convert", "d.xml", "--animation", "copy.xml"}).code, 1);
    EXPECT_THAT(run({"validate", "d.xml"}).output,
                HasSubstr("no value at frame 5: the only key of curve 21"));
}

TEST_F(FaithfulTest, WhatADocumentsDigitsCannotHoldIsSaid) {
    // Both keys fall on frame 0 with six decimals.
    putDocument(
        {{"0.0000001 0", "0.0000001 0", "0.0000002 1"}, {"0.0000004 10", "0.0000003 9", "0.0000004 10"}});
    const ProgramRun convert = run({"convert", "d.xml", "--animation", "copy.xml"});
    EXPECT_EQ(convert.code, 1);
    EXPECT_THAT(convert.messages, HasSubstr("curve 'translationX': no value at frame 0\n"));
    // What they hold as well as they can is no fault.
    putDocument(
        {{"0.3333333 0.1234567", "0 0", "2.7654321 1"}, {"9.8765432 10.1010101", "7.0000004 9.1", "11 10"}});
    const ProgramRun rounded = run({"convert", "d.xml", "--animation", "copy.xml"});
    EXPECT_EQ(rounded.code, 0) << rounded.messages;
}

TEST_F(FaithfulTest, ARotationThatCannotBeKeptIsSaidWithItsNodeAndFrame) {
    _folder.put("spin.bvh",
                "HIERARCHY\nROOT Top\n{\n OFFSET 0 0 0\n CHANNELS 3 Xrotation Yrotation Zrotation\n"
                " End Site\n {\n  OFFSET 0 1 0\n }\n}\nMOTION\nFrames: 2\nFrame Time: 1\n"
                "0 0 0\n1000003 700001 300007\n");
    const ProgramRun import = run({"import", "spin.bvh", "--tolerance", "1e-13"});
    EXPECT_EQ(import.code, 1);
    EXPECT_THAT(import.messages, HasSubstr("rotation of 'Top': up to "));
    EXPECT_THAT(import.messages, HasSubstr(" cannot be split further"));
    const auto report =
        nlohmann::json::parse(run({"import", "spin.bvh", "--tolerance", "1e-13", "--json"}).output);
    EXPECT_EQ(report["faults"].size(), 1U);
    EXPECT_EQ(run({"convert", "spin.bvh", "--tolerance", "1e-13", "--animation", "spin.xml"}).code, 1);
}

/// The project, written to nowhere.
DocumentOutline outlineOfProject() {
    DocumentOutline outline;
    kaAnimationXmlTextOutput text([](std::string_view) {});
    OutlineOutput output(text, outline);
    kaAnimationManager::the()->describeAnimations(output);
    return outline;
}

TEST_F(FaithfulTest, EveryCurveOfADocumentIsComparedWithTheRegisteredOne) {
    const Project project({_folder.put("walk.bvh", shortCapture(31)), "", {}, {}});
    DocumentOutline outline = outlineOfProject();
    EXPECT_THAT(checkWritten(outline), IsEmpty());
    // One handle elsewhere than it was.
    ASSERT_FALSE(outline.points.empty());
    DocumentOutline::Point& point = outline.points[outline.points.size() / 2];
    point.position[1] += 1.0F;
    const std::vector<std::string> faults = checkWritten(outline);
    ASSERT_THAT(faults, SizeIs(1));
    EXPECT_THAT(faults.front(), HasSubstr(" instead of "));
    EXPECT_THAT(faults.front(), HasSubstr(" at frame "));
    point.position[1] -= 1.0F;
    // A curve whose keys are not there.
    for (DocumentOutline::Element& element : outline.elements)
        if (element.kind == Kind::Curve) {
            element.references = 0;
            break;
        }
    const std::vector<std::string> lost = checkWritten(outline);
    ASSERT_THAT(lost, SizeIs(1));
    EXPECT_THAT(lost.front(), HasSubstr("none of its keys is in the document"));
}

} // namespace
} // namespace ka::tools::testing
