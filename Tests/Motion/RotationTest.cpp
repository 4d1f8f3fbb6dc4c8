#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <kaMotion/Rotation.h>
#include <random>

namespace ka::motion {
namespace {

constexpr EulerOrder everyOrder[] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

double largestStep(const Vec3& a, const Vec3& b) {
    return std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])});
}

TEST(MatrixFromAngles, TurnsTheAxesTheRightWayRound) {
    const auto turned = [](const Vec3& degrees, const Vec3& point) {
        return product(matrixFromAngles(degrees, sceneOrder), point);
    };
    const auto near = [](const Vec3& a, const Vec3& b) { return largestStep(a, b) < 1e-12; };
    EXPECT_TRUE(near(turned({90, 0, 0}, {0, 1, 0}), {0, 0, 1}));
    EXPECT_TRUE(near(turned({0, 90, 0}, {0, 0, 1}), {1, 0, 0}));
    EXPECT_TRUE(near(turned({0, 0, 90}, {1, 0, 0}), {0, 1, 0}));
}

TEST(MatrixFromAngles, MultipliesInTheStatedOrder) {
    // Rz·Rx: the point is first turned about X, from Y to Z, where the turn about Z leaves it.
    const Vec3 point = product(matrixFromAngles({90, 0, 90}, {2, 0, 1}), Vec3{0, 1, 0});
    EXPECT_NEAR(point[2], 1.0, 1e-12);
    // Rx·Rz: first about Z, from Y to -X, which X leaves.
    const Vec3 other = product(matrixFromAngles({90, 0, 90}, {0, 2, 1}), Vec3{0, 1, 0});
    EXPECT_NEAR(other[0], -1.0, 1e-12);
}

TEST(SceneAngles, KeepEveryRotationOfEveryOrder) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> any(-720.0, 720.0);
    for (const EulerOrder& order : everyOrder) {
        for (int i = 0; i < 2000; ++i) {
            const Matrix3 wanted = matrixFromAngles({any(random), any(random), any(random)}, order);
            const Vec3 previous{any(random), any(random), any(random)};
            const Vec3 angles = sceneAngles(wanted, previous);
            EXPECT_LT(angleBetween(wanted, matrixFromAngles(angles, sceneOrder)), 1e-9);
            EXPECT_LE(largestStep(angles, previous), 180.0 + 1e-9);
        }
    }
}

TEST(SceneAngles, StayExactAroundGimbalLock) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> any(-180.0, 180.0);
    for (const double y : {90.0, -90.0, 270.0})
        for (const double off : {0.0, 1e-12, 1e-9, 1e-7, 1e-5, 1e-3, 0.1})
            for (int i = 0; i < 200; ++i) {
                const Matrix3 wanted = matrixFromAngles({any(random), y + off, any(random)}, sceneOrder);
                const Vec3 previous{any(random), y, any(random)};
                const Vec3 angles = sceneAngles(wanted, previous);
                EXPECT_LT(angleBetween(wanted, matrixFromAngles(angles, sceneOrder)), 1e-5)
                    << y << " + " << off;
                EXPECT_LE(largestStep(angles, previous), 180.0 + 1e-9);
            }
}

TEST(SceneAngles, LeaveTheAnglesAloneWhereOnlyTheirSumIsGiven) {
    const Vec3 locked{20, 90, 50};
    const Vec3 angles = sceneAngles(matrixFromAngles(locked, sceneOrder), locked);
    EXPECT_LT(largestStep(angles, locked), 1e-6);
}

TEST(NearestAngles, UnwindsWholeTurns) {
    const Vec3 angles = nearestAngles({-179, 0, 350}, sceneOrder, {179, 0, 10});
    EXPECT_LT(largestStep(angles, {181, 0, -10}), 1e-12);
}

TEST(NearestAngles, TakesTheOtherSolutionWhereItIsNearer) {
    // (x + 180, 180 - y, z + 180) is the same rotation as (x, y, z).
    const Vec3 before{10, 85, 20}, flipped{190 + 1, 180 - 86, 200 - 1};
    EXPECT_LT(largestStep(nearestAngles(flipped, sceneOrder, before), {11, 86, 19}), 1e-9);
}

