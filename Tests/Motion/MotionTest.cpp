#include "MotionTesting.h"
#include "readers/NodeOrder.h"

#include <cmath>
#include <gmock/gmock.h>
#include <kaMotion/Motion.h>
#include <kaMotion/MotionStream.h>
#include <limits>

namespace ka::motion {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

MotionNode node(const std::string& name, std::int32_t parent) {
    MotionNode made;
    made.name = name;
    made.parent = parent;
    return made;
}

/// One node that moves along X through the given times and values.
Motion moving(const std::vector<std::pair<double, double>>& keys) {
    Motion motion;
    motion.nodes.push_back(node("a", MotionNode::noParent));
    MotionTrack track;
    for (const auto& [time, value] : keys)
        track.translation.keys.push_back({time, {value, 0, 0}, {}, {}});
    motion.takes.push_back({"walk", {track}});
    return motion;
}

std::vector<double> timesLeft(const Motion& motion) {
    std::vector<double> times;
    for (const MotionTake& take : motion.takes)
        for (const auto& key : take.tracks.at(0).translation.keys)
            times.push_back(key.time);
    return times;
}

TEST(CheckMotion, LeavesASoundMotionAlone) {
    Motion motion = moving({{0, 1}, {1, 2}});
    EXPECT_EQ(checkMotion(motion), 0U);
    EXPECT_THAT(motion.notes, IsEmpty());
    EXPECT_THAT(timesLeft(motion), ElementsAre(0, 1));
}

TEST(CheckMotion, DropsKeysThatNoCurveCanHold) {
    Motion motion = moving({{0, 1}, {nan, 2}, {2, nan}, {3, 1e39}, {4, 5}, {1e300, 1}});
    EXPECT_EQ(checkMotion(motion), 1U);
    EXPECT_THAT(timesLeft(motion), ElementsAre(0, 4));
    EXPECT_THAT(motion.notes,
                ElementsAre("take 'walk', node 'a': translation: dropped 4 keys with a number that is "
                            "not finite or beyond the range of a float"));
}

TEST(CheckMotion, DropsKeysWhoseTimeDoesNotIncrease) {
    Motion motion = moving({{0, 1}, {2, 2}, {2, 3}, {1, 4}, {3, 5}});
    EXPECT_EQ(checkMotion(motion), 1U);
    EXPECT_THAT(timesLeft(motion), ElementsAre(0, 2, 3));
}

TEST(CheckMotion, DropsRotationsOfLengthZero) {
    Motion motion = moving({{0, 1}});
    motion.takes[0].tracks[0].quaternion.keys = {{0, {0, 0, 0, 1}, {}, {}}, {1, {0, 0, 0, 0}, {}, {}}};
    EXPECT_EQ(checkMotion(motion), 1U);
    EXPECT_EQ(motion.takes[0].tracks[0].quaternion.keys.size(), 1U);
}

TEST(CheckMotion, LeavesOutTakesThatMoveNothing) {
    Motion motion = moving({{nan, 1}});
    EXPECT_EQ(checkMotion(motion), 2U);
    EXPECT_THAT(motion.takes, IsEmpty());
    EXPECT_THAT(motion.notes.back(), HasSubstr("moves nothing"));
}

TEST(CheckMotion, DropsTracksOfStrangersAndSecondTracks) {
    Motion motion = moving({{0, 1}, {1, 2}});
    MotionTrack stranger = motion.takes[0].tracks[0];
    motion.takes[0].tracks.push_back(stranger);
    stranger.node = 7;
    motion.takes[0].tracks.insert(motion.takes[0].tracks.begin(), stranger);
    EXPECT_EQ(checkMotion(motion), 2U);
    ASSERT_EQ(motion.takes[0].tracks.size(), 1U);
    EXPECT_EQ(motion.takes[0].tracks[0].node, 0U);
}

TEST(CheckMotion, MakesUnusableRestTransformsNeutral) {
    Motion motion = moving({{0, 1}});
    motion.nodes[0].scale = {1, nan, 1};
    motion.nodes[0].rotation = {0, 0, 0, 0};
    motion.nodes[0].translation = {4, 5, 6};
    EXPECT_EQ(checkMotion(motion), 1U);
    EXPECT_THAT(motion.nodes[0].scale, ElementsAre(1, 1, 1));
    EXPECT_EQ(motion.nodes[0].rotation.w, 1.0);
    EXPECT_THAT(motion.nodes[0].translation, ElementsAre(4, 5, 6));
}

TEST(CheckMotion, RefusesAHierarchyOutOfOrder) {
    Motion motion;
    motion.nodes = {node("a", 1), node("b", MotionNode::noParent)};
    EXPECT_EQ(testing::failureOf([&] { checkMotion(motion); }), "node 'a' does not follow its parent");
    motion.nodes = {node("a", 0)};
    EXPECT_EQ(testing::failureOf([&] { checkMotion(motion); }), "node 'a' does not follow its parent");
    motion.nodes = {node("a", -7)};
    EXPECT_EQ(testing::failureOf([&] { checkMotion(motion); }), "node 'a' does not follow its parent");
}

TEST(CheckMotion, RefusesNodesNestedBeyondTheLimit) {
    Motion motion;
    motion.nodes.push_back(node("root", MotionNode::noParent));
    for (std::int32_t i = 0; i < 501; ++i)
        motion.nodes.push_back(node("n", i));
    EXPECT_THAT(testing::failureOf([&] { checkMotion(motion); }), HasSubstr("nested deeper than 500 levels"));
    motion.nodes.pop_back();
    EXPECT_EQ(testing::failureOf([&] { checkMotion(motion); }), "no failure");
}

Motion everyPart() {
    Motion motion = moving({{0, 1}, {1, -2.5}});
    motion.nodes.push_back(node("b\xC3\xA9", 0));
    motion.nodes[1].order = {1, 0, 2};
    motion.nodes[1].rotation = {0.1, 0.2, 0.3, 0.4};
    MotionTrack& track = motion.takes[0].tracks[0];
    track.quaternion.interpolation = Interpolation::Cubic;
    track.quaternion.keys = {{0.25, {1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}};
    motion.notes = {"first", ""};
    return motion;
}

TEST(PackMotion, GivesBackEveryPart) {
    const Motion motion = everyPart();
    const std::optional<Motion> back = unpackMotion(packMotion(motion));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(packMotion(*back), packMotion(motion));
    EXPECT_EQ(back->nodes[1].name, "b\xC3\xA9");
    EXPECT_THAT(back->nodes[1].order, ElementsAre(1, 0, 2));
    EXPECT_EQ(back->nodes[1].rotation.w, 0.4);
    EXPECT_EQ(back->takes[0].tracks[0].quaternion.interpolation, Interpolation::Cubic);
    EXPECT_THAT(back->takes[0].tracks[0].quaternion.keys[0].outTangent, ElementsAre(9, 10, 11, 12));
    EXPECT_THAT(back->notes, ElementsAre("first", ""));
}

TEST(UnpackMotion, RefusesWhatIsNotExactlyOneMotion) {
    const std::string bytes = packMotion(everyPart());
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(unpackMotion(std::string_view(bytes).substr(0, length)).has_value()) << length;
    EXPECT_FALSE(unpackMotion(bytes + "x").has_value());
}

TEST(UnpackMotion, SurvivesEveryChangedByte) {
    const std::string bytes = packMotion(everyPart());
    for (std::size_t place = 0; place < bytes.size(); ++place)
        for (const char c : {'\x00', '\x01', '\x7F', '\xFF'}) {
            std::string changed = bytes;
            changed[place] = c;
            if (std::optional<Motion> motion = unpackMotion(changed))
                testing::failureOf([&] { checkMotion(*motion); });
        }
}

TEST(PutParentsFirst, ReordersAndTellsTheNewPlaces) {
    std::vector<MotionNode> nodes{node("leaf", 2), node("root", MotionNode::noParent), node("middle", 1)};
    EXPECT_THAT(putParentsFirst(nodes), ElementsAre(2, 0, 1));
    EXPECT_EQ(nodes[0].name, "root");
    EXPECT_EQ(nodes[1].name, "middle");
    EXPECT_EQ(nodes[2].name, "leaf");
    EXPECT_EQ(nodes[2].parent, 1);
    EXPECT_EQ(nodes[1].parent, 0);
}

TEST(PutParentsFirst, RefusesCycles) {
    std::vector<MotionNode> nodes{node("root", MotionNode::noParent), node("a", 2), node("b", 1)};
    EXPECT_EQ(testing::failureOf([&] { putParentsFirst(nodes); }), "2 nodes are their own ancestors");
}

/// The matrix of a node's rest transform.
RestMatrix composed(const MotionNode& made) {
    const Matrix3 rotation = matrixFromQuaternion(made.rotation);
    RestMatrix m{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            m[row][column] = rotation[row][column] * made.scale[column];
        m[row][3] = made.translation[row];
    }
    return m;
}

TEST(SetRestTransform, TakesAMatrixApart) {
    MotionNode wanted;
    wanted.translation = {1, -2, 3};
    wanted.rotation = quaternionFromMatrix(matrixFromAngles({20, 30, 40}, sceneOrder));
    for (const Vec3& scale : {Vec3{1, 1, 1}, Vec3{2, 0.5, 3}, Vec3{-1, 1, 1}, Vec3{0, 2, 1}, Vec3{0, 0, 0}}) {
        wanted.scale = scale;
        MotionNode made;
        EXPECT_TRUE(setRestTransform(made, composed(wanted)));
        const RestMatrix expected = composed(wanted), found = composed(made);
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                EXPECT_NEAR(found[row][column], expected[row][column], 1e-12);
    }
}

TEST(SetRestTransform, TellsShear) {
    MotionNode made;
    EXPECT_FALSE(setRestTransform(made, {{{1, 0.5, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}}));
}

} // namespace
} // namespace ka::motion
