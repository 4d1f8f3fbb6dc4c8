#include "MotionTesting.h"
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>

namespace ka::tools::testing {

using namespace motion;
using namespace motion::testing;
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

/// A door that opens by 90 degrees in 50 frames, next to things that stand still.
const char* const olderHouse = R"(#OSG V1.0
DEF house Node {
  core Group { }
  children [
    DEF door Node {
      core Transform3D { }
      attachments [ AnimationAttachment { blocks [ AnimationBlock {
        name "open"
        node USE door
        curves [ AnimationCurve {
          attribute "rotateY"
          node USE door
          points [
            AnimationControlPoint { position 0 0, tangentType 4 }
            AnimationControlPoint { position 50 90, tangentType 4 }
          ]
        } ]
      } ] } ]
    }
    DEF gate_left Node { core Transform3D { } }
    DEF gate_right Node { core Transform3D { } }
    DEF gate_room Node { core Group { } children [ DEF twin Node { core Transform3D { } } ] }
    DEF hall Node { core Group { } children [ DEF twin Node { core Transform3D { } } ] }
  ]
}
)";

/// Two joints, the first of which moves along x.
const char* const model = "HIERARCHY ROOT mover\n{ OFFSET 0 0 0 CHANNELS 1 Xposition\n"
                          "JOINT tail { OFFSET 0 1 0 CHANNELS 0 } }\n"
                          "MOTION\nFrames: 3\nFrame Time: 0.04\n0\n1\n2\n";

class CopyPasteCommandTest : public ::testing::Test {
  protected:
    void SetUp() override {
        _folder.put("older.osg", olderHouse);
        _folder.put("move.bvh", model);
        ASSERT_EQ(run("upgrade older.osg -o house.osg --animation house.xml").code, 0);
    }

    ProgramRun run(const std::string& line) const { return runShell("ka-anim " + line, _folder.at("")); }

    /// @param line  without the outputs, which are new.osg and new.xml.
    ProgramRun runInto(const std::string& line) const {
        return run(line + " -o new.osg --animation-out new.xml");
    }

    std::unique_ptr<Project> open(const std::string& scene, const std::string& document) const {
        ProjectFiles files;
        files.file = _folder.at(scene);
        files.animation = _folder.at(document);
        return std::make_unique<Project>(files);
    }

    static std::vector<kaAnimationObject*> animationOf(const Project& project, const std::string& node) {
        return kaAnimationUtils::getAnimationObjects(chosenNode(project.root(), node));
    }

    /// The node has one block of one curve, which animates this node, by these values on three frames.
    static void expectOpens(const Project& project, const std::string& name) {
        const auto objects = animationOf(project, name);
        ASSERT_THAT(objects, SizeIs(1)) << name;
        EXPECT_EQ(objects.front()->getName(), "open");
        const osg::NodePtr node = chosenNode(project.root(), name);
        EXPECT_EQ(static_cast<kaAnimationUnit*>(objects.front())->getNodeID(), node.getFieldContainerId());
        ASSERT_THAT(objects.front()->getCurves(), SizeIs(1));
        kaAnimationField* field =
            kaAnimationManager::the()->getField(objects.front()->getCurves().front()->getField());
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->attribute, "rotationY");
        EXPECT_EQ(field->nodeID, node.getFieldContainerId());
        for (const auto& [frame, angle] : {std::pair(0.0F, 0.0F), {25.0F, 45.0F}, {50.0F, 90.0F}}) {
            evaluate(objects, frame);
            EXPECT_NEAR(kaAnimationUtils::getOSGFieldValue(field), angle, 1e-4F) << name;
        }
    }

    static std::size_t curveCount() {
        std::size_t count = 0;
        for (const auto& [id, object] : kaAnimationManager::the()->getObjects())
            count += object->getTypeID() == KA_TYPE_CURVE ? 1 : 0;
        return count;
    }

    TemporaryFolder _folder;
};

