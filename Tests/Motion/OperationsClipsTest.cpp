#include "Impatient.h"
#include "MotionTesting.h"
#include "OperationsCurve.h"
#include "operations/CurveEdit.h"
#include "operations/MergedCurve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/Loop.h>
#include <kaMotion/Mirror.h>
#include <kaMotion/MotionImport.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaMotion/Retarget.h>
#include <map>

namespace ka::motion {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::Impatient;

/// A trunk with two arms and a tip on each, in a scene of its own.
struct Figure {
    double size = 1.0;
    std::string prefix;
    Quaternion leftRest{}, rightRest{}; ///< of the arms
    Vec3 leftTip{2, 0, 0}, rightTip{-2, 0, 0};

    Motion motion() const {
        Motion made;
        const auto add = [&](const std::string& name, int parent, const Vec3& at, const Quaternion& rest) {
            MotionNode node;
            node.name = prefix + name;
            node.parent = parent;
            node.translation = {size * at[0], size * at[1], size * at[2]};
            node.rotation = rest;
            made.nodes.push_back(node);
        };
        add("Hips", -1, {0, 3, 0}, {});
        add("LeftArm", 0, {1, 1, 0}, leftRest);
        add("LeftTip", 1, leftTip, {});
        add("RightArm", 0, {-1, 1, 0}, rightRest);
        add("RightTip", 3, rightTip, {});
        return made;
    }
};

MotionTrack turning(std::uint32_t node, const std::function<Vec3(double)>& angles) {
    MotionTrack track;
    track.node = node;
    for (int i = 0; i <= 20; ++i)
        track.angles.keys.push_back({i / 25.0, angles(i), {}, {}});
    return track;
}

/// The trunk walks and turns, the arms swing differently.
MotionTake swinging() {
    MotionTake take;
    take.name = "swing";
    MotionTrack hips = turning(0, [](double f) { return Vec3{2 * f, f, -f}; });
    for (int i = 0; i <= 20; ++i)
        hips.translation.keys.push_back({i / 25.0, {0.2 * i, 3 + 0.05 * i, 0.1 * i}, {}, {}});
    take.tracks = {hips,
                   turning(1,
                           [](double f) {
                               return Vec3{3 * f, 10 + f, 5 * f};
                           }),
                   turning(3, [](double f) {
                       return Vec3{-f, 2 * f, 20 - 4 * f};
                   })};
    return take;
}

class ClipsTest : public ::testing::Test {
  protected:
    void open(const Figure& figure, const std::vector<MotionTake>& takes) {
        _project.reset();
        ProjectFiles files;
        files.file =
            _folder.put("empty.bvh", "HIERARCHY ROOT empty\n{ OFFSET 0 0 0 CHANNELS 0 }\nMOTION\nFrames: "
                                     "0\nFrame Time: 1\n");
        _project = std::make_unique<Project>(files);
        Motion motion = figure.motion();
        motion.takes = takes;
        importMotion(motion, _project->root(), ImportOptions());
    }

    std::map<std::string, Vec3> positionsAt(float frame, const std::string& clip = "") const {
        evaluate(_project->playable(clip), frame);
        std::map<std::string, Vec3> all;
        for (const NodePose& pose : readPose(_project->placedNodes()))
            all[pose.name] = {static_cast<double>(pose.position[0]), static_cast<double>(pose.position[1]),
                              static_cast<double>(pose.position[2])};
        return all;
    }

    /// That the two sides of a figure have changed places, at every frame.
    void expectMirrored(const Figure& figure) {
        open(figure, {swinging()});
        std::vector<std::map<std::string, Vec3>> before;
        for (int frame = 0; frame <= 20; ++frame)
            before.push_back(positionsAt(static_cast<float>(frame)));
        evaluateRest(figure);
        mirror(allCurves(), _project->root(), {});
        for (int frame = 0; frame <= 20; ++frame) {
            const auto after = positionsAt(static_cast<float>(frame));
            for (const auto& [one, other] :
                 {std::pair("LeftTip", "RightTip"), std::pair("RightTip", "LeftTip"),
                  std::pair("Hips", "Hips"), std::pair("LeftArm", "RightArm")}) {
                const Vec3 &was = before[static_cast<std::size_t>(frame)].at(one), &is = after.at(other);
                EXPECT_NEAR(is[0], -was[0], 2e-3) << one << " " << frame;
                EXPECT_NEAR(is[1], was[1], 2e-3) << one << " " << frame;
                EXPECT_NEAR(is[2], was[2], 2e-3) << one << " " << frame;
            }
        }
    }

    /// Playing has moved the scene; the same scene anew rests.
    void evaluateRest(const Figure& figure) { open(figure, {swinging()}); }

