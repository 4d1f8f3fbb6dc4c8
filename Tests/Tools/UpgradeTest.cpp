#include "MotionTesting.h"
#include "OlderAnimation.h"
#include "OlderScene.h"
#include "ProgramRun.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <gmock/gmock.h>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUtils.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/SceneFiles.h>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

namespace ka::tools::testing {

using namespace motion;
using namespace motion::testing;
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class UpgradeTest : public ::testing::Test {
  protected:
    void SetUp() override { osg::osgInit(0, nullptr); }

    std::string older(const std::string& name) const {
        return _folder.put(name, contentOf(std::string(KA_LIFE_DATA) + "/" + name));
    }

    ProgramRun upgrade(const std::string& file, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words{"upgrade", file, "-o", "new.osg", "--animation", "new.xml"};
        words.insert(words.end(), more.begin(), more.end());
        return runKaAnim(words, _folder.at(""));
    }

    nlohmann::json report(const std::string& file) const {
        return nlohmann::json::parse(upgrade(file, {"--format", "json"}).output);
    }

    TemporaryFolder _folder;
};

struct ReportRow {
    const char* file;
    /// nodes, clips, tracks, blocks, sequences, curves, points (keys)
    std::vector<int> found, made;
    int leftOut;
};

class UpgradeReportTest : public UpgradeTest, public ::testing::WithParamInterface<ReportRow> {};

TEST_P(UpgradeReportTest, SaysWhatBecameWhat) {
    const ReportRow& row = GetParam();
    older(row.file);
    const nlohmann::json document = report(row.file);
    const auto counts = [&document](const char* side, const char* last) {
        std::vector<int> values;
        for (const char* kind : {"nodes", "clips", "tracks", "blocks", "sequences", "curves", last})
            values.push_back(document[side][kind]);
        return values;
    };
    EXPECT_EQ(counts("found", "points"), row.found);
    EXPECT_EQ(counts("made", "keys"), row.made);
    EXPECT_EQ(document["leftOutCount"], row.leftOut);
    EXPECT_EQ(document["leftOut"].size(), static_cast<std::size_t>(row.leftOut));
}

// Counted by hand in the files.
INSTANTIATE_TEST_SUITE_P(
    Files, UpgradeReportTest,
    ::testing::Values(ReportRow{"one_curve.osg", {1, 0, 0, 1, 0, 1, 2}, {1, 0, 0, 1, 0, 1, 2}, 0},
                      ReportRow{"camera_and_clips.osg", {1, 2, 2, 3, 1, 3, 6}, {1, 2, 2, 3, 1, 3, 6}, 0},
                      ReportRow{"tangent_codes.osg", {1, 0, 0, 1, 0, 1, 8}, {1, 0, 0, 1, 0, 1, 8}, 0},
                      ReportRow{"left_out.osg", {2, 2, 0, 1, 0, 3, 6}, {2, 1, 0, 1, 0, 1, 2}, 5}),
    [](const auto& row) {
        const std::string file = row.param.file;
        return file.substr(0, file.find('.'));
    });

TEST_F(UpgradeTest, TellsNodeByNode) {
    older("camera_and_clips.osg");
    const nlohmann::json document = report("camera_and_clips.osg");
    EXPECT_EQ(document["camera"], "scene/camera");
    EXPECT_EQ(document["nodes"], nlohmann::json::parse(
                                     R"([{"path": "scene/camera", "blocks": 1, "curves": 1, "keys": 2},
                      {"path": "scene/figure", "blocks": 0, "curves": 2, "keys": 4}])"));
}

TEST_F(UpgradeTest, SaysWhatWasLeftOutAndWhy) {
    older("left_out.osg");
    const std::string text = upgrade("left_out.osg").output;
    for (const char* line : {"left out: clip 'ring': contains itself\n", "left out: clip '': is no clip\n",
                             "left out: clip 'misplaced': clips are read on the root only\n",
                             "left out: curve 'wobble': its node has no such attribute\n",
                             "left out: curve 'rotateX': names no existing scene node\n"})
        EXPECT_THAT(text, HasSubstr(line));
    EXPECT_EQ(upgrade("left_out.osg").code, 0);
    EXPECT_EQ(upgrade("left_out.osg", {"--strict"}).code, 1);
    older("one_curve.osg");
    EXPECT_EQ(upgrade("one_curve.osg", {"--strict"}).code, 0);
}

TEST_F(UpgradeTest, CountsPointsThatALaterOneReplaces) {
    _folder.put("twice.osg", R"(#OSG V1.0
        DEF box Node { core Transform3D { } attachments [ AnimationAttachment { blocks [ ] } ]
          children [ DEF lid Node { core Transform3D { } attachments [ AnimationAttachment { blocks [
            AnimationBlock { node USE lid curves [ AnimationCurve { attribute "rotateX" node USE lid points [
              AnimationControlPoint { position 0 0 }
              AnimationControlPoint { position 5 1 }
              AnimationControlPoint { position 5 2 } ] } ] } ] } ] } ] })");
    const ProgramRun run = upgrade("twice.osg");
    EXPECT_EQ(run.code, 0) << run.messages;
    EXPECT_THAT(run.output, HasSubstr("3 control points    became 2 keys\n"));
    EXPECT_THAT(run.output,
                HasSubstr("left out: 1 control point: a later one of the curve has the same frame"));
    EXPECT_EQ(upgrade("twice.osg", {"--strict"}).code, 1);
}

TEST_F(UpgradeTest, PutsTheCamerasAnimationWhereItIsAsked) {
    older("camera_and_clips.osg");
    const auto document = nlohmann::json::parse(
        upgrade("camera_and_clips.osg", {"--format", "json", "--camera", "figure"}).output);
    EXPECT_EQ(document["camera"], "scene/figure");
    // A transform has no focal length.
    EXPECT_EQ(document["leftOutCount"], 1);
    EXPECT_EQ(upgrade("camera_and_clips.osg", {"--camera", "nobody"}).code, 2);
}

TEST_F(UpgradeTest, LeavesNothingToUpgrade) {
    older("camera_and_clips.osg");
    upgrade("camera_and_clips.osg");
    EXPECT_THAT(contentOf(_folder.at("new.osg")), Not(HasSubstr("AnimationAttachment")));
    const ProgramRun again =
        runKaAnim({"upgrade", "new.osg", "-o", "newer.osg", "--animation", "newer.xml"}, _folder.at(""));
    EXPECT_EQ(again.code, 0);
    EXPECT_THAT(again.output, HasSubstr("0 curves            became 0 curves"));
}

TEST_F(UpgradeTest, GivesTheSameFilesOnEveryRun) {
    older("camera_and_clips.osg");
    upgrade("camera_and_clips.osg");
    const std::string scene = contentOf(_folder.at("new.osg"));
    const std::string document = contentOf(_folder.at("new.xml"));
    upgrade("camera_and_clips.osg");
    EXPECT_EQ(contentOf(_folder.at("new.osg")), scene);
    EXPECT_EQ(contentOf(_folder.at("new.xml")), document);
}

TEST_F(UpgradeTest, ShowsABarOnATerminalOnly) {
    older("one_curve.osg");
    EXPECT_EQ(upgrade("one_curve.osg").messages, "");
    const ProgramRun terminal =
        runShell("script -qec 'ka-anim upgrade one_curve.osg -o new.osg --animation new.xml' /dev/null",
                 _folder.at(""));
    EXPECT_EQ(terminal.code, 0);
    EXPECT_THAT(terminal.output, HasSubstr("upgrading ["));
    EXPECT_THAT(terminal.output, HasSubstr("100 %"));
}

TEST_F(UpgradeTest, RefusesInOneLineAndWritesNothing) {
    older("one_curve.osg");
    _folder.put("walk.bvh", "HIERARCHY");
    _folder.put("damaged.osg", "#OSG V1.0\nNode { core");
    struct Row {
        std::vector<std::string> words;
        int code;
        const char* part;
    };
    const std::vector<Row> rows{
        {{"none.osg", "-o", "a.osg", "--animation", "a.xml"}, 3, "none.osg: no such file"},
        {{"walk.bvh", "-o", "a.osg", "--animation", "a.xml"}, 3, "walk.bvh: not a scene (.osg)"},
        {{"damaged.osg", "-o", "a.osg", "--animation", "a.xml"}, 3, "damaged.osg:"},
        {{"one_curve.osg", "-o", "a.wrl", "--animation", "a.xml"}, 2, ".osg files, not a.wrl"},
        {{"one_curve.osg", "-o", "a.osg", "--animation", "a.osg"}, 2, ".xml files, not a.osg"},
        {{"one_curve.osg", "-o", "a.osg"}, 2, "--animation"},
        {{"one_curve.osg", "-o", "a.osg", "--animation", "none/a.xml"}, 4, "none"},
        {{"one_curve.osg", "-o", "none/a.osg", "--animation", "a.xml"}, 4, "none"},
        {{"one_curve.osg", "-o", "folder.osg", "--animation", "a.xml"}, 4, "folder.osg"}};
    std::filesystem::create_directory(_folder.at("folder.osg"));
    for (const Row& row : rows) {
        std::vector<std::string> words{"upgrade"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        const ProgramRun run = runKaAnim(words, _folder.at(""));
        EXPECT_EQ(run.code, row.code) << run.messages;
        EXPECT_TRUE(run.isOneLine()) << run.messages;
        EXPECT_THAT(run.messages, HasSubstr(row.part));
        EXPECT_FALSE(std::filesystem::exists(_folder.at("a.osg"))) << row.part;
        EXPECT_FALSE(std::filesystem::exists(_folder.at("a.xml"))) << row.part;
    }
}

/// An upgraded scene, opened from its files, against what the older scene's own file says.
class UpgradePlaybackTest : public UpgradeTest,
                            public ::testing::WithParamInterface<std::pair<const char*, ka_older::Shape>> {
  protected:
    static constexpr float tolerance = 1e-3F; // values span 50; documents hold six digits

    void readOlder(const std::string& path) {
        _older = osg::SceneFileHandler::the().read(path);
        ASSERT_NE(_older, osg::NullFC);
        osg::addRefCP(_older);
        for (const osg::NodePtr& node : nodesBelow(_older))
            _names[node.getFieldContainerId()] = nodeName(node);
    }

    void openUpgraded() {
        ProjectFiles files;
        files.file = _folder.at("new.osg");
        files.animation = _folder.at("new.xml");
        _upgraded = std::make_unique<Project>(files);
        for (const osg::NodePtr& node : nodesBelow(_upgraded->root()))
            _nodes[nodeName(node)] = node;
    }

    void TearDown() override {
        _upgraded.reset();
        osg::subRefCP(_older);
    }

    template <class Container>
    void playAndCompare(kaAnimationObject* object, const Container& older) {
        ASSERT_NE(object, nullptr);
        for (float frame = -3.5F; frame < object->getEnd() + 5.0F; frame += 0.5F) {
            kaAnimationController::the()->evaluateObject(object, frame, false);
            for (const auto& [address, value] : ka_older::evaluate(older, static_cast<long double>(frame)))
                ASSERT_NEAR(sceneValue(address), static_cast<float>(value), tolerance)
                    << address.second << " of " << _names[address.first] << " at frame " << frame;
        }
    }

    float sceneValue(const ka_older::Address& address) {
        kaAnimationManager* manager = kaAnimationManager::the();
        return kaAnimationUtils::getOSGFieldValue(
            manager->getField(_nodes[_names[address.first]], address.second));
    }

    osg::NodePtr _older;
    std::map<osg::UInt32, std::string> _names;
    std::map<std::string, osg::NodePtr> _nodes;
    std::unique_ptr<Project> _upgraded;
};

TEST_P(UpgradePlaybackTest, PlaysAsTheOlderContainersSayFrameByFrame) {
    osg::NodePtr scene = ka_older::makeScene(GetParam().second);
    osg::addRefCP(scene);
    ASSERT_TRUE(osg::SceneFileHandler::the().write(scene, _folder.at("old.osg")));
    osg::subRefCP(scene);
    const ProgramRun run = upgrade("old.osg");
    ASSERT_EQ(run.code, 0) << run.messages;
    readOlder(_folder.at("old.osg"));
    openUpgraded();

    osg::NodePtr top = topOf(_older);
    for (osg::UInt32 i = 0; i < top->getNChildren(); ++i) {
        const osg::NodePtr node = top->getChild(i);
        const auto objects = kaAnimationUtils::getAnimationObjects(_nodes[nodeName(node)]);
        ASSERT_EQ(objects.size(), 1U);
        playAndCompare(objects.front(), ka_older::attachmentOf(node)->getBlocks()[0]);
    }
    std::map<std::string, kaAnimationStrip*> clips;
    for (kaAnimationStrip* clip : kaAnimationManager::the()->getSceneStrips())
        clips[clip->getName()] = clip;
    ASSERT_EQ(clips.size(), GetParam().second.clips);
    for (const osg::AnimationClipPtr& clip : ka_older::attachmentOf(top)->getClips())
        playAndCompare(clips[clip->getName()], clip);
}

INSTANTIATE_TEST_SUITE_P(Shapes, UpgradePlaybackTest,
                         ::testing::Values(std::pair("one_curve", ka_older::Shape{1, 1, 2, 0, 0, 1}),
                                           std::pair("nine_curves", ka_older::Shape{1, 9, 20, 0, 0, 2}),
                                           std::pair("clips", ka_older::Shape{5, 3, 6, 3, 0, 3}),
                                           std::pair("nested_clips", ka_older::Shape{4, 4, 5, 2, 6, 4}),
                                           std::pair("thousand_nodes", ka_older::Shape{1000, 2, 3, 2, 4, 5})),
                         [](const auto& row) { return std::string(row.param.first); });

} // namespace
} // namespace ka::tools::testing
