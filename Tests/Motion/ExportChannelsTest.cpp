#include "kaMotion/CurveKey.h"
#include "writers/ChannelSampling.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace ka::motion;

namespace {

std::vector<PlainKey> plain(const std::vector<CurveKey>& keys) {
    std::vector<PlainKey> made;
    for (const BezierKey& key : layOutCurve(keys, 25.0).keys)
        made.push_back({key.frame, key.value, key.inFrame, key.inValue, key.outFrame, key.outValue});
    return made;
}

/// A curve whose segments all have one shape.
CurveFunction curve(SegmentShape shape, const std::vector<std::pair<double, double>>& framesAndValues) {
    std::vector<CurveKey> keys;
    for (const auto& [frame, value] : framesAndValues)
        keys.push_back({frame / 25.0, value, 0.0, 0.0, shape});
    return {plain(keys), 0.0};
}

CurveFunctions along(const CurveFunction& x) {
    return {x, CurveFunction(0.0), CurveFunction(0.0)};
}

double dot(const std::array<double, 4>& a, const std::array<double, 4>& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
}

/// What a player makes of a channel of quaternions, straight from the definition in the format.
Quaternion played(const MotionChannel<4>& channel, double time) {
    std::size_t i = 0;
    while (i + 2 < channel.keys.size() && channel.keys[i + 1].time <= time)
        ++i;
    const MotionKey<4>&a = channel.keys[i], &b = channel.keys[i + 1];
    const double span = b.time - a.time, u = std::clamp((time - a.time) / span, 0.0, 1.0);
    const Quaternion p{a.value[0], a.value[1], a.value[2], a.value[3]},
        q{b.value[0], b.value[1], b.value[2], b.value[3]};
    if (channel.interpolation == Interpolation::Step)
        return p;
    if (channel.interpolation == Interpolation::Linear)
        return slerp(p, q, u);
    std::array<double, 4> row{};
    for (std::size_t k = 0; k < 4; ++k)
        row[k] = (2 * u * u * u - 3 * u * u + 1) * a.value[k] +
                 span * (u * u * u - 2 * u * u + u) * a.outTangent[k] +
                 (-2 * u * u * u + 3 * u * u) * b.value[k] + span * (u * u * u - u * u) * b.inTangent[k];
    return normalized({row[0], row[1], row[2], row[3]});
}

/// The largest difference, in degrees, between three curves and a channel, 16 times a frame.
double worstTurn(const CurveFunctions& angles, const MotionChannel<4>& channel, double from, double to) {
    double worst = 0.0;
    for (double frame = from; frame < to; frame += 1.0 / 16) {
        const Vec3 degrees{angles[0].value(frame, Side::After), angles[1].value(frame, Side::After),
                           angles[2].value(frame, Side::After)};
        worst = std::max(worst, angleBetween(matrixFromAngles(degrees, sceneOrder),
                                             matrixFromQuaternion(played(channel, frame / 25.0))));
    }
    return worst;
}

} // namespace

TEST(ExportedChannel, OfStraightSegmentsIsLinearWithTheKeysOfTheCurve) {
    SamplingReport report;
    const auto channel =
        sampleVector(along(curve(SegmentShape::Straight, {{0, 1}, {10, 5}, {25, -2}})), {}, report);
    EXPECT_EQ(channel.interpolation, Interpolation::Linear);
    ASSERT_EQ(channel.keys.size(), 3U);
    EXPECT_DOUBLE_EQ(channel.keys[1].time, 0.4);
    EXPECT_DOUBLE_EQ(channel.keys[1].value[0], 5.0);
    EXPECT_EQ(report.exact, 2U);
    EXPECT_EQ(report.resampled, 0U);
}