    static Keys keysOf(const std::string& label, const std::string& clip = "") {
        MotionSelection selection;
        if (!clip.empty())
            selection.clips = {clip};
        selection.curves = {label};
        return plainKeys(*selectedCurves(selection).front());
    }

    testing::TemporaryFolder _folder;
    std::unique_ptr<Project> _project;
};

TEST_F(ClipsTest, MirroringExchangesTheSidesOfAFigureThatIsItsOwnImage) {
    expectMirrored({});
}

TEST_F(ClipsTest, MirroringWorksWhereAxesAreNoImagesOfEachOther) {
    Figure figure;
    figure.rightRest = {0, 0, 1, 0}; // half a turn about Z: the same place by another road
    figure.rightTip = {2, 0, 0};
    expectMirrored(figure);
}

TEST_F(ClipsTest, TwiceMirroredIsAsBefore) {
    open({}, {swinging()});
    const Keys before = keysOf("LeftArm.rotationZ");
    mirror(allCurves(), _project->root(), {});
    EXPECT_NE(keysOf("LeftArm.rotationZ")[3].y, before[3].y);
    const OperationReport report = mirror(allCurves(), _project->root(), {});
    EXPECT_TRUE(isSame(keysOf("LeftArm.rotationZ"), before));
    EXPECT_EQ(report.measures.front().value, 1.0);
    EXPECT_TRUE(report.notes.empty());
}

TEST(MirroredName, FindsTheOtherSide) {
    const MirrorOptions options;
    for (const auto& [one, other] :
         std::vector<std::pair<std::string, std::string>>{{"LeftArm", "RightArm"},
                                                          {"mixamorig:RightHand", "mixamorig:LeftHand"},
                                                          {"arm_L", "arm_R"},
                                                          {"foot.r", "foot.l"},
                                                          {"l_leg", "r_leg"},
                                                          {"Spine", "Spine"},
                                                          {"_Lamp", "_Lamp"}}) {
        EXPECT_EQ(mirroredName(one, options), other);
        EXPECT_EQ(mirroredName(other, options), one);
    }
}

TEST_F(ClipsTest, ALoopMeetsInValueAndSlopeAndIsTheSameBeforeTheSeam) {
    open({}, {swinging()});
    const Keys before = keysOf("LeftArm.rotationX");
    LoopOptions options;
    options.seam = 8.0;
    const OperationReport report = loop(allCurves(), _project->root(), options);
    for (const kaAnimationCurve2D* curve : allCurves()) {
        const Keys keys = plainKeys(*curve);
        EXPECT_NEAR(keys.front().y, keys.back().y, 1e-5) << curveLabel(curve);
        const PlainKey &first = keys.front(), &last = keys.back();
        EXPECT_NEAR((first.outY - first.y) / (first.outX - first.x),
                    (last.y - last.inY) / (last.x - last.inX), 1e-3)
            << curveLabel(curve);
    }
    const Keys after = keysOf("LeftArm.rotationX");
    for (double frame = 0; frame <= 12; frame += 0.25)
        EXPECT_NEAR(testing::slowValue(before, frame), testing::slowValue(after, frame), 1e-4) << frame;
    EXPECT_EQ(report.measures[0].where, "LeftArm.rotationZ");
    EXPECT_NEAR(report.measures[0].value, 100.0, 1e-3);
}

TEST_F(ClipsTest, ALoopKeepsOrTakesOutTheWayOfTheRoot) {
    open({}, {swinging()});
    LoopOptions options;
    options.rootMotion = RootMotion::Kept;
    loop(allCurves(), _project->root(), options);
    EXPECT_NEAR(keysOf("Hips.translationX").back().y, 4.0F, 1e-5);
    options.rootMotion = RootMotion::TakenOut;
    loop(allCurves(), _project->root(), options);
    for (const PlainKey& key : keysOf("Hips.translationX"))
        EXPECT_NEAR(key.y, 0.0F, 1e-4) << key.x;
    EXPECT_THAT(testing::failureOf([&] {
                    LoopOptions longer;
                    longer.seam = 21;
                    loop(allCurves(), _project->root(), longer);
                }),
                HasSubstr("20 frames"));
}

TEST_F(ClipsTest, WholeTurnsNeedNoSeam) {
    MotionTake take;
    take.name = "spin";
    take.tracks = {turning(0, [](double f) { return Vec3{0, 0, 18 * f}; })};
    open({}, {take});
    const Keys before = keysOf("Hips.rotationZ");
    loop(allCurves(), _project->root(), {});
    EXPECT_NEAR(keysOf("Hips.rotationZ").back().y, 360.0F, 1e-3);
    EXPECT_EQ(before.back().y, 360.0F);
}

TEST(MergedCurve, PassesOverFromOneToTheNext) {
    const Keys one = testing::straightKeys(11, 1.0, [](double) { return 2.0; });
    const Keys other = testing::straightKeys(11, 1.0, [](double) { return 6.0; });
    const Keys merged = mergedCurve({one, other}, {{0, 10}, {0, 10}}, 4.0, false);
    EXPECT_EQ(merged.back().x, 16.0F);
    EXPECT_NEAR(testing::slowValue(merged, 3.0), 2.0, 1e-5);
    EXPECT_NEAR(testing::slowValue(merged, 8.0), 4.0, 1e-4); // the middle of the fade
    EXPECT_NEAR(testing::slowValue(merged, 7.0), 2.0 + 4.0 * 0.15625, 1e-3);
    EXPECT_NEAR(testing::slowValue(merged, 12.0), 6.0, 1e-5);
    for (std::size_t i = 0; i < merged.size(); ++i)
        EXPECT_LT(testing::cornerAt(merged, i), 0.05) << merged[i].x;
}

TEST(MergedCurve, GoesTheShorterWayRoundAndHoldsWhatIsMissing) {
    const Keys one = testing::straightKeys(3, 5.0, [](double) { return 350.0; });
    const Keys other = testing::straightKeys(3, 5.0, [](double) { return 10.0; });
    const Keys merged = mergedCurve({one, {}, other}, {{0, 10}, {5, 8}, {100, 110}}, 0.0, true);
    EXPECT_EQ(merged.front().x, 0.0F);
    EXPECT_EQ(merged.back().x, 25.0F); // 10, a frame, 3, a frame, 10
    EXPECT_NEAR(testing::slowValue(merged, 12.0), 350.0, 1e-5);
    EXPECT_NEAR(merged.back().y, 370.0F, 1e-4);
}

TEST_F(ClipsTest, MergedClipsPlayOneAfterTheOther) {
    MotionTake again = swinging();
    again.name = "again";
    open({}, {swinging(), again});
    MergeOptions options;
    options.name = "both";
    merge(selectedClips({}), options);
    const auto early = positionsAt(5, "swing"), late = positionsAt(17, "again");
    const auto first = positionsAt(5, "both"), second = positionsAt(38, "both");
    EXPECT_NEAR(first.at("LeftTip")[1], early.at("LeftTip")[1], 1e-4);
    EXPECT_NEAR(second.at("LeftTip")[1], late.at("LeftTip")[1], 1e-4);
    EXPECT_THAT(testing::failureOf([&] { merge({selectedClips({}).front()}, {}); }),
                HasSubstr("at least two"));
    options.crossFade = 30;
    EXPECT_THAT(testing::failureOf([&] { merge(selectedClips({}), options); }), HasSubstr("longer than"));
}

TEST_F(ClipsTest, SplitClipsAreThePartsOfTheWhole) {
    open({}, {swinging()});
    const auto whole = positionsAt(13);
    split(selectedClips({}).front(), {5, 11}, false);
    std::vector<std::string> names;
    for (const kaAnimationStrip* clip : selectedClips({}))
        names.push_back(clip->getName());
    std::sort(names.begin(), names.end());
    EXPECT_THAT(names, ElementsAre("swing 1", "swing 2", "swing 3"));
    const auto part = positionsAt(2, "swing 3");
    for (const auto& [name, position] : whole)
        for (std::size_t axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(part.at(name)[axis], position[axis], 1e-4) << name;
}

TEST_F(ClipsTest, NodesAndTheirBlocksAreRenamedByAPattern) {
    open({1.0, "rig:", {}, {}}, {swinging()});
    const OperationReport report = rename(_project->root(), "rig:*Arm", "*_arm");
    EXPECT_EQ(report.measures.front().value, 2.0);
    EXPECT_FALSE(keysOf("Left_arm.rotationX").empty());
    EXPECT_NE(kaAnimationManager::the()->getObject("Right_arm"), nullptr);
    EXPECT_THAT(testing::failureOf([&] { rename(_project->root(), "rig:Hip", "x"); }),
                HasSubstr("did you mean 'rig:Hips'?"));
    EXPECT_THAT(testing::failureOf([&] { rename(_project->root(), "rig:*", "*?"); }),
                HasSubstr("more wildcards"));
}

TEST_F(ClipsTest, RenamingAndDeletingThatAreCancelledChangeNothing) {
    open({1.0, "rig:", {}, {}}, {swinging()});
    const std::size_t objects = kaAnimationManager::the()->getObjectCount();
    for (int calls = 1; calls <= 2; ++calls) {
        Impatient renaming(calls), curves(calls), clips(1);
        EXPECT_TRUE(rename(_project->root(), "rig:*Arm", "*_arm", renaming).isCancelled);
        EXPECT_TRUE(removeCurves(allCurves(), curves).isCancelled);
        EXPECT_TRUE(removeClips(selectedClips({}), clips).isCancelled);
    }
    EXPECT_FALSE(keysOf("rig:LeftArm.rotationX").empty());
    EXPECT_EQ(kaAnimationManager::the()->getObjectCount(), objects);
}

TEST_F(ClipsTest, DeletingCurvesTakesWhatIsEmptyThen) {
    open({}, {swinging()});
    MotionSelection arms;
    arms.nodes = {"*Arm"};
    EXPECT_EQ(removeCurves(selectedCurves(arms)).curves, 6U);
    EXPECT_EQ(kaAnimationManager::the()->getObjects(KA_TYPE_UNIT).size(), 1U);
    removeCurves(allCurves());
    EXPECT_EQ(kaAnimationManager::the()->getObjectCount(), 0U);
}

TEST_F(ClipsTest, AnotherSkeletonTwiceAsLargeMovesTwiceAsFar) {
    open({}, {swinging()});
    const SkeletonMotion motion = recordSkeleton(_project->root(), allCurves(), "swing");
    std::vector<std::map<std::string, Vec3>> source;
    for (int frame = 0; frame <= 20; ++frame)
        source.push_back(positionsAt(static_cast<float>(frame)));
    Figure large;
    large.size = 2.0;
    large.prefix = "rig:";
    open(large, {});
    const OperationReport report = retarget(motion, _project->root(), {});
    EXPECT_EQ(report.measures[0].value, 5.0);
    EXPECT_NEAR(report.measures[1].value, 2.0, 1e-6);
    for (int frame = 0; frame <= 20; ++frame)
        for (const auto& [name, position] : positionsAt(static_cast<float>(frame))) {
            if (name.rfind("rig:", 0) != 0)
                continue;
            const Vec3& was = source[static_cast<std::size_t>(frame)].at(name.substr(4));
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(position[axis], 2 * was[axis], 2e-3) << name << " " << frame;
        }
}

TEST_F(ClipsTest, LimbsPointAsTheSourcesWhateverTheRestPose) {
    open({}, {swinging()});
    const SkeletonMotion motion = recordSkeleton(_project->root(), allCurves(), "swing");
    std::vector<std::map<std::string, Vec3>> source;
    for (int frame = 0; frame <= 20; ++frame)
        source.push_back(positionsAt(static_cast<float>(frame)));
    Figure down; // its arms hang
    down.leftTip = {0, -2, 0};
    down.rightTip = {0, -2, 0};
    open(down, {});
    retarget(motion, _project->root(), {});
    for (int frame = 0; frame <= 20; ++frame) {
        const auto now = positionsAt(static_cast<float>(frame));
        for (const char* side : {"Left", "Right"})
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const auto& was = source[static_cast<std::size_t>(frame)];
                const std::string arm = std::string(side) + "Arm", tip = std::string(side) + "Tip";
                EXPECT_NEAR(now.at(tip)[axis] - now.at(arm)[axis], was.at(tip)[axis] - was.at(arm)[axis],
                            2e-3);
            }
    }
}

TEST_F(ClipsTest, NamesComeFromATable) {
    open({}, {swinging()});
    const SkeletonMotion motion = recordSkeleton(_project->root(), allCurves(), "swing");
    Figure other;
    other.prefix = "b_";
    open(other, {});
    RetargetOptions options;
    options.names = parseNameTable("# two\nHips = b_Hips\n\n LeftArm=b_LeftArm \n");
    const OperationReport report = retarget(motion, _project->root(), options);
    EXPECT_EQ(report.measures[0].value, 2.0);
    EXPECT_THAT(report.notes, ElementsAre("'RightArm' has no counterpart"));
    EXPECT_EQ(testing::failureOf([] { parseNameTable("a = b\nnonsense\n"); }),
              "line 2 is not of the form 'source = target'");
    options.names = {{"nobody", "no one"}};
    EXPECT_THAT(testing::failureOf([&] { retarget(motion, _project->root(), options); }),
                HasSubstr("no node of the one"));
}

TEST(Renamed, HandsOnWhatWildcardsStandFor) {
    bool isMatch = false;
    EXPECT_EQ(renamed("mixamorig:Hips", "mixamorig:*", "*", isMatch), "Hips");
    EXPECT_EQ(renamed("arm_3_left", "arm_?_*", "*?", isMatch), "3left");
    EXPECT_EQ(renamed("Hips", "rig:*", "*", isMatch), "Hips");
    EXPECT_FALSE(isMatch);
}

} // namespace
} // namespace ka::motion
