#include "OperationsCurve.h"
#include "operations/KeyEdits.h"
#include "operations/TimeMap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace ka::motion {
namespace {

using testing::slowValue;
using testing::straightKeys;

/// Keys with handles of all lengths, time never running back.
Keys wild(int count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(-50, 50), part(0.05F, 0.6F);
    Keys keys;
    for (int i = 0; i < count; ++i) {
        const float x = 4.0F * static_cast<float>(i), y = value(random);
        keys.push_back({x, y, x - 4 * part(random), value(random), x + 4 * part(random), value(random)});
    }
    return keys;
}

Keys stepping(const std::vector<std::pair<float, float>>& values) {
    Keys keys;
    for (const auto& [x, y] : values)
        keys.push_back({x, y, x, y, x, y});
    return keys;
}

TEST(KeyEdits, AKeyThatIsPutInChangesNothing) {
    const Keys source = wild(30);
    const Keys more = withKeysAt(source, {-3.0F, 0.0F, 1.5F, 1.75F, 8.0F, 50.25F, 51.0F, 116.0F, 200.0F});
    EXPECT_EQ(more.size(), source.size() + 4); // at 1.5, 1.75, 50.25 and 51
    for (double frame = 0; frame <= 116; frame += 0.05)
        EXPECT_NEAR(slowValue(source, frame), slowValue(more, frame), 2e-4) << frame;
}

TEST(KeyEdits, APartIsTheSameMotion) {
    const Keys source = wild(30);
    const Keys part = partOf(source, 10.5F, 77.25F);
    EXPECT_EQ(part.front().x, 10.5F);
    EXPECT_EQ(part.back().x, 77.25F);
    for (double frame = 10.5; frame <= 77.25; frame += 0.05)
        EXPECT_NEAR(slowValue(source, frame), slowValue(part, frame), 2e-4) << frame;
}

TEST(KeyEdits, APartOutsideHoldsAndAPartBeyondTheEndsIsTheWhole) {
    const Keys source = wild(5); // frames 0 to 16
    const Keys after = partOf(source, 20, 30);
    ASSERT_EQ(after.size(), 2U);
    EXPECT_EQ(after[0].y, source.back().y);
    EXPECT_EQ(after[1].x, 30.0F);
    EXPECT_EQ(partOf(source, -10, 100).size(), source.size());
}

TEST(KeyEdits, StepsStaySoWhenTheyAreCut) {
    const Keys part = partOf(stepping({{0, 1}, {10, 5}, {20, 2}}), 5, 15);
    ASSERT_EQ(part.size(), 3U);
    EXPECT_EQ(slowValue(part, 9.9L), 1);
    EXPECT_EQ(slowValue(part, 14.9L), 5);
}

TEST(KeyEdits, BackwardsIsTheMirrorImage) {
    const Keys source = wild(20); // frames 0 to 76
    const Keys back = reversed(source);
    for (double frame = 0; frame <= 76; frame += 0.05)
        EXPECT_NEAR(slowValue(source, 76 - frame), slowValue(back, frame), 2e-4) << frame;
    const Keys again = reversed(back);
    ASSERT_EQ(again.size(), source.size());
    for (std::size_t i = 0; i < again.size(); ++i)
        EXPECT_NEAR(again[i].outY, source[i].outY, 1e-4) << i;
}

TEST(KeyEdits, StepsHoldTheSameStretchesBackwards) {
    const Keys back = reversed(stepping({{0, 1}, {10, 5}, {30, 2}}));
    // 1 from 0 to 10 and 5 from 10 to 30 become 5 from 0 to 20 and 1 from 20 to 30.
    for (const double frame : {1.0, 10.0, 19.9})
        EXPECT_EQ(slowValue(back, frame), 5) << frame;
    for (const double frame : {20.1, 29.0, 30.0})
        EXPECT_EQ(slowValue(back, frame), 1) << frame;
}

TEST(KeyEdits, AStepBesideALineComesBackwardsToo) {
    Keys source = straightKeys(2, 10.0, [](double frame) { return frame; }); // 0 to 10
    source[1].outX = source[1].x;
    source.push_back({20, 30, 20, 30, 20, 30}); // holds 10 until 20
    const Keys back = reversed(source);
    EXPECT_EQ(slowValue(back, 5), 10);
    EXPECT_NEAR(slowValue(back, 15), 5, 1e-5);
}

TEST(KeyEdits, TimeIsScaledAboutFrameZero) {
    const Keys source = wild(20);
    const Keys slow = withTime(source, 2.5, -7.0);
    for (double frame = 0; frame <= 76; frame += 0.05)
        EXPECT_NEAR(slowValue(source, frame), slowValue(slow, 2.5 * frame - 7.0), 1e-3) << frame;
}

TEST(KeyEdits, FramesThatFallTogetherLeaveACurveThatHasAValue) {
    const Keys tiny = withTime(wild(20), 1e-12, 3.0);
    ASSERT_GE(tiny.size(), 2U);
    for (std::size_t i = 1; i < tiny.size(); ++i)
        EXPECT_GT(tiny[i].x, tiny[i - 1].x);
}

TEST(TimeMap, RunsEvenlyBetweenItsPairs) {
    const TimeMap map({{0, 0}, {10, 20}, {30, 25}});
    EXPECT_DOUBLE_EQ(map.at(5), 10);
    EXPECT_DOUBLE_EQ(map.at(20), 22.5);
    EXPECT_DOUBLE_EQ(map.at(-1), -2);
    EXPECT_DOUBLE_EQ(map.at(34), 26);
    EXPECT_DOUBLE_EQ(map.paceAfter(10), 0.25);
}

// From speed 1 at frame 0 evenly to speed 3 at frame 20 the time to pass is the integral of 1 / (1 + x / 10),
// which is 10 ln 3 = 10.986; at constant speed 2, half the frames.
TEST(TimeMap, OfASpeedIsItsIntegral) {
    const TimeMap rising = TimeMap::ofSpeed({{0, 1}, {20, 3}}, 0, 20);
    EXPECT_NEAR(rising.at(20), 10 * std::log(3.0), 1e-9);
    EXPECT_NEAR(rising.at(10), 10 * std::log(2.0), 1e-9);
    EXPECT_NEAR(TimeMap::ofSpeed({{5, 2}}, 0, 20).at(20), 10, 1e-9);
}

} // namespace
} // namespace ka::motion
