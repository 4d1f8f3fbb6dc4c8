#include "MotionTesting.h"
#include "OperationsCurve.h"
#include "operations/Butterworth.h"
#include "operations/CurveEdit.h"
#include "operations/FlipFilter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kaMotion/EditTime.h>
#include <kaMotion/Filter.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/Project.h>
#include <kaMotion/Rotation.h>

namespace ka::motion {
namespace {

using ::testing::HasSubstr;

/// The height of a wave of `frequency` (of the rate) in the middle of the samples, by its two components.
double heightAt(const std::vector<double>& samples, double frequency) {
    double sine = 0, cosine = 0, count = 0;
    const std::size_t quarter = samples.size() / 4;
    for (std::size_t i = quarter; i < 3 * quarter; ++i, ++count) {
        sine += samples[i] * std::sin(2 * M_PI * frequency * static_cast<double>(i));
        cosine += samples[i] * std::cos(2 * M_PI * frequency * static_cast<double>(i));
    }
    return 2 * std::hypot(sine, cosine) / count;
}

// Of the analogue filter run twice: 1 / (1 + (√2 - 1) r⁴) at r times the cut-off.
TEST(LowPass, LeavesWhatItStates) {
    for (const double ratio : {0.25, 0.5, 1.0, 2.0, 4.0}) {
        const double cutOff = 0.02, frequency = ratio * cutOff;
        std::vector<double> wave;
        for (int i = 0; i < 20000; ++i)
            wave.push_back(std::sin(2 * M_PI * frequency * i));
        const double expected = 1.0 / (1.0 + (std::sqrt(2.0) - 1.0) * std::pow(ratio, 4));
        EXPECT_NEAR(heightAt(lowPassed(wave, cutOff), frequency), expected, 0.004) << ratio;
    }
}

TEST(LowPass, MovesNothingInTimeAndKeepsLinesAndEnds) {
    std::vector<double> line, bump(400, 0.0);
    for (int i = 0; i < 400; ++i) {
        line.push_back(3.0 + 0.5 * i);
        bump[static_cast<std::size_t>(i)] = std::exp(-std::pow((i - 200) / 30.0, 2));
    }
    const std::vector<double> same = lowPassed(line, 0.05);
    for (std::size_t i = 0; i < line.size(); ++i)
        EXPECT_NEAR(same[i], line[i], 1e-6) << i;
    const std::vector<double> after = lowPassed(bump, 0.02);
    EXPECT_EQ(std::max_element(after.begin(), after.end()) - after.begin(), 200);
    EXPECT_EQ(lowPassed({1, 2}, 0.1), (std::vector<double>{1, 2}));
}

Keys lineOf(const std::vector<double>& values) {
    return testing::straightKeys(values.size(), 1.0,
                                 [&](double frame) { return values[static_cast<std::size_t>(frame)]; });
}

Matrix3 rotationAt(const std::array<Keys, 3>& curves, std::size_t key) {
    Vec3 angles{};
    for (std::size_t axis = 0; axis < 3; ++axis)
        angles[axis] = static_cast<double>(curves[axis][key].y);
    return matrixFromAngles(angles, sceneOrder);
}

TEST(Flips, GoForAllTriplesOfOneRotation) {
    // The same slow turn, told in four ways: as it is, a whole turn on, by the other triple, and that less
    // two turns.
    const std::array<Keys, 3> flipped{lineOf({10, 12 + 360, 14 + 180, 16 + 180 - 720}),
                                      lineOf({20, 21, 180 - 22, 180 - 23}),
                                      lineOf({30, 32, 34 - 180, 36 + 180})};
    const Unflipped result = unflipped(flipped);
    EXPECT_EQ(result.flips, 3U);
    EXPECT_NEAR(result.largestAfter, 2.0, 1e-4);
    EXPECT_NEAR(result.largestBefore, 718.0, 1e-3); // from 194 to -524
    const std::array<std::array<double, 4>, 3> expected{
        {{10, 12, 14, 16}, {20, 21, 22, 23}, {30, 32, 34, 36}}};
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(result.curves[axis][i].y, expected[axis][i], 1e-4) << axis << " " << i;
            EXPECT_LT(angleBetween(rotationAt(flipped, i), rotationAt(result.curves, i)), 1e-4);
        }
}

TEST(Flips, GoAtARightAngleToo) {
    // At y = 90 only x - z counts: 40 and 10 is the same as 100 and 70.
    const Unflipped result = unflipped({lineOf({40, 100}), lineOf({90, 90}), lineOf({10, 70})});
    EXPECT_NEAR(result.curves[0][1].y, 40, 0.01);
    EXPECT_NEAR(result.curves[2][1].y, 10, 0.01);
}

TEST(Flips, WorkOnCurvesWithKeysAtOtherFrames) {
    Keys x = lineOf({0, 170, 370}), y = lineOf({5, 5, 5});
    Keys z{{0.5F, 8, 0.5F, 8, 0.5F, 8}, {1.5F, 8, 1.5F, 8, 1.5F, 8}};
    const Unflipped result = unflipped({x, y, z});
    for (const Keys& keys : result.curves)
        EXPECT_EQ(keys.size(), 5U); // 0, 0.5, 1, 1.5 and 2
    EXPECT_EQ(result.flips, 0U);
}

class FilterTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ProjectFiles files;
        files.file = _folder.put("walk.bvh", testing::shortCapture(120));
        _project = std::make_unique<Project>(files);
    }
    testing::TemporaryFolder _folder;
    std::unique_ptr<Project> _project;
};

