#include "MotionTesting.h"
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <kaMotion/Columns.h>
#include <nlohmann/json.hpp>

namespace ka::tools::testing {

using namespace motion;
using namespace motion::testing;
namespace {

using ::testing::HasSubstr;

TEST(Columns, StandBelowEachOtherWhateverTheirBytes) {
    Columns columns("lr");
    columns.add({"caf\xC3\xA9", "7"});
    columns.add({"x", "12", "more"});
    EXPECT_EQ(columns.text(1), " caf\xC3\xA9   7\n x     12  more\n");
    EXPECT_EQ(Columns("l").text(), "");
}

constexpr const char* document = R"(<AnimationPool objects="11">
<field id="7" typeID="-1" fcID="412" name="translation" attribute="translationX"/>
<field id="8" typeID="-1" fcID="412" name="translation" attribute="translationY"/>
<field id="9" typeID="-1" fcID="413" name="visible" attribute="visible"/>
<point id="11" typeID="1"><position>2 0</position></point>
<point id="12" typeID="1"><position>25.5 1</position></point>
<point id="13" typeID="1"><position>30 1</position></point>
<curve id="21" typeID="2" name="x" field="7" repeating="0" flipped="0" motionBlur="0"><point id="11"/><point id="12"/></curve>
<curve id="22" typeID="2" name="y" field="8" repeating="0" flipped="0" motionBlur="0"><point id="13"/></curve>
<block id="31" typeID="3" name="Arm" repeating="1" active="0" flipped="0" motionBlur="0"><block id="21"/><block id="22"/></block>
<field id="35" typeID="6" name="Steps" begin="3" end="4.5"/>
</AnimationPool>)";

class InfoTest : public ::testing::Test {
  protected:
    ProgramRun info(const std::vector<std::string>& more) const {
        std::vector<std::string> words{"info"};
        words.insert(words.end(), more.begin(), more.end());
        return runKaAnim(words, _folder.at(""));
    }

    TemporaryFolder _folder;
};

TEST_F(InfoTest, ReadsWell) {
    _folder.put("d.xml", document);
    const ProgramRun run = info({"d.xml"});
    EXPECT_EQ(run.messages, "");
    EXPECT_EQ(run.output, "d.xml\n"
                          "  nodes      0\n"
                          "  clips      0\n"
                          "  tracks     0\n"
                          "  blocks     1\n"
                          "  curves     2\n"
                          "  keys       3\n"
                          "  sequences  1\n"
                          "  fields     3  2 animated\n"
                          "\n"
                          "animations\n"
                          "  block     Arm    2 to 30   2 curves  inactive, repeating\n"
                          "  sequence  Steps  3 to 4.5\n"
                          "\n"
                          "animated nodes\n"
                          "  container 412  translation XY  2 curves  3 keys  2 to 30\n");
}

TEST_F(InfoTest, JsonHoldsCountsRangesAndCurvesByNode) {
    _folder.put("d.xml", document);
    const auto result = nlohmann::json::parse(info({"d.xml", "--format", "json"}).output);
    EXPECT_EQ(result["counts"]["keys"], 3);
    EXPECT_EQ(result["counts"]["animatedFields"], 2);
    EXPECT_EQ(result["frames"], nlohmann::json::parse(R"({"begin":2,"end":30})"));
    ASSERT_EQ(result["animations"].size(), 2U);
    EXPECT_EQ(result["animations"][0]["type"], "block");
    EXPECT_EQ(result["animations"][0]["active"], false);
    EXPECT_EQ(result["animations"][0]["curves"], 2);
    ASSERT_EQ(result["nodes"].size(), 1U);
    EXPECT_EQ(result["nodes"][0]["curves"][0],
              nlohmann::json::parse(
                  R"({"attribute":"translationX","curve":"21","keys":2,"frames":{"begin":2,"end":25.5}})"));
}

TEST_F(InfoTest, CurvesStandWithTheNodesThatTheyMoveInTheOrderOfTheScene) {
    _folder.put("d.xml", document);
    _folder.put("s.osg",
                "#OSG V1.0 \nDEF Root Node { core Group { } children [\n"
                "DEF Still Node { core Transform3D { } }\n"
                "DEF Arm Node { attachments [ AnimAttachment { objectIDs [ 31 ] fieldIDs [ 7 8 ] } ] "
                "core Transform3D { } } ] }\n");
    const ProgramRun run = info({"s.osg", "--animation", "d.xml"});
    EXPECT_THAT(run.output,
                HasSubstr("\nanimated nodes\n  Arm  translation XY  2 curves  3 keys  2 to 30\n"));
}

TEST_F(InfoTest, NothingIsNothing) {
    _folder.put("d.xml", "<AnimationPool/>");
    const ProgramRun run = info({"d.xml"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.output, HasSubstr("  curves     0\n"));
    EXPECT_THAT(run.output, ::testing::Not(HasSubstr("\nanimat")));
    EXPECT_EQ(nlohmann::json::parse(info({"d.xml", "--format", "json"}).output)["frames"], nullptr);
}

} // namespace
} // namespace ka::tools::testing
