#include "MotionTesting.h"
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Comparison.h>
#include <kaMotion/Project.h>
#include <nlohmann/json.hpp>

namespace ka::tools::testing {

using namespace motion;
using namespace motion::testing;
namespace {

using ::testing::HasSubstr;

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return text.replace(at, from.size(), to);
}

/// Two curves of straight segments, 0 to 20 over frames 0 to 10, in two blocks of a clip.
const std::string document = [] {
    const auto key = [](const char* id, const char* x, const char* y, const char* handles) {
        return std::string("<point id=\"") + id + "\" typeID=\"1\" tangentType=\"16\"><position>" + x + " " +
               y + "</position>" + handles + "</point>\n";
    };
    const char* start = "<inTangent>-5 0</inTangent><outTangent>5 10</outTangent>";
    const char* end = "<inTangent>5 10</inTangent><outTangent>15 20</outTangent>";
    const char* flags = R"(active="1" repeating="0" flipped="0" motionBlur="0")";
    std::string text = "<AnimationPool objects=\"12\">\n"
                       R"(<field id="7" typeID="-1" name="translation" attribute="translationX"/>)"
                       R"(<field id="8" typeID="-1" name="translation" attribute="translationY"/>)"
                       "\n";
    text += key("11", "0", "0", start) + key("12", "10", "20", end);
    text += key("13", "0", "0", start) + key("14", "10", "20", end);
    for (const char* curve :
         {R"(<curve id="21" typeID="2" name="x" field="7" %><point id="11"/><point id="12"/></curve>)",
          R"(<curve id="22" typeID="2" name="y" field="8" %><point id="13"/><point id="14"/></curve>)",
          R"(<block id="31" typeID="3" name="Arm" %><block id="21"/></block>)",
          R"(<block id="32" typeID="3" name="Leg" %><block id="22"/></block>)",
          R"(<track id="41" typeID="4" name="T" %><obj id="31"/></track>)",
          R"(<track id="42" typeID="4" name="U" %><obj id="32"/></track>)",
          R"(<clip id="51" typeID="5" name="Walk" %><track id="41"/><track id="42"/></clip>)"})
        text += replaced(curve, "%", flags) + "\n";
    return text + "</AnimationPool>\n";
}();

class DiffTest : public ::testing::Test {
  protected:
    ProgramRun diff(const std::string& b, const std::vector<std::string>& more = {}) const {
        _folder.put("a.xml", document);
        _folder.put("b.xml", b);
        std::vector<std::string> words{"diff", "a.xml", "b.xml"};
        words.insert(words.end(), more.begin(), more.end());
        return runKaAnim(words, _folder.at(""));
    }

    TemporaryFolder _folder;
};

TEST_F(DiffTest, AFileEqualsItself) {
    const ProgramRun run = diff(document);
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "");
    // Whole frames 0 to 10, on which the keys stand.
    EXPECT_EQ(run.messages, "ka-anim: 2 curves compared at 22 frames in all, all equal\n");
}

TEST_F(DiffTest, IdsOfTheirOwnMakeNoDifference) {
    std::string other = document;
    for (const char* id : {"11", "12", "13", "14", "21", "22", "31", "32", "41", "42", "51"})
        for (std::size_t at = 0; (at = other.find("\"" + std::string(id) + "\"", at)) != other.npos; ++at)
            other.insert(at + 1, "9");
    EXPECT_EQ(diff(other).code, 0);
}

struct Change {
    const char* name;
    std::string from, to, output;
};

class ChangeTest : public DiffTest, public ::testing::WithParamInterface<Change> {};

TEST_P(ChangeTest, IsNamed) {
    const ProgramRun run = diff(replaced(document, GetParam().from, GetParam().to));
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.output, GetParam().output);
}

const Change changes[] = {
    {"ARenamedClip", "\"Walk\"", "\"Run\"",
     "1 difference of structure (A | B)\n  clip  Walk  name  Walk | Run\n"},
    {"ARenamedBlock", "\"Leg\"", "\"Foot\"",
     "1 difference of structure (A | B)\n  block  Leg  name  Leg | Foot\n"},
    {"AFlag", R"("Arm" active="1" repeating="0")", R"("Arm" active="0" repeating="1")",
     "2 differences of structure (A | B)\n  block  Arm  active     yes | no\n  block  Arm  repeating  no | "
     "yes\n"},
};