TEST_F(FilterTest, RotationsStayTheSameWhenFlipsGo) {
    const CurveList curves = selectedCurves({{}, {"LeftForeArm"}, {"rotation*"}});
    ASSERT_EQ(curves.size(), 3U);
    std::array<Keys, 3> before, after;
    for (std::size_t axis = 0; axis < 3; ++axis)
        before[axis] = plainKeys(*curves[axis]);
    removeFlips(curves);
    for (std::size_t axis = 0; axis < 3; ++axis)
        after[axis] = plainKeys(*curves[axis]);
    for (std::size_t i = 0; i < before[0].size(); ++i)
        EXPECT_LT(angleBetween(rotationAt(before, i), rotationAt(after, i)), 1e-3) << i;
}

TEST_F(FilterTest, PeaksComeBackIntoLineAndNothingElseMoves) {
    const CurveList curves = chooseCurves(allCurves(), {"Hips.translationX"});
    const Keys calm = testing::straightKeys(60, 1.0, [](double frame) { return 0.1 * frame; });
    Keys peaked = calm;
    peaked[20].y = 80.0F;
    peaked[40].y = -3.0F;
    apply({{curves.front(), peaked}});
    const OperationReport report = removePeaks(curves, {});
    const Keys after = plainKeys(*curves.front());
    for (std::size_t i = 0; i < calm.size(); ++i)
        EXPECT_NEAR(after[i].y, calm[i].y, 1e-4) << i;
    EXPECT_EQ(report.measures[0].value, 2.0);
    EXPECT_EQ(report.measures[1].frame, 20.0);
}

TEST_F(FilterTest, SmoothingKeepsFramesAndEndsAndTakesJitterOff) {
    const CurveList curves = allCurves();
    const Keys before = plainKeys(*curves.front());
    LowPass filter;
    filter.cutOff = 4.0;
    const OperationReport report = smooth(curves, filter);
    EXPECT_EQ(report.keysAfter, report.keysBefore);
    const Keys after = plainKeys(*curves.front());
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after.front().y, before.front().y);
    EXPECT_EQ(after.back().y, before.back().y);
    const auto jitter = [](const Keys& keys) {
        double sum = 0;
        for (std::size_t i = 1; i + 1 < keys.size(); ++i)
            sum += std::abs(static_cast<double>(keys[i + 1].y) - 2 * static_cast<double>(keys[i].y) +
                            static_cast<double>(keys[i - 1].y));
        return sum;
    };
    EXPECT_LT(jitter(after), jitter(before) / 3);
}

TEST_F(FilterTest, ValuesAndTimesChangeAsStated) {
    const CurveList curves = chooseCurves(allCurves(), {"Hips.translationY"});
    const Keys before = plainKeys(*curves.front());
    changeValues(curves, 2.0, -1.0);
    EXPECT_NEAR(plainKeys(*curves.front())[5].y, 2.0F * before[5].y - 1.0F, 1e-4);
    trim(curves, 4.0, 9.0, true);
    EXPECT_EQ(plainKeys(*curves.front()).front().x, 0.0F);
    EXPECT_EQ(plainKeys(*curves.front()).back().x, 5.0F);
    Retiming twice;
    twice.scale = 2.0;
    retime(curves, twice);
    EXPECT_EQ(plainKeys(*curves.front()).back().x, 10.0F);
    Resampling even;
    even.every = 2.5;
    EXPECT_EQ(resample(curves, even).keysAfter, 5U);
    const Keys resampled = plainKeys(*curves.front());
    reverse(curves);
    EXPECT_NEAR(plainKeys(*curves.front()).front().y, resampled.back().y, 1e-6);
}

TEST_F(FilterTest, RefusesWhatMakesNoSense) {
    const CurveList curves = allCurves();
    LowPass none;
    none.cutOff = 0.0;
    EXPECT_THAT(testing::failureOf([&] { smooth(curves, none); }), HasSubstr("above 0"));
    EXPECT_THAT(testing::failureOf([&] { trim(curves, 5, 5, false); }), HasSubstr("first frame"));
    Retiming back;
    back.scale = -1.0;
    EXPECT_THAT(testing::failureOf([&] { retime(curves, back); }), HasSubstr("above 0"));
    Resampling endless;
    endless.every = 1e-9;
    EXPECT_THAT(testing::failureOf([&] { resample(curves, endless); }), HasSubstr("ten million"));
    EXPECT_EQ(plainKeys(*curves.front()).size(), 120U);
}

} // namespace
} // namespace ka::motion