TEST(ExportedChannel, OfCubicSegmentsIsASplineWithTheirSlopes) {
    // Slopes in value per second: 10 leaving the first key, -4 arriving at the second.
    const std::vector<CurveKey> keys{{0.0, 1.0, 0.0, 10.0, SegmentShape::Smooth},
                                     {0.8, 6.0, -4.0, 0.0, SegmentShape::Smooth}};
    SamplingReport report;
    const auto channel = sampleVector(along(CurveFunction(plain(keys), 0.0)), {}, report);
    EXPECT_EQ(channel.interpolation, Interpolation::Cubic);
    ASSERT_EQ(channel.keys.size(), 2U);
    EXPECT_NEAR(channel.keys[0].outTangent[0], 10.0, 1e-3);
    EXPECT_NEAR(channel.keys[1].inTangent[0], -4.0, 1e-3);
    EXPECT_EQ(report.exact, 1U);
}

TEST(ExportedChannel, OfHoldsAloneIsStepped) {
    SamplingReport report;
    const auto channel = sampleVector(along(curve(SegmentShape::Step, {{0, 1}, {5, 3}, {9, 2}})), {}, report);
    EXPECT_EQ(channel.interpolation, Interpolation::Step);
    ASSERT_EQ(channel.keys.size(), 3U);
    EXPECT_DOUBLE_EQ(channel.keys[0].value[0], 1.0);
    EXPECT_DOUBLE_EQ(channel.keys[1].value[0], 3.0);
    EXPECT_DOUBLE_EQ(channel.keys[2].value[0], 2.0);
    EXPECT_EQ(report.jumps, 0U);
}

TEST(ExportedChannel, EndsAHoldAmongOthersShortlyBeforeTheNextKey) {
    const std::vector<CurveKey> keys{{0.0, 1.0, 0.0, 0.0, SegmentShape::Step},
                                     {0.4, 5.0, 0.0, 0.0, SegmentShape::Straight},
                                     {0.8, 7.0, 0.0, 0.0, SegmentShape::Straight}};
    SamplingReport report;
    const auto channel = sampleVector(along(CurveFunction(plain(keys), 0.0)), {}, report);
    EXPECT_EQ(channel.interpolation, Interpolation::Linear);
    ASSERT_EQ(channel.keys.size(), 4U);
    EXPECT_NEAR(channel.keys[1].time, 0.4 - 1.0 / 512 / 25, 1e-12);
    EXPECT_DOUBLE_EQ(channel.keys[1].value[0], 1.0);
    EXPECT_DOUBLE_EQ(channel.keys[2].time, 0.4);
    EXPECT_DOUBLE_EQ(channel.keys[2].value[0], 5.0);
    EXPECT_EQ(report.jumps, 1U);
}

TEST(ExportedChannel, OfFreeHandlesStaysWithinTheBound) {
    // Handles far from the thirds: the value has no closed form in the frame.
    const std::vector<PlainKey> keys{{0, 0, 0, 0, 1, 8}, {20, 10, 12, -6, 20, 10}};
    const CurveFunction bent(keys, 0.0);
    SamplingReport report;
    const SamplingOptions options{25.0, 0.5};
    const auto channel = sampleVector(along(bent), options, report);
    ASSERT_GT(channel.keys.size(), 3U);
    EXPECT_EQ(report.unreached, 0U);
    const double bound = 0.5 * 3.14159265358979 / 180.0 * 10.0;
    for (double t = 0.0; t <= 1.0; t += 1.0 / 4096) {
        const double v = 1 - t, x = 3 * v * v * t * 1 + 3 * v * t * t * 12 + t * t * t * 20;
        const double y = 3 * v * v * t * 8 + 3 * v * t * t * -6 + t * t * t * 10, time = x / 25.0;
        std::size_t i = 0;
        while (i + 2 < channel.keys.size() && channel.keys[i + 1].time <= time)
            ++i;
        const MotionKey<3>&a = channel.keys[i], &b = channel.keys[i + 1];
        const double span = b.time - a.time, u = (time - a.time) / span;
        double read = a.value[0] + (b.value[0] - a.value[0]) * u;
        if (channel.interpolation == Interpolation::Cubic)
            read = (2 * u * u * u - 3 * u * u + 1) * a.value[0] +
                   span * (u * u * u - 2 * u * u + u) * a.outTangent[0] +
                   (-2 * u * u * u + 3 * u * u) * b.value[0] + span * (u * u * u - u * u) * b.inTangent[0];
        EXPECT_NEAR(read, y, bound * 1.05) << "at frame " << x;
    }
}

