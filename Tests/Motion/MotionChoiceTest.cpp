#include "readers/MotionChoice.h"

#include "readers/NoteGroups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kaMotion/Failure.h>

using namespace ka::motion;

namespace {

/// A root at (1, 2, 3) that moves to (4, 5, 6), with a triangle bound to it.
Motion moved() {
    Motion motion;
    motion.nodes = {{"root", MotionNode::noParent, {1, 2, 3}, {}, {1, 1, 1}, sceneOrder},
                    {"child", 0, {0, 1, 0}, {}, {1, 1, 1}, sceneOrder}};
    MotionTrack track;
    track.translation.keys = {{0.0, {4, 5, 6}, {1, 0, 0}, {2, 0, 0}}};
    motion.takes = {{"walk", {track}}, {"run", {track}}};
    MotionMesh mesh;
    mesh.nodes = {1};
    mesh.positions = {0, 0, 0, 2, 0, 0, 0, 2, 0};
    motion.meshes = {mesh};
    motion.skins = {{{0}, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1}}};
    return motion;
}

Motion withTimes(const std::vector<double>& times) {
    Motion motion;
    motion.nodes.resize(1);
    MotionTake take;
    take.tracks.resize(1);
    for (const double time : times)
        take.tracks[0].translation.keys.push_back({time, {}, {}, {}});
    motion.takes.push_back(take);
    return motion;
}

TEST(OwnRate, IsThatOfTheKeys) {
    EXPECT_EQ(ownRate(withTimes({0, 0.5, 1})), 2.0);
    EXPECT_EQ(ownRate(withTimes({0, 0.1, 0.2, 0.5, 0.6})), 10.0) << "keys may be missing";
    // A capture states 0.0083333 seconds a frame: its frames shall be whole ones.
    std::vector<double> times;
    for (int i = 0; i < 4500; ++i)
        times.push_back(i * 0.0083333);
    EXPECT_NEAR(ownRate(withTimes(times)), 1.0 / 0.0083333, 1e-9);
    // In single precision.
    times.clear();
    for (int i = 0; i < 4500; ++i)
        times.push_back(static_cast<double>(static_cast<float>(i) / 30.0F));
    EXPECT_EQ(ownRate(withTimes(times)), 30.0);
}

TEST(OwnRate, IsNoneWhereKeysStandAnywhere) {
    EXPECT_EQ(ownRate(withTimes({0, 0.5, 1.2})), 0.0);
    EXPECT_EQ(ownRate(withTimes({1})), 0.0);
    EXPECT_EQ(ownRate(Motion()), 0.0);
}

} // namespace

TEST(MotionChoice, KeepsOneTake) {
    Motion motion = moved();
    keepTake(motion, "run");
    ASSERT_EQ(motion.takes.size(), 1U);
    EXPECT_EQ(motion.takes[0].name, "run");
    try {
        keepTake(motion, "fly");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_STREQ(failure.what(), "no take is called 'fly'; the model has 'run'");
        EXPECT_EQ(failure.code(), ExitCode::Usage);
    }
}

TEST(MotionChoice, ScalesEveryLengthAndNothingElse) {
    Motion motion = moved();
    scaleLengths(motion, 0.5);
    EXPECT_THAT(motion.nodes[0].translation, ::testing::ElementsAre(0.5, 1, 1.5));
    EXPECT_THAT(motion.nodes[0].scale, ::testing::ElementsAre(1, 1, 1));
    EXPECT_THAT(motion.takes[0].tracks[0].translation.keys[0].value, ::testing::ElementsAre(2, 2.5, 3));
    EXPECT_THAT(motion.takes[0].tracks[0].translation.keys[0].outTangent, ::testing::ElementsAre(1, 0, 0));
    EXPECT_FLOAT_EQ(motion.meshes[0].positions[3], 1.0F);
    EXPECT_FLOAT_EQ(motion.skins[0].inverseBinds[12], 5.0F);
    EXPECT_FLOAT_EQ(motion.skins[0].inverseBinds[0], 1.0F);
}

TEST(MotionChoice, TurnsZUpByANodeAboveEverything) {
    Motion motion = moved();
    turnZUp(motion);
    ASSERT_EQ(motion.nodes.size(), 3U);
    EXPECT_EQ(motion.nodes[1].parent, 0);
    EXPECT_EQ(motion.nodes[2].parent, 1);
    EXPECT_EQ(motion.takes[0].tracks[0].node, 1U);
    EXPECT_EQ(motion.meshes[0].nodes[0], 2U);
    EXPECT_EQ(motion.skins[0].joints[0], 1U);
    // What pointed along Z points along Y: (0, 0, 1) becomes (0, 1, 0).
    const Vec3 up = product(matrixFromQuaternion(motion.nodes[0].rotation), Vec3{0, 0, 1});
    EXPECT_NEAR(up[1], 1.0, 1e-12);
}

TEST(NoteGroups, MakeOneLineOfAKind) {
    EXPECT_THAT(groupedNotes({"node 'a': its matrix is sheared", "left out 3 channels of 'x'",
                              "node 'b 2': its matrix is sheared", "node '': its matrix is sheared", "done"}),
                ::testing::ElementsAre("node 'a': its matrix is sheared (and 2 more of this kind)",
                                       "left out 3 channels of 'x'", "done"));
    EXPECT_TRUE(groupedNotes({}).empty());
}