TEST(ContinuedAngles, KeepTheFilesNumbersUpToWholeTurns) {
    // Nearer in sum would be (-4, -101, 5), but no file that says -79 wants to read that.
    EXPECT_LT(largestStep(continuedAngles({176, -79, -175}, sceneOrder, {0, 0, 0}), {176, -79, -175}), 1e-9);
    EXPECT_LT(largestStep(continuedAngles({0, 0, -179}, sceneOrder, {0, 0, 539}), {0, 0, 541}), 1e-9);
}

TEST(ContinuedAngles, FollowTheRotationWhereTheFileFlipsOver) {
    const Vec3 flipped{190 + 1, 180 - 86, 200 - 1};
    EXPECT_LT(largestStep(continuedAngles(flipped, sceneOrder, {10, 85, 20}), {11, 86, 19}), 1e-9);
}

TEST(NearestAngles, GiveTheSameRotationInEveryOrder) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> any(-500.0, 500.0);
    for (const EulerOrder& order : everyOrder)
        for (int i = 0; i < 500; ++i) {
            const Vec3 angles{any(random), any(random), any(random)},
                previous{any(random), any(random), any(random)};
            const Vec3 nearest = nearestAngles(angles, order, previous);
            EXPECT_LT(angleBetween(matrixFromAngles(angles, order), matrixFromAngles(nearest, order)), 1e-9);
            EXPECT_LE(largestStep(nearest, previous), 180.0 + 1e-9);
            const Vec3 continued = continuedAngles(angles, order, previous);
            EXPECT_LT(angleBetween(matrixFromAngles(angles, order), matrixFromAngles(continued, order)),
                      1e-9);
            EXPECT_LE(largestStep(continued, previous), 180.0 + 1e-9);
        }
}

TEST(Quaternions, AgreeWithMatricesBothWays) {
    std::mt19937_64 random(4);
    std::normal_distribution<double> any;
    for (int i = 0; i < 2000; ++i) {
        const Quaternion q = normalized({any(random), any(random), any(random), any(random)});
        const Matrix3 m = matrixFromQuaternion(q);
        EXPECT_LT(angleBetween(m, matrixFromQuaternion(quaternionFromMatrix(m))), 1e-10);
    }
    const double half = std::sqrt(0.5);
    EXPECT_LT(
        angleBetween(matrixFromQuaternion({half, 0, 0, half}), matrixFromAngles({90, 0, 0}, sceneOrder)),
        1e-10);
}

TEST(Quaternions, WithoutDirectionAreNeutral) {
    EXPECT_EQ(normalized({0, 0, 0, 0}).w, 1.0);
    EXPECT_EQ(normalized({0, 0, 0, 1e-300}).w, 1.0);
    EXPECT_EQ(normalized({std::nan(""), 0, 0, 0}).w, 1.0);
}

TEST(Slerp, TurnsTheShortestWayAtConstantSpeed) {
    const Quaternion none{0, 0, 0, 1};
    const double third = std::sin(M_PI / 6), rest = std::cos(M_PI / 6); // 60 degrees about Z
    for (const double sign : {1.0, -1.0}) {
        const Quaternion turned{0, 0, sign * third, sign * rest};
        const Matrix3 m = matrixFromQuaternion(slerp(none, turned, 0.25));
        EXPECT_NEAR(angleBetween(m, matrixFromAngles({0, 0, 15}, sceneOrder)), 0.0, 1e-9);
    }
}

TEST(AngleBetween, IsExactForTinyAngles) {
    const Matrix3 none = matrixFromAngles({0, 0, 0}, sceneOrder);
    for (const double angle : {1e-9, 1e-5, 1.0, 90.0, 179.0})
        EXPECT_NEAR(angleBetween(none, matrixFromAngles({0, angle, 0}, sceneOrder)) / angle, 1.0, 1e-6);
}

} // namespace
} // namespace ka::motion
