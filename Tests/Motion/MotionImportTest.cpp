#include "MotionTesting.h"

#include <cmath>
#include <gmock/gmock.h>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaControlPoint2D.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/MotionImport.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <random>

namespace ka::motion {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

/// A project of the smallest possible file, into which motions of the test's own making are then imported.
class MotionImportTest : public ::testing::Test {
  protected:
    static std::unique_ptr<Project> emptyProject() {
        const testing::TemporaryFolder folder;
        ProjectFiles files;
        files.file = folder.put(
            "empty.bvh",
            "HIERARCHY ROOT empty\n{ OFFSET 0 0 0 CHANNELS 0 }\nMOTION\nFrames: 0\nFrame Time: 1\n");
        return std::make_unique<Project>(files);
    }

    ImportReport import(const Motion& motion, double fps = 25.0) {
        ImportOptions options;
        options.framesPerSecond = fps;
        return importMotion(motion, _project->root(), options);
    }

    static MotionNode node(const std::string& name, std::int32_t parent) {
        MotionNode made;
        made.name = name;
        made.parent = parent;
        return made;
    }

    static MotionTrack translated(std::uint32_t which, Interpolation interpolation,
                                  const std::vector<MotionKey<3>>& keys) {
        MotionTrack track;
        track.node = which;
        track.translation.interpolation = interpolation;
        track.translation.keys = keys;
        return track;
    }

    static float valueAt(const std::string& label, float frame) {
        float value = std::nanf("");
        const CurveList curves = chooseCurves(allCurves(), {label});
        EXPECT_TRUE(kaAnimationController::the()->computeCurveValue(curves.at(0), frame, value))
            << label << " " << frame;
        return value;
    }

    std::unique_ptr<Project> _project = emptyProject();
};

TEST_F(MotionImportTest, MakesOneClipForEachTakeWithItsBlocksOnTracks) {
    Motion motion;
    motion.nodes = {node("hip", MotionNode::noParent), node("leg", 0)};
    const std::vector<MotionKey<3>> keys{{0, {0, 0, 0}, {}, {}}, {1, {1, 2, 3}, {}, {}}};
    for (const char* name : {"walk", "run", "rest"})
        motion.takes.push_back(
            {name, {translated(0, Interpolation::Linear, keys), translated(1, Interpolation::Linear, keys)}});
    const ImportReport report = import(motion);
    EXPECT_EQ(report.clips, 3U);
    EXPECT_EQ(report.blocks, 6U);
    EXPECT_EQ(report.curves, 18U);
    EXPECT_EQ(report.keys, 36U);
    ASSERT_THAT(kaAnimationManager::the()->getSceneStrips(), SizeIs(3));
    for (const kaAnimationStrip* clip : kaAnimationManager::the()->getSceneStrips()) {
        EXPECT_EQ(clip->getBegin(), 0.0F);
        EXPECT_EQ(clip->getEnd(), 25.0F);
        // The blocks lie side by side in time, so each needs a track of its own.
        ASSERT_THAT(clip->getStreaks(), SizeIs(2));
        for (const auto& [number, track] : clip->getStreaks())
            EXPECT_THAT(track->getUnits(), SizeIs(1));
    }
}

TEST_F(MotionImportTest, ListsEachBlockOnItsNode) {
    Motion motion;
    motion.nodes = {node("hip", MotionNode::noParent)};
    motion.takes = {
        {"walk", {translated(0, Interpolation::Linear, {{0, {0, 0, 0}, {}, {}}, {1, {1, 1, 1}, {}, {}}})}}};
    import(motion);
    const osg::NodePtr placed = _project->placedNodes().back();
    ASSERT_EQ(nodeName(placed), "hip");
    const auto objects = kaAnimationUtils::getAnimationObjects(placed);
    ASSERT_THAT(objects, SizeIs(1));
    EXPECT_EQ(objects[0]->getTypeID(), KA_TYPE_UNIT);
    EXPECT_EQ(objects[0]->getName(), "hip");
    EXPECT_EQ(static_cast<kaAnimationUnit*>(objects[0])->getNodeID(), placed.getFieldContainerId());
}

TEST_F(MotionImportTest, StraightAndSteppedSegmentsAreWhatTheSourceIs) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent), node("b", MotionNode::noParent)};
    const std::vector<MotionKey<3>> keys{
        {0, {0, 10, 0}, {}, {}}, {2, {4, 30, 0}, {}, {}}, {3, {0, 30, 0}, {}, {}}};
    motion.takes = {
        {"t", {translated(0, Interpolation::Linear, keys), translated(1, Interpolation::Step, keys)}}};
    const ImportReport report = import(motion, 30.0);
    EXPECT_FLOAT_EQ(valueAt("a.translationX", 15), 1);
    EXPECT_FLOAT_EQ(valueAt("a.translationY", 45), 25);
    EXPECT_FLOAT_EQ(valueAt("a.translationX", 75), 2);
    EXPECT_EQ(valueAt("b.translationX", 59.9F), 0);
    EXPECT_EQ(valueAt("b.translationX", 60), 4);
    EXPECT_LT(report.worstDifference, 1e-6);
    EXPECT_TRUE(report.faults.empty());
}