TEST_F(CopyPasteCommandTest, CopyTakesTheAnimationToAnotherNodeOfTheScene) {
    const ProgramRun copied = runInto("copy house.osg --animation house.xml --from door --to gate_left");
    EXPECT_EQ(copied.code, 0);
    EXPECT_EQ(copied.messages, "ka-anim: 1 curve of 'house/door' went to 1 node\n");
    const auto project = open("new.osg", "new.xml");
    expectOpens(*project, "door");
    expectOpens(*project, "gate_left");
    EXPECT_THAT(animationOf(*project, "gate_right"), SizeIs(0));
    EXPECT_EQ(curveCount(), 2U);
}

TEST_F(CopyPasteCommandTest, APatternTakesInEveryNodeThatCanAndPassesTheOthersBy) {
    const ProgramRun copied = runInto("copy house.osg --animation house.xml --from door --to 'gate*'");
    EXPECT_EQ(copied.code, 0);
    EXPECT_THAT(copied.messages, HasSubstr("passed by: 'house/gate_room' is of another kind"));
    EXPECT_THAT(copied.messages, HasSubstr("went to 2 nodes"));
    const auto project = open("new.osg", "new.xml");
    for (const char* name : {"door", "gate_left", "gate_right"})
        expectOpens(*project, name);
    EXPECT_EQ(curveCount(), 3U);
}

TEST_F(CopyPasteCommandTest, ThePathTellsNodesOfOneNameApart) {
    EXPECT_EQ(runInto("copy house.osg --animation house.xml --from door --to hall/twin").code, 0);
    const auto project = open("new.osg", "new.xml");
    expectOpens(*project, "house/hall/twin");
    EXPECT_THAT(animationOf(*project, "gate_room/twin"), SizeIs(0));
}

/// Both files hold the same ids, which must not get in each other's way.
TEST_F(CopyPasteCommandTest, PasteBringsAnimationOverFromASceneOfTheSameIds) {
    const ProgramRun pasted =
        runInto("paste house.osg --animation house.xml --source house.osg --source-animation house.xml "
                "--from door --to gate_right");
    EXPECT_EQ(pasted.code, 0) << pasted.messages;
    const auto project = open("new.osg", "new.xml");
    expectOpens(*project, "door");
    expectOpens(*project, "gate_right");
    EXPECT_EQ(curveCount(), 2U);
}

TEST_F(CopyPasteCommandTest, PasteLeavesNothingOfTheSourceBehind) {
    _folder.put("empty.osg", "#OSG V1.0\nDEF box Node { core Transform3D { } }\n");
    EXPECT_EQ(
        runInto("paste empty.osg --source house.osg --source-animation house.xml --from door --to box").code,
        0);
    const auto project = open("new.osg", "new.xml");
    expectOpens(*project, "box");
    EXPECT_THAT(kaAnimationManager::the()->getSceneUnits(), SizeIs(1));
    EXPECT_EQ(curveCount(), 1U);
    EXPECT_EQ(kaAnimationManager::the()->getFields().size(),
              kaAnimationUtils::getAnimationFields(chosenNode(project->root(), "box")).size());
}

TEST_F(CopyPasteCommandTest, PasteTakesAModelForASource) {
    const ProgramRun pasted = runInto("paste older.osg --source move.bvh --from mover --to gate_left");
    EXPECT_EQ(pasted.code, 0) << pasted.messages;
    const auto project = open("new.osg", "new.xml");
    const auto objects = animationOf(*project, "gate_left");
    ASSERT_THAT(objects, SizeIs(1));
    // Straight between the keys, which their handles see to.
    for (const auto& [frame, x] : {std::pair(0.0F, 0.0F), {0.25F, 0.25F}, {1.0F, 1.0F}, {1.75F, 1.75F}}) {
        evaluate(objects, frame);
        EXPECT_NEAR(kaAnimationUtils::getOSGFieldValue(kaAnimationManager::the()->getField(
                        chosenNode(project->root(), "gate_left"), "translationX")),
                    x, 1e-4F);
    }
}

