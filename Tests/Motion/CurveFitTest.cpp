#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <kaMotion/CurveFit.h>
#include <random>

namespace ka::motion {
namespace {

constexpr EulerOrder everyOrder[] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

/// Where a time falls between the keys of a source: the key before it and the part of the way to the next.
std::pair<std::size_t, double> placeOf(const RotationSource& source, double time) {
    std::size_t segment = 0;
    while (segment + 2 < source.size() && source.time(segment + 1) <= time)
        ++segment;
    const double span = source.time(segment + 1) - source.time(segment);
    return {segment, (time - source.time(segment)) / span};
}

Matrix3 fitted(const RotationFit& fit, double time) {
    std::size_t segment = 0;
    while (segment + 2 < fit.curves[0].size() && fit.curves[0][segment + 1].time <= time)
        ++segment;
    Vec3 angles{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const CurveKey &a = fit.curves[axis][segment], &b = fit.curves[axis][segment + 1];
        angles[axis] = segmentValue(a, b, (time - a.time) / (b.time - a.time));
    }
    return matrixFromAngles(angles, sceneOrder);
}

/// The largest difference, in degrees, at many times between keys.
double worstBetween(const RotationSource& source, const RotationFit& fit, int samples) {
    double worst = 0;
    const double from = source.time(0), to = source.time(source.size() - 1);
    for (int i = 0; i <= samples; ++i) {
        const double time = from + (to - from) * i / samples;
        const auto [segment, u] = placeOf(source, time);
        worst = std::max(worst, angleBetween(source.at(segment, u), fitted(fit, time)));
    }
    return worst;
}

/// The largest difference, in degrees, at the source's keys once the angles are floats, as the animation
/// stores them.
double worstAtKeys(const RotationSource& source, const RotationFit& fit) {
    double worst = 0;
    for (std::size_t key = 0; key < source.size(); ++key) {
        const auto& curve = fit.curves[0];
        const auto found = std::find_if(curve.begin(), curve.end(),
                                        [&](const CurveKey& k) { return k.time == source.time(key); });
        if (found == curve.end())
            return 1e9;
        Vec3 angles{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            angles[axis] =
                static_cast<float>(fit.curves[axis][static_cast<std::size_t>(found - curve.begin())].value);
        worst = std::max(worst, angleBetween(source.at(key, 0.0), matrixFromAngles(angles, sceneOrder)));
    }
    return worst;
}

double largestJump(const RotationFit& fit) {
    double largest = 0;
    for (const auto& curve : fit.curves)
        for (std::size_t i = 1; i < curve.size(); ++i)
            largest = std::max(largest, std::abs(curve[i].value - curve[i - 1].value));
    return largest;
}

MotionChannel<4> randomQuaternions(unsigned seed, Interpolation interpolation, std::size_t count) {
    std::mt19937_64 random(seed);
    std::normal_distribution<double> any;
    MotionChannel<4> channel;
    channel.interpolation = interpolation;
    for (std::size_t i = 0; i < count; ++i) {
        MotionKey<4> key;
        key.time = static_cast<double>(i) * 0.5;
        const Quaternion q = normalized({any(random), any(random), any(random), any(random)});
        key.value = {q.x, q.y, q.z, q.w};
        for (auto* tangent : {&key.inTangent, &key.outTangent})
            for (double& part : *tangent)
                part = any(random) * 0.3;
        channel.keys.push_back(key);
    }
    return channel;
}

TEST(FitRotation, TakesAnglesInTheScenesOrderAsTheyStand) {
    MotionChannel<3> channel;
    channel.keys = {{0, {1, 2, 3}, {}, {}}, {1, {10, -20, 30}, {}, {}}, {2, {11, 170, 400}, {}, {}}};
    const RotationFit fit = fitRotation(RotationSource(channel, sceneOrder), {});
    EXPECT_EQ(fit.addedKeys, 0U);
    ASSERT_EQ(fit.curves[0].size(), 3U);
    EXPECT_EQ(fit.curves[1][1].value, -20);
    EXPECT_EQ(fit.curves[2][2].value, 40); // whole turns are taken off
    EXPECT_EQ(fit.curves[1][2].value, -190);
}

TEST(FitRotation, UnwindsJumpsOfAFullTurn) {
    MotionChannel<3> channel;
    for (int i = 0; i < 40; ++i) {
        const double turning = std::remainder(i * 25.0, 360.0); // wraps from 180 to -180 again and again
        channel.keys.push_back({i * 0.1, {0, 0, turning}, {}, {}});
    }
    const RotationFit fit = fitRotation(RotationSource(channel, sceneOrder), {});
    EXPECT_NEAR(largestJump(fit), 25.0, 1e-9);
    EXPECT_NEAR(fit.curves[2].back().value, 39 * 25.0, 1e-9);
}

TEST(FitRotation, KeepsThePoseAtEveryKeyInEveryOrder) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> step(-60, 60);
    for (const EulerOrder& order : everyOrder) {
        MotionChannel<3> channel;
        Vec3 angles{0, 0, 0};
        for (int i = 0; i < 60; ++i) {
            channel.keys.push_back({i * 0.1, angles, {}, {}});
            for (double& angle : angles)
                angle = std::remainder(angle + step(random), 360.0);
        }
        const RotationSource source(channel, order);
        const RotationFit fit = fitRotation(source, {});
        EXPECT_LT(worstAtKeys(source, fit), 1e-3);
        EXPECT_LT(largestJump(fit), 360.0);
        if (fit.unreached == 0) {
            EXPECT_LT(worstBetween(source, fit, 20000), 0.02);
        }
    }
}

TEST(FitRotation, KeepsQuaternionsAtAndBetweenTheirKeys) {
    for (const Interpolation interpolation : {Interpolation::Linear, Interpolation::Cubic}) {
        for (unsigned seed = 0; seed < 20; ++seed) {
            const RotationSource source(randomQuaternions(seed, interpolation, 8));
            const RotationFit fit = fitRotation(source, {0.01, 1e-4});
            EXPECT_LT(worstAtKeys(source, fit), 1e-3);
            EXPECT_LT(largestJump(fit), 360.0);
            // The middles and thirds of all pieces are held to the tolerance; elsewhere it can be a little
            // more.
            EXPECT_LT(worstBetween(source, fit, 5000), fit.unreached == 0 ? 0.02 : 3.0) << seed;
        }
    }
}

TEST(FitRotation, NeedsNoExtraKeysForATurnAboutOneAxis) {
    MotionChannel<4> channel;
    const double half = std::sqrt(0.5);
    channel.keys = {{0, {0, 0, 0, 1}, {}, {}}, {1, {0, half, 0, half}, {}, {}}, {2, {0, 0, 0, 1}, {}, {}}};
    const RotationFit fit = fitRotation(RotationSource(channel), {});
    EXPECT_EQ(fit.addedKeys, 0U);
    EXPECT_NEAR(fit.curves[1][1].value, 90.0, 1e-9);
    EXPECT_EQ(fit.curves[1][0].toNext, SegmentShape::Straight);
}

TEST(FitRotation, GoesThroughGimbalLockWithoutAJump) {
    // A turn about X leads Y of the scene's angles through a right angle once Z has tilted it.
    MotionChannel<3> channel;
    for (int i = 0; i <= 36; ++i)
        channel.keys.push_back({i * 0.1, {i * 10.0, 0, 90}, {}, {}});
    const RotationSource source(channel, {0, 2, 1});
    const RotationFit fit = fitRotation(source, {0.01, 1e-3});
    EXPECT_LT(worstAtKeys(source, fit), 1e-3);
    EXPECT_LT(largestJump(fit), 360.0);
}

TEST(FitRotation, HoldsSteps) {
    MotionChannel<4> channel = randomQuaternions(3, Interpolation::Step, 5);
    const RotationSource source(channel);
    const RotationFit fit = fitRotation(source, {});
    EXPECT_EQ(fit.addedKeys, 0U);
    EXPECT_EQ(fit.curves[0][2].toNext, SegmentShape::Step);
    EXPECT_LT(worstAtKeys(source, fit), 1e-3);
}

TEST(FitRotation, IsCutShortOnASourceThatSpinsWithoutEnd) {
    MotionChannel<4> channel = randomQuaternions(1, Interpolation::Cubic, 2);
    channel.keys[0].outTangent = {1e9, -3e8, 5e8, 1e9};
    channel.keys[1].inTangent = {-1e9, 7e8, 5e8, 1e9};
    channel.keys[1].time = 1e6;
    const RotationFit fit = fitRotation(RotationSource(channel), {});
    EXPECT_LT(fit.curves[0].size(), 3000U);
    EXPECT_GT(fit.unreached, 0U);
}

TEST(FitRotation, TakesAnyNumberOfKeys) {
    EXPECT_TRUE(fitRotation(RotationSource(MotionChannel<4>{}), {}).curves[0].empty());
    EXPECT_EQ(
        fitRotation(RotationSource(randomQuaternions(1, Interpolation::Linear, 1)), {}).curves[0].size(), 1U);
    EXPECT_EQ(fitRotation(RotationSource(randomQuaternions(1, Interpolation::Cubic, 1)), {}).curves[0].size(),
              1U);
}

TEST(CurvesOf, CarriesKeysSlopesAndShape) {
    MotionChannel<3> channel;
    channel.interpolation = Interpolation::Cubic;
    channel.keys = {{0.5, {1, 2, 3}, {4, 5, 6}, {7, 8, 9}}};
    const CurveTriple curves = curvesOf(channel);
    EXPECT_EQ(curves[1][0].time, 0.5);
    EXPECT_EQ(curves[1][0].value, 2);
    EXPECT_EQ(curves[1][0].inSlope, 5);
    EXPECT_EQ(curves[1][0].outSlope, 8);
    EXPECT_EQ(curves[1][0].toNext, SegmentShape::Smooth);
}

} // namespace
} // namespace ka::motion