TEST_F(MotionImportTest, ValuesTooSmallForThePlayerAreNoDifferenceToTheSource) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent)};
    motion.takes = {
        {"t", {translated(0, Interpolation::Linear, {{0, {0, 0, 0}, {}, {}}, {1, {9e-7, 0, 0}, {}, {}}})}}};
    EXPECT_EQ(import(motion).worstDifference, 0.0);
}

TEST_F(MotionImportTest, HandlesOfAStraightSegmentStandHalfWay) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent)};
    motion.takes = {
        {"t", {translated(0, Interpolation::Linear, {{0, {0, 0, 0}, {}, {}}, {2, {4, 0, 0}, {}, {}}})}}};
    import(motion);
    const auto points = chooseCurves(allCurves(), {"a.translationX"}).at(0)->getPoints();
    const kaControlPoint2D* first = points.begin()->second;
    EXPECT_EQ(first->getTangentType(), kaControlPoint2D::TANGENT_USER);
    EXPECT_EQ(first->getOutTangent()->getPosition(), osg::Pnt2f(25, 2));
    EXPECT_EQ(points.rbegin()->second->getInTangent()->getPosition(), osg::Pnt2f(25, 2));
}

/// The Hermite spline of the channel at a time, straight from its definition.
double hermite(const MotionChannel<3>& channel, std::size_t axis, double time) {
    std::size_t i = 0;
    while (i + 2 < channel.keys.size() && channel.keys[i + 1].time <= time)
        ++i;
    const auto &a = channel.keys[i], &b = channel.keys[i + 1];
    const double d = b.time - a.time, t = (time - a.time) / d;
    return (2 * t * t * t - 3 * t * t + 1) * a.value[axis] +
           d * (t * t * t - 2 * t * t + t) * a.outTangent[axis] +
           (-2 * t * t * t + 3 * t * t) * b.value[axis] + d * (t * t * t - t * t) * b.inTangent[axis];
}

TEST_F(MotionImportTest, ACubicSplineIsSampledToAHundredThousandthOfItsRange) {
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> value(-5, 5), slope(-20, 20), gap(0.2, 1.5);
    std::vector<MotionKey<3>> keys;
    double time = 0.1;
    for (int i = 0; i < 40; ++i, time += gap(random))
        keys.push_back({std::round(time * 100) / 100,
                        {value(random), value(random), value(random)},
                        {slope(random), slope(random), slope(random)},
                        {slope(random), slope(random), slope(random)}});
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent)};
    motion.takes = {{"t", {translated(0, Interpolation::Cubic, keys)}}};
    const ImportReport report = import(motion);
    EXPECT_TRUE(report.faults.empty());
    const MotionChannel<3>& channel = motion.takes[0].tracks[0].translation;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const std::string label = std::string("a.translation") + "XYZ"[axis];
        double low = 1e9, high = -1e9, worst = 0;
        const auto begin = static_cast<float>(keys.front().time * 25),
                   end = static_cast<float>(keys.back().time * 25);
        for (int i = 1; i < 4000; ++i) {
            const float frame = begin + (end - begin) * static_cast<float>(i) / 4000.0F;
            const double wanted = hermite(channel, axis, static_cast<double>(frame) / 25);
            low = std::min(low, wanted);
            high = std::max(high, wanted);
            worst = std::max(worst, std::abs(static_cast<double>(valueAt(label, frame)) - wanted));
        }
        EXPECT_LT(worst, 1e-5 * (high - low)) << label;
    }
}

