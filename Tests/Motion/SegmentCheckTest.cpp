#include "check/SegmentCheck.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace ka::motion {
namespace {

TEST(FrameWithoutValue, IsTheFirstKeysOwnWhereOnlyItsOutHandleIsCollapsed) {
    // X(t) = t³·A + t²·B has a double root at the key, and the reduced cubic a negative q.
    EXPECT_EQ(frameWithoutValue({0, 0, 0, 0, 5, 10, 10, 10}), 0.0F);
    EXPECT_EQ(frameWithoutValue({100, 3, 100, 9, 105, 10, 110, 10}), 100.0F);
}

TEST(FrameWithoutValue, IsNoneInOrdinarySegments) {
    EXPECT_EQ(frameWithoutValue({0, 0, 5, 5, 5, 5, 10, 10}), std::nullopt);   // straight
    EXPECT_EQ(frameWithoutValue({0, 0, 0, 0, 10, 10, 10, 10}), std::nullopt); // step
    EXPECT_EQ(frameWithoutValue({0, 0, 3, 9, 6, -4, 9, 10}), std::nullopt);   // thirds
    EXPECT_EQ(frameWithoutValue({0, 0, 5, 0, 5, 10, 10, 10}), std::nullopt);  // flat halves
}

TEST(FrameWithoutValue, IsAnyWhereAHandleOrAValueIsNoNumber) {
    const float nan = std::numeric_limits<float>::quiet_NaN(),
                infinite = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(frameWithoutValue({0, 0, nan, 5, 5, 5, 10, 10}));
    EXPECT_TRUE(frameWithoutValue({0, 0, 5, infinite, 5, 5, 10, 10}));
    EXPECT_TRUE(frameWithoutValue({0, nan, 0, nan, 10, 10, 10, 10}));
}

/// A million frames in, floats are a sixteenth apart: a segment has few enough of them to try every one.
TEST(FrameWithoutValue, IsFoundExactlyWhereSomeFloatOfTheSegmentHasNone) {
    const float first = 1 << 20, step = 0.125F;
    std::mt19937 random(8);
    std::uniform_int_distribution<int> frames(1, 200), value(-20, 20);
    int without = 0;
    for (int i = 0; i < 20000; ++i) {
        const int length = frames(random);
        std::uniform_int_distribution<int> handle(-length / 4, length + length / 4);
        const auto at = [&](int steps) { return first + step * static_cast<float>(steps); };
        const kaSegmentPoints points{at(0),
                                     static_cast<float>(value(random)),
                                     at(i % 5 == 0 ? 0 : handle(random)),
                                     static_cast<float>(value(random)),
                                     at(i % 7 == 0 ? length : handle(random)),
                                     static_cast<float>(value(random)),
                                     at(length),
                                     static_cast<float>(value(random))};
        bool hasAll = true;
        for (float frame = points.x0; frame < points.x3 && hasAll; frame = std::nextafter(frame, points.x3)) {
            float sampled = 0.0F;
            hasAll = kaSampleSegment(points, frame, sampled) && std::isfinite(sampled);
        }
        const std::optional<float> found = frameWithoutValue(points);
        ASSERT_EQ(found.has_value(), !hasAll)
            << points.x1 - first << " " << points.x2 - first << " of " << points.x3 - first;
        without += hasAll ? 0 : 1;
        float sampled = 0.0F;
        EXPECT_FALSE(found && kaSampleSegment(points, *found, sampled) && std::isfinite(sampled));
    }
    EXPECT_GT(without, 100);
    EXPECT_LT(without, 10000);
}

} // namespace
} // namespace ka::motion
