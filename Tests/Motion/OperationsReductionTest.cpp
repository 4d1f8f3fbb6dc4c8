#include "OperationsCurve.h"
#include "operations/CurveReduction.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kaMotion/DocumentNumber.h>
#include <random>

namespace ka::motion {
namespace {

using testing::cornerAt;
using testing::slowDifference;
using testing::slowValue;
using testing::straightKeys;

CurveBound within(double tolerance) {
    CurveBound bound;
    bound.tolerance = tolerance;
    return bound;
}

ReducedCurve reduced(const std::vector<PlainKey>& source, double tolerance) {
    return reduceCurve(source, within(tolerance), {});
}

double noise(double frame) {
    return 20.0 * std::sin(frame * 7919.0) + 5.0 * std::sin(frame * 104729.0);
}

double swing(double frame) {
    return 40.0 * std::sin(frame / 9.0) + 3.0 * std::sin(frame / 2.0);
}

TEST(Reduction, KeepsTheBoundAsMeasuredByTheDefinition) {
    for (const auto& [step, function] : std::vector<std::pair<double, double (*)(double)>>{
             {0.208333, swing}, {1.0, swing}, {0.208333, noise}, {2.5, noise}, {7.0, swing}})
        for (const double tolerance : {5.0, 0.5, 0.01}) {
            const std::vector<PlainKey> source = straightKeys(600, step, function);
            const ReducedCurve result = reduced(source, tolerance);
            const double apart = slowDifference(source, result.keys);
            EXPECT_LE(apart, tolerance + 5e-6) << step << " " << tolerance;
            EXPECT_NEAR(result.worst, apart, 1e-4 * (1 + apart));
            EXPECT_LE(result.keys.size(), source.size());
        }
}

TEST(Reduction, TakesTwoKeysForALineAndForOneThatStands) {
    for (const double slope : {0.0, 2.0}) {
        const std::vector<PlainKey> source =
            straightKeys(5000, 0.25, [slope](double frame) { return 3.0 + slope * frame; });
        const ReducedCurve result = reduced(source, 0.1);
        ASSERT_EQ(result.keys.size(), 2U) << slope;
        EXPECT_EQ(result.keys[0].x, source.front().x);
        EXPECT_EQ(result.keys[0].y, source.front().y);
        EXPECT_EQ(result.keys[1].x, source.back().x);
        EXPECT_EQ(result.keys[1].y, source.back().y);
    }
}

// With 40 degrees and a period of 56 frames a cubic in time is off by h^4 / 384 of the fourth derivative, so
// spans of some 12 frames keep to 0.1; the second wave asks for less.
TEST(Reduction, NeedsFewSmoothKeysForASmoothMotion) {
    const std::vector<PlainKey> source = straightKeys(1000, 0.25, swing);
    const ReducedCurve result = reduced(source, 0.5);
    EXPECT_LE(result.keys.size(), 45U);
    for (std::size_t i = 0; i < result.keys.size(); ++i)
        EXPECT_LT(cornerAt(result.keys, i), 2e-3) << result.keys[i].x;
}

TEST(Reduction, KeepsCornersThatTheMotionHas) {
    // A zigzag of 20 a side: up in 10 frames, down in 10.
    const auto zigzag = [](double frame) {
        const double phase = std::fmod(frame, 20.0);
        return phase < 10.0 ? 2.0 * phase : 40.0 - 2.0 * phase;
    };
    const std::vector<PlainKey> source = straightKeys(201, 1.0, zigzag);
    const ReducedCurve result = reduced(source, 0.05);
    ASSERT_EQ(result.keys.size(), 21U); // one at every corner and one at each end
    for (std::size_t i = 1; i + 1 < result.keys.size(); ++i) {
        EXPECT_EQ(result.keys[i].x, 10.0F * static_cast<float>(i));
        EXPECT_NEAR(cornerAt(result.keys, i), 4.0, 0.2);
    }
}

TEST(Reduction, BrokenTakesNoMoreKeysThanSmooth) {
    const std::vector<PlainKey> source =
        straightKeys(2000, 0.25, [](double f) { return swing(f) + noise(f) / 20; });
    CurveBound bound = within(0.5);
    const std::size_t smooth = reduceCurve(source, bound, {}).keys.size();
    bound.allowsCorners = true;
    const ReducedCurve broken = reduceCurve(source, bound, {});
    EXPECT_LE(broken.keys.size(), smooth);
    EXPECT_LE(slowDifference(source, broken.keys), 0.5);
}

TEST(Reduction, KeepsStepsAndDropsThoseWithinTheBound) {
    std::vector<PlainKey> source;
    for (const auto& [x, y] :
         std::vector<std::pair<float, float>>{{0, 1}, {5, 1}, {8, 1.05F}, {10, 4}, {20, 4}, {30, 2}})
        source.push_back({x, y, x, y, x, y});
    const ReducedCurve result = reduced(source, 0.1);
    std::vector<float> frames;
    for (const PlainKey& key : result.keys) {
        frames.push_back(key.x);
        EXPECT_EQ(key.inX, key.x);
        EXPECT_EQ(key.outX, key.x);
    }
    EXPECT_THAT(frames, ::testing::ElementsAre(0.0F, 10.0F, 30.0F));
    for (double frame = 0; frame <= 30; frame += 0.25)
        EXPECT_NEAR(slowValue(source, frame), slowValue(result.keys, frame), 0.051) << frame;
}

TEST(Reduction, LeavesAValueThatStandsExactlyThere) {
    const auto pause = [](double frame) {
        return frame < 50   ? 30 * std::sin(frame / 8)
               : frame < 80 ? 30 * std::sin(50.0 / 8)
                            : 30 * std::sin((frame - 30) / 8);
    };
    const std::vector<PlainKey> source = straightKeys(600, 0.25, pause);
    const ReducedCurve result = reduced(source, 0.5);
    for (double frame = 50; frame <= 80; frame += 0.125)
        EXPECT_EQ(static_cast<float>(slowValue(result.keys, frame)), source[200].y) << frame;
    EXPECT_LE(slowDifference(source, result.keys), 0.5);
}

TEST(Reduction, WritesNumbersThatADocumentHolds) {
    const std::vector<PlainKey> source = straightKeys(400, 0.208333, [](double f) { return noise(f) / 7; });
    for (const PlainKey& key : reduced(source, 0.3).keys)
        for (const float number : {key.y, key.inX, key.inY, key.outX, key.outY})
            EXPECT_EQ(number, documentFloat(static_cast<double>(number)));
}

TEST(Reduction, LeavesAloneWhatItCannotThin) {
    const std::vector<PlainKey> one = straightKeys(1, 1.0, swing), two = straightKeys(2, 1.0, swing);
    EXPECT_EQ(reduced({}, 1.0).keys.size(), 0U);
    EXPECT_EQ(reduced(one, 1.0).keys.size(), 1U);
    EXPECT_EQ(reduced(two, 1.0).keys.size(), 2U);
    const std::vector<PlainKey> source = straightKeys(100, 1.0, swing);
    for (const double none : {0.0, -1.0, 1e-9, std::nan("")})
        EXPECT_EQ(reduced(source, none).keys.size(), 100U) << none;
}

TEST(Reduction, CopesWithNumbersThatAreNoneAndTimeThatRunsBack) {
    std::vector<PlainKey> source = straightKeys(60, 1.0, swing);
    source[20].y = std::nanf("");
    source[40].outX = 30.0F; // before its own key
    const ReducedCurve result = reduced(source, 0.5);
    EXPECT_TRUE(std::any_of(result.keys.begin(), result.keys.end(),
                            [](const PlainKey& k) { return std::isnan(k.y); }));
    const auto back =
        std::find_if(result.keys.begin(), result.keys.end(), [](const PlainKey& k) { return k.x == 40.0F; });
    ASSERT_NE(back, result.keys.end());
    EXPECT_EQ(back->outX, 30.0F);
}

TEST(Reduction, WorksFarFromFrameZeroAndWithLargeValues) {
    for (const double shift : {-3e4, 1e5, 4e6}) {
        std::vector<PlainKey> source = straightKeys(300, 1.0, [](double f) { return 1e4 * swing(f); });
        for (PlainKey& key : source)
            for (float* x : {&key.x, &key.inX, &key.outX})
                *x = static_cast<float>(static_cast<double>(*x) + shift);
        const ReducedCurve result = reduced(source, 1e4);
        EXPECT_LE(slowDifference(source, result.keys), 1e4) << shift;
        EXPECT_LT(result.keys.size(), 200U) << shift;
    }
}

TEST(Reduction, ChecksACurveOfFewFramesCloserThanQuarters) {
    // One swing within a single frame.
    const std::vector<PlainKey> source =
        straightKeys(101, 0.01, [](double f) { return 10 * std::sin(6.283 * f); });
    const ReducedCurve result = reduced(source, 0.05);
    for (double frame = 0; frame <= 1.0; frame += 0.004)
        EXPECT_NEAR(slowValue(source, frame), slowValue(result.keys, frame), 0.06) << frame;
    EXPECT_LT(result.keys.size(), 12U);
}

TEST(Reduction, SmoothSourceKeysStaySmooth) {
    // Every tenth key of a sine with its true slopes: a curve that has smooth keys itself.
    std::vector<PlainKey> source;
    for (int i = 0; i <= 40; ++i) {
        const double x = 5.0 * i, y = 30 * std::sin(x / 12), m = 2.5 * std::cos(x / 12), h = 1.6;
        source.push_back({static_cast<float>(x), static_cast<float>(y), static_cast<float>(x - h),
                          static_cast<float>(y - m * h), static_cast<float>(x + h),
                          static_cast<float>(y + m * h)});
    }
    const ReducedCurve result = reduced(source, 0.2);
    EXPECT_LT(result.keys.size(), 25U);
    EXPECT_LE(slowDifference(source, result.keys), 0.2);
    for (std::size_t i = 0; i < result.keys.size(); ++i)
        EXPECT_LT(cornerAt(result.keys, i), 1e-3);
}

TEST(Reduction, EndsWhenItIsToldTo) {
    const std::vector<PlainKey> source = straightKeys(5000, 0.25, noise);
    int asked = 0;
    const ReducedCurve result = reduceCurve(source, within(0.1), [&asked] { return ++asked < 10; });
    EXPECT_TRUE(result.isCancelled);
    EXPECT_EQ(asked, 10);
}

} // namespace
} // namespace ka::motion