TEST_F(CopyPasteCommandTest, TheSameLineGivesTheSameFiles) {
    const std::string line = "copy house.osg --animation house.xml --from door --to 'gate*'";
    runInto(line);
    const std::string scene = contentOf(_folder.at("new.osg")), document = contentOf(_folder.at("new.xml"));
    runInto(line);
    EXPECT_EQ(contentOf(_folder.at("new.osg")), scene);
    EXPECT_EQ(contentOf(_folder.at("new.xml")), document);
}

struct RefusalRow {
    const char* line;
    int code;
    const char* part;
};

TEST_F(CopyPasteCommandTest, RefusalsAreOneLineAndWriteNothing) {
    const std::string house = "house.osg --animation house.xml ";
    const std::vector<RefusalRow> rows{
        {"copy %--from nobody --to gate_left", 2, "no node is called 'nobody'"},
        {"copy %--from door --to nobody", 2, "no node is called 'nobody'"},
        {"copy %--from door --to 'x*'", 2, "no node is called 'x*'"},
        {"copy %--from door --to twin", 2, "'twin' is the name of 2 nodes: house/gate_room/twin, "},
        {"copy %--from twin --to door", 2, "'twin' is the name of 2 nodes"},
        {"copy %--from gate_left --to door", 2, "'house/gate_left' has no animation to copy"},
        {"copy %--from door --to door", 2, "'door' is where the animation comes from"},
        {"copy %--from door --to gate_room", 2, "'house/gate_room' is of another kind than 'house/door'"},
        {"copy %--from door --to 'h*'", 2, "none of the 2 nodes that match 'h*' can take the animation"},
        {"copy house.osg --from door --to gate_left", 2, "'house/door' has no animation to copy"},
        {"copy none.osg --from door --to gate_left", 3, "none.osg: no such file"},
        {"copy house.osg --animation none.xml --from door --to gate_left", 3, "none.xml: no such file"},
        {"copy house.osg --animation house.osg --from door --to gate_left", 3, "not an animation document"},
        {"paste %--source move.bvh --from mover --to door", 2, "'house/door' has no field for translationX"},
        {"paste %--source move.bvh --from tail --to door", 2, "has no animation to copy"},
        {"paste %--source none.bvh --from tail --to door", 3, "none.bvh: no such file"},
        {"paste none.osg --source move.bvh --from mover --to door", 3, "none.osg: no such file"},
        {"paste %--source move.bvh --source-animation house.xml --from mover --to door", 2, "only a scene"}};
    for (const RefusalRow& row : rows) {
        std::string line = row.line;
        if (const std::size_t at = line.find('%'); at != line.npos)
            line.replace(at, 1, house);
        const ProgramRun refused = runInto(line);
        EXPECT_EQ(refused.code, row.code) << line << "\n" << refused.messages;
        EXPECT_TRUE(refused.isOneLine()) << line << "\n" << refused.messages;
        EXPECT_THAT(refused.messages, HasSubstr(row.part));
        EXPECT_FALSE(std::filesystem::exists(_folder.at("new.osg"))) << line;
        EXPECT_FALSE(std::filesystem::exists(_folder.at("new.xml"))) << line;
    }
    EXPECT_EQ(run("copy " + house + "--from door --to gate_left -o none/a.osg --animation-out a.xml").code,
              4);
}

TEST_F(CopyPasteCommandTest, ANodeThatIsPassedByStaysAsItWas) {
    _folder.put("mixed.osg", "#OSG V1.0\nDEF top Node { core Group { } children [\n"
                             "  DEF part_a Node { core Transform3D { } }\n"
                             "  DEF part_b Node { core ComponentTransform { } }\n] }\n");
    const ProgramRun pasted = runInto("paste mixed.osg --source move.bvh --from mover --to 'part*'");
    ASSERT_EQ(pasted.code, 0) << pasted.messages;
    EXPECT_THAT(pasted.messages, HasSubstr("passed by: 'top/part_b' "));
    const auto project = open("new.osg", "new.xml");
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(chosenNode(project->root(), "part_b")), osg::NullFC);
}

} // namespace
} // namespace ka::tools::testing
