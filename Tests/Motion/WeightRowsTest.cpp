#include "writers/WeightRows.h"

#include <gmock/gmock.h>

namespace ka::motion {
namespace {

using ::testing::ElementsAre;

MotionChannel<1> channel(Interpolation interpolation, const std::vector<std::pair<double, double>>& keys) {
    MotionChannel<1> made{interpolation, {}};
    for (const auto& [time, value] : keys)
        made.keys.push_back({time, {value}, {}, {}});
    return made;
}

TEST(WeightRows, OfEqualTimesKeepThem) {
    const WeightRows rows = weightRows({channel(Interpolation::Linear, {{0, 0}, {2, 1}}),
                                        channel(Interpolation::Linear, {{0, 0.5}, {2, 0.25}})},
                                       {0, 0}, 1.0);
    EXPECT_EQ(rows.interpolation, Interpolation::Linear);
    EXPECT_THAT(rows.times, ElementsAre(1, 3));
    EXPECT_THAT(rows.values, ElementsAre(0, 0.5, 1, 0.25));
}

TEST(WeightRows, OfOtherTimesMeetAtAllOfThem) {
    const WeightRows rows = weightRows(
        {channel(Interpolation::Linear, {{0, 0}, {4, 1}}), channel(Interpolation::Linear, {{1, 1}, {3, 0}})},
        {0, 0}, 0.0);
    EXPECT_THAT(rows.times, ElementsAre(0, 1, 3, 4));
    EXPECT_THAT(rows.values, ElementsAre(0, 1, 0.25, 1, 0.75, 0, 1, 0));
}

TEST(WeightRows, OfAShapeWithoutKeysRest) {
    const WeightRows rows =
        weightRows({{}, channel(Interpolation::Step, {{0, 1}, {1, 0}})}, {0.5F, 0.25F}, 0.0);
    EXPECT_EQ(rows.interpolation, Interpolation::Step);
    EXPECT_THAT(rows.values, ElementsAre(0.5, 1, 0.5, 0));
}

TEST(WeightRows, OfASplineKeepItsTangents) {
    MotionChannel<1> spline{Interpolation::Cubic, {{0, {0}, {1}, {2}}, {1, {5}, {3}, {4}}}};
    const WeightRows rows = weightRows({spline}, {0}, 0.0);
    EXPECT_EQ(rows.interpolation, Interpolation::Cubic);
    EXPECT_THAT(rows.values, ElementsAre(1, 0, 2, 3, 5, 4));
}

TEST(WeightRows, OfAHoldBesideALineEndWhereItEnds) {
    const WeightRows rows = weightRows(
        {channel(Interpolation::Step, {{0, 0}, {2, 1}}), channel(Interpolation::Linear, {{0, 0}, {4, 4}})},
        {0, 0}, 0.0);
    ASSERT_THAT(rows.times, ElementsAre(0, ::testing::FloatNear(1.9999F, 1e-6F), 2, 4));
    EXPECT_EQ(rows.values[2], 0.0F);
    EXPECT_EQ(rows.values[4], 1.0F);
}

} // namespace
} // namespace ka::motion