TEST_F(MotionImportTest, RotationsOfEveryFormGiveThePoseOfTheSource) {
    std::mt19937_64 random(12);
    std::normal_distribution<double> any;
    for (const Interpolation interpolation :
         {Interpolation::Linear, Interpolation::Cubic, Interpolation::Step}) {
        _project.reset();
        _project = emptyProject();
        Motion motion;
        motion.nodes = {node("a", MotionNode::noParent)};
        MotionTrack track;
        track.quaternion.interpolation = interpolation;
        for (int i = 0; i < 12; ++i) {
            const Quaternion q = normalized({any(random), any(random), any(random), any(random)});
            track.quaternion.keys.push_back({i * 0.8, {q.x, q.y, q.z, q.w}, {}, {}});
        }
        motion.takes = {{"t", {track}}};
        const ImportReport report = import(motion);
        EXPECT_LE(report.worstRotation, report.unreachedSegments == 0 ? 0.01 : 180.0);
        const auto objects = _project->playable("");
        for (const MotionKey<4>& key : track.quaternion.keys) {
            evaluate(objects, static_cast<float>(key.time * 25));
            const NodePose pose = readPose(_project->placedNodes()).back();
            const Vec3 angles{static_cast<double>(pose.rotation[0]), static_cast<double>(pose.rotation[1]),
                              static_cast<double>(pose.rotation[2])};
            const Matrix3 wanted =
                matrixFromQuaternion({key.value[0], key.value[1], key.value[2], key.value[3]});
            EXPECT_LT(angleBetween(wanted, matrixFromAngles(angles, sceneOrder)), 1e-3);
        }
    }
}

TEST_F(MotionImportTest, AKeyAloneStillGivesItsValue) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent)};
    motion.takes = {{"t", {translated(0, Interpolation::Linear, {{1, {7, 8, 9}, {}, {}}})}}};
    import(motion);
    evaluate(_project->playable(""), 25);
    EXPECT_THAT(readPose(_project->placedNodes()).back().translation, ElementsAre(7, 8, 9));
}

TEST_F(MotionImportTest, RestTransformsStandBeforeAnythingPlays) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent), node("b", 0)};
    motion.nodes[0].translation = {1, 2, 3};
    motion.nodes[0].rotation = quaternionFromMatrix(matrixFromAngles({0, 0, 90}, sceneOrder));
    motion.nodes[0].scale = {2, 2, 2};
    motion.nodes[1].translation = {1, 0, 0};
    import(motion);
    const auto poses = readPose(_project->placedNodes());
    ASSERT_EQ(poses.back().name, "b");
    EXPECT_NEAR(static_cast<double>(poses.back().position[0]), 1, 1e-6);
    EXPECT_NEAR(static_cast<double>(poses.back().position[1]), 4, 1e-6);
    EXPECT_NEAR(static_cast<double>(poses.back().position[2]), 3, 1e-6);
}

TEST_F(MotionImportTest, NamesBecomeLatin1AndSayWhenTheyCannot) {
    Motion motion;
    motion.nodes = {node("Caf\xC3\xA9", MotionNode::noParent), node("\xE9\xAA\xA8", MotionNode::noParent)};
    const ImportReport report = import(motion);
    EXPECT_THAT(report.notes, ElementsAre(HasSubstr("outside Latin-1")));
    const auto nodes = _project->placedNodes();
    EXPECT_EQ(nodeName(nodes[nodes.size() - 2]), "Caf\xC3\xA9");
    EXPECT_EQ(nodeName(nodes.back()), "?");
}

TEST_F(MotionImportTest, ThePlayableObjectIsTheFirstClipByNameUnlessOneIsNamed) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent)};
    for (const auto& [name, value] : {std::pair("walk", 1.0), std::pair("run", 2.0)})
        motion.takes.push_back({name,
                                {translated(0, Interpolation::Linear,
                                            {{0, {value, 0, 0}, {}, {}}, {1, {value, 0, 0}, {}, {}}})}});
    import(motion);
    EXPECT_EQ(_project->playable("").at(0)->getName(), "run");
    const auto walk = _project->playable("walk");
    EXPECT_EQ(_project->playable(std::to_string(walk.at(0)->getId())), walk);
    evaluate(walk, 10);
    EXPECT_EQ(readPose(_project->placedNodes()).back().translation[0], 1.0F);
    EXPECT_EQ(testing::failureOf([&] { _project->playable("fly"); }), "no animation is called 'fly'");
}

TEST_F(MotionImportTest, NothingStaysBehindAProject) {
    Motion motion;
    motion.nodes = {node("a", MotionNode::noParent)};
    motion.takes = {
        {"t", {translated(0, Interpolation::Linear, {{0, {1, 0, 0}, {}, {}}, {1, {2, 0, 0}, {}, {}}})}}};
    import(motion);
    EXPECT_FALSE(kaAnimationManager::the()->getObjects().empty());
    _project.reset();
    EXPECT_TRUE(kaAnimationManager::the()->getObjects().empty());
    EXPECT_TRUE(kaAnimationManager::the()->getFields().empty());
}

} // namespace
} // namespace ka::motion