TEST(ExportedRotation, OfTwoWholeTurnsIsNotLost) {
    const CurveFunctions angles = along(curve(SegmentShape::Straight, {{0, 0}, {20, 720}}));
    SamplingReport report;
    const auto channel = sampleRotation(angles, {}, report);
    ASSERT_GE(channel.keys.size(), 7U);
    EXPECT_LE(worstTurn(angles, channel, 0.0, 20.0), 0.011);
}

TEST(ExportedRotation, NeverChangesSignBetweenNeighbours) {
    struct Case {
        const char* what;
        SegmentShape shape;
        std::vector<std::pair<double, double>> x, y, z;
    };
    const Case cases[] = {
        {"a tumble",
         SegmentShape::Straight,
         {{0, 10}, {7, 300}, {20, -200}},
         {{0, 0}, {20, 170}},
         {{3, 0}, {18, 400}}},
        {"eased",
         SegmentShape::Smooth,
         {{0, 0}, {10, 80}, {20, 0}},
         {{0, 45}, {20, -90}},
         {{0, -180}, {20, 180}}},
        {"poses",
         SegmentShape::Step,
         {{0, 0}, {5, 200}, {9, 350}, {12, 10}},
         {{0, 0}, {12, 0}},
         {{0, 0}, {12, 359}}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        const CurveFunctions angles{curve(one.shape, one.x), curve(one.shape, one.y),
                                    curve(one.shape, one.z)};
        SamplingReport report;
        const auto channel = sampleRotation(angles, {}, report);
        for (std::size_t i = 1; i < channel.keys.size(); ++i)
            EXPECT_GE(dot(channel.keys[i - 1].value, channel.keys[i].value), 0.0) << "key " << i;
        EXPECT_LE(worstTurn(angles, channel, 0.0, 12.0), 0.011);
        EXPECT_EQ(report.unreached, 0U);
    }
}

TEST(ExportedRotation, OfSmoothAnglesTakesFarFewerKeysAsASpline) {
    const CurveFunctions angles{curve(SegmentShape::Smooth, {{0, 0}, {50, 80}, {100, 0}}), CurveFunction(0.0),
                                CurveFunction(0.0)};
    SamplingReport report;
    const auto channel = sampleRotation(angles, {}, report);
    EXPECT_EQ(channel.interpolation, Interpolation::Cubic);
    EXPECT_LE(channel.keys.size(), 20U);
    EXPECT_LE(worstTurn(angles, channel, 0.0, 100.0), 0.011);
}

TEST(ExportedRotation, TurnsOnlyByAWholeTurnWithinOneFrameWithoutAnEdge) {
    const std::vector<CurveKey> keys{{0.0, 0.0, 0.0, 0.0, SegmentShape::Step},
                                     {0.4, 360.0, 0.0, 0.0, SegmentShape::Straight},
                                     {0.8, 400.0, 0.0, 0.0, SegmentShape::Straight}};
    const CurveFunctions angles = along(CurveFunction(plain(keys), 0.0));
    SamplingReport report;
    const auto channel = sampleRotation(angles, {}, report);
    EXPECT_EQ(report.jumps, 0U);
    EXPECT_LE(worstTurn(angles, channel, 0.0, 20.0), 0.011);
}

TEST(ExportedChannel, OfAConstantHasItsTwoKeys) {
    SamplingReport report;
    const auto channel = sampleVector(along(curve(SegmentShape::Straight, {{0, 4}, {8, 4}})), {}, report);
    ASSERT_EQ(channel.keys.size(), 2U);
    EXPECT_DOUBLE_EQ(channel.keys[1].value[0], 4.0);
    EXPECT_TRUE(sampleVector(along(CurveFunction(3.0)), {}, report).keys.empty());
}