TEST_F(DiffTest, ClipsOfAFileUnderAnotherNameAreKnownByWhatTheyDrive) {
    _folder.put("walk.bvh", shortCapture(5));
    std::string text = shortCapture(5);
    _folder.put("stroll.bvh", text + "\n"); // other bytes, so other ids
    const ProgramRun run = runKaAnim({"diff", "walk.bvh", "stroll.bvh"}, _folder.at(""));
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.output, HasSubstr("clip  walk  name  walk | stroll\n"));
    EXPECT_EQ(run.output.find("presence"), run.output.npos) << run.output;
}

TEST_F(DiffTest, AMovedBlockIsKnownByItsId) {
    std::string moved = replaced(document, R"(<obj id="32"/>)", "");
    moved = replaced(moved, R"(<obj id="31"/>)", R"(<obj id="31"/><obj id="32"/>)");
    const ProgramRun run = diff(moved);
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.output, HasSubstr("  block  Leg  parent  U | T\n"));
    EXPECT_THAT(run.output, HasSubstr("  track  U    range   0 to 10 | empty\n"));
}

TEST_F(DiffTest, WhatIsMissingTakesAlongWhatIsBelow) {
    std::string less = document;
    for (const char* line :
         {"<clip", "<track id=\"42\"", "<track id=\"41\"", "<block id=\"32\" typeID", "<curve id=\"22\""}) {
        const std::size_t at = less.find(line);
        less.erase(at, less.find('\n', at) - at);
    }
    const ProgramRun run = diff(less);
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.output, HasSubstr("  clip   Walk  only in A, with 1 curve\n"));
    EXPECT_THAT(run.output, HasSubstr("T | none\n"));
}

TEST_F(DiffTest, ValuesAreComparedWithTheWorstFrameNamed) {
    // The last key of the first curve goes up by 4: at frame 10 both stand on their last key.
    std::string higher = replaced(document, "10 20</position>", "10 24</position>");
    const ProgramRun run = diff(higher);
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.output,
              "1 curve of 2 differ by more than 0.001 (A | B)\n  translationX  4  at frame 10  20 | 24\n");
    EXPECT_THAT(run.messages, HasSubstr("at worst 4 apart at frame 10: translationX"));
    EXPECT_EQ(diff(higher, {"--by", "4"}).code, 0);
    EXPECT_EQ(diff(higher, {"--by", "3.9"}).code, 1);
}

TEST_F(DiffTest, CurvesAreHeldAtTheirEnds) {
    // Without its last key the first curve has no value; shortened to frame 5 it holds 10 where the other
    // climbs to 20.
    std::string shorter = replaced(document, "<position>10 20</position>", "<position>5 10</position>");
    shorter = replaced(shorter, "<outTangent>5 10</outTangent>", "<outTangent>2.5 5</outTangent>");
    shorter = replaced(shorter, "<inTangent>5 10</inTangent>", "<inTangent>2.5 5</inTangent>");
    const ProgramRun run = diff(shorter);
    EXPECT_THAT(run.output, HasSubstr("  curve  translationX  range  0 to 10 | 0 to 5\n"));
    EXPECT_THAT(run.output, HasSubstr("  translationX  10  at frame 10  20 | 10\n"));
    const ProgramRun none = diff(replaced(document, R"(<point id="12"/>)", ""));
    EXPECT_THAT(none.output, HasSubstr("curve  translationX  keys   2 | 1\n"));
    EXPECT_THAT(none.output, HasSubstr("  translationX  inf  at frame 0  0 | none\n"));
}

TEST_F(DiffTest, JsonHoldsTheSame) {
    std::string other = replaced(document, "10 20</position>", "10 24</position>");
    other = replaced(other, "\"Walk\"", "\"Run\"");
    const ProgramRun run = diff(other, {"--format", "json"});
    EXPECT_EQ(run.code, 1);
    const auto result = nlohmann::json::parse(run.output);
    EXPECT_EQ(result["differ"], true);
    EXPECT_EQ(result["curves"], 2);
    EXPECT_EQ(
        result["structure"],
        nlohmann::json::parse(R"([{"element":"clip","name":"Walk","what":"name","a":"Walk","b":"Run"}])"));
    EXPECT_EQ(result["values"], nlohmann::json::parse(R"([{"node":"","attribute":"translationX","error":4,
                                    "frame":10,"a":"20","b":"24"}])"));
}

TEST_F(DiffTest, NodesAreComparedWhereBothHaveAScene) {
    const auto scene = [](const std::string& nodes) {
        return "#OSG V1.0 \nDEF Root Node { core Group { } children [" + nodes + "] }\n";
    };
    const std::string arm = "DEF Arm Node { core Transform3D { translation 1 2 3 } }";
    _folder.put("a.osg", scene(arm + " DEF Leg Node { core Transform3D { } }"));
    _folder.put(
        "b.osg",
        scene("DEF Arm Node { core Transform3D { translation 1 2 4 } } DEF Tail Node { core Group { } }"));
    const ProgramRun run = runKaAnim({"diff", "a.osg", "b.osg"}, _folder.at(""));
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.output, "3 differences of structure (A | B)\n"
                          "  node  Leg   only in A\n"
                          "  node  Tail  only in B\n"
                          "  node  Arm   translation  1 2 3 | 1 2 4\n");
    EXPECT_EQ(runKaAnim({"diff", "a.osg", "a.osg"}, _folder.at("")).code, 0);
}

TEST_F(DiffTest, AModelEqualsWhatItWasSavedAs) {
    _folder.put("walk.bvh", shortCapture(97));
    runKaAnim({"convert", "walk.bvh", "-o", "walk.osg", "--animation", "walk.xml"}, _folder.at(""));
    // Six decimals of a frame, on segments that climb by some hundred degrees a frame.
    const ProgramRun run =
        runKaAnim({"diff", "walk.bvh", "walk.osg", "--animation-b", "walk.xml"}, _folder.at(""));
    EXPECT_EQ(run.code, 0) << run.output;
    EXPECT_THAT(run.messages, HasSubstr("96 curves compared"));
    // A scene without its document has none of the curves.
    EXPECT_EQ(runKaAnim({"diff", "walk.bvh", "walk.osg"}, _folder.at("")).code, 1);
}

TEST_F(DiffTest, FilesThatCannotBeReadEndWithCodeThree) {
    _folder.put("a.xml", document);
    for (const auto& words :
         {std::vector<std::string>{"diff", "a.xml", "none.xml"}, {"diff", "none.xml", "a.xml"}}) {
        const ProgramRun run = runKaAnim(words, _folder.at(""));
        EXPECT_EQ(run.code, 3);
        EXPECT_TRUE(run.isOneLine()) << run.messages;
    }
}

/// The plain sampling of compared curves against the controller's own, at keys, between them and beyond.
TEST(PlainCurve, GivesWhatTheControllerGives) {
    const TemporaryFolder folder;
    const Project project({folder.put("a.xml", document), "", {}, {}});
    const ProjectSummary summary = summarize(project);
    ASSERT_EQ(summary.count(KA_TYPE_CURVE), 2U);
    for (const auto& object : summary.objects) {
        if (object.type != KA_TYPE_CURVE)
            continue;
        kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(object.id);
        for (const float frame : {-1.0F, 0.0F, 0.1F, 3.0F, 9.999F, 10.0F, 11.0F}) {
            float value = 0.0F;
            ASSERT_TRUE(kaAnimationController::the()->computeCurveValue(curve, frame, value));
            EXPECT_EQ(sampleKeys(object.keys, frame), value) << frame;
        }
    }
    EXPECT_EQ(sampleKeys({}, 1.0F), std::nullopt);
    EXPECT_EQ(sampleKeys({PlainKey{}}, 1.0F), std::nullopt);
}

std::string nameOf(const ::testing::TestParamInfo<Change>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(One, ChangeTest, ::testing::ValuesIn(changes), nameOf);

} // namespace
} // namespace ka::tools::testing
