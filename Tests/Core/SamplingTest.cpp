#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaAnimationManager.h"

#include <cmath>

using namespace ka_test;

namespace {

using Spots = std::vector<Spot>;
using Keys = std::vector<Key>;

constexpr float UNTOUCHED = -12345.0F;

class Sampling : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();

    static bool sample(kaAnimationCurve2D* curve, float frame, float& value) {
        value = UNTOUCHED;
        return kaAnimationController::the()->computeCurveValue(curve, frame, value);
    }
    static void expectValue(kaAnimationCurve2D* curve, float frame, float expected) {
        float value = 0.0F;
        EXPECT_TRUE(sample(curve, frame, value)) << "at " << frame;
        EXPECT_FLOAT_EQ(value, expected) << "at " << frame;
    }
    static void expectAnswerAlone(kaAnimationCurve2D* curve, float frame, bool answer) {
        float value = 0.0F;
        EXPECT_EQ(sample(curve, frame, value), answer) << "at " << frame;
        EXPECT_EQ(value, UNTOUCHED) << "at " << frame;
    }
    /// (0, 0) to (30, 1).
    static kaAnimationCurve2D* segment(const Spot& out, const Spot& in) {
        return makeCurve(Keys{{{0, 0}, {0, 0}, out}, {{30, 1}, in, {30, 1}}});
    }
};

TEST_F(Sampling, NeedsACurveWithTwoKeys) {
    expectAnswerAlone(nullptr, 0, false);
    expectAnswerAlone(manager->createCurve2D(0ULL), 0, false);
    for (float frame : {-1.0F, 5.0F, 9.0F})
        expectAnswerAlone(makeCurve(Spots{{5, 7}}), frame, false);
}

TEST_F(Sampling, KeysThatTheRegistryDoesNotKnowDoNotCount) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{5, 7}, {9, 8}});
    kaControlPoint2D* last = curve->findPoint(9.0F);
    last->setParent(0);
    manager->destroyPoint2D(last);
    ASSERT_EQ(curve->getChildCount(), 2U);
    expectAnswerAlone(curve, 6, false);
}

TEST_F(Sampling, KeysAllAtOneFrameAnswerWhetherTheFirstHasAValue) {
    for (float frame : {4.0F, 5.0F, 6.0F}) {
        expectAnswerAlone(makeCurve(Keys{stepKey(5, 2), stepKey(5, 0)}), frame, true);
        expectAnswerAlone(makeCurve(Keys{stepKey(5, 0), stepKey(5, 2)}), frame, false);
        expectAnswerAlone(makeCurve(Keys{stepKey(5, -0.0F), stepKey(5, 2), stepKey(5, 3)}), frame, false);
    }
}

TEST_F(Sampling, OfTwoKeysAtOneFrameAmongOthersTheFirstCounts) {
    kaAnimationCurve2D* curve = makeCurve(Keys{stepKey(0, 1), stepKey(10, 5), stepKey(10, 9)});
    expectValue(curve, 10, 5);
    expectValue(curve, -1, 5); // the second of the two keys that are left
}

TEST_F(Sampling, BeforeTheFirstKeyGivesTheSecondKeysValue) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 1}, {10, 2}, {20, 3}});
    expectValue(curve, -0.001F, 2);
    expectValue(curve, -1e30F, 2);
    expectValue(curve, -INFINITY, 2);
}

TEST_F(Sampling, AtAndAfterTheLastKeyGivesItsValue) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 1}, {10, 2}, {20, 3}});
    for (float frame : {20.0F, 20.001F, 1e30F, INFINITY})
        expectValue(curve, frame, 3);
}

TEST_F(Sampling, OnAKeyGivesItsValue) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 1}, {10, 2}, {20, 3}});
    expectValue(curve, 0, 1);
    expectValue(curve, 10, 2);
}

TEST_F(Sampling, HandlesOnTheirKeysHoldTheLeftValue) {
    kaAnimationCurve2D* curve = makeCurve(Keys{stepKey(0, 4), stepKey(10, 8), stepKey(20, 1)});
    for (float frame : {0.0F, 5.0F, 9.999F})
        expectValue(curve, frame, 4);
    expectValue(curve, 10, 8);
    expectValue(curve, 19.999F, 8);
    expectValue(curve, 20, 1);
}

TEST_F(Sampling, AStepNeedsAllFourHandleCoordinatesOnTheirKeys) {
    float value = 0.0F;
    ASSERT_TRUE(sample(segment({0, 0}, {30, 1}), 15, value));
    EXPECT_EQ(value, 0.0F);
    ASSERT_TRUE(sample(segment({0, 0.5F}, {30, 1}), 15, value)); // t = 1/2: 3/8 of 0.5, 3/8 of 1, 1/8 of 1
    EXPECT_FLOAT_EQ(value, 0.6875F);
}

TEST_F(Sampling, AStepsValueIsTakenAsItIs) {
    expectValue(makeCurve(Keys{stepKey(0, 5e-7F), stepKey(10, 1)}), 5, 5e-7F);
}

TEST_F(Sampling, GivesHandWorkedValuesByTheCubicFormula) {
    // Handles half way, flat: by symmetry the middle is the middle.
    kaAnimationCurve2D* ease = segment({15, 0}, {15, 1});
    expectValue(ease, 15, 0.5F);
    // At t = 1/4 the time is 1.5/4 * 9/16 + 1.5/16 * 3/4 + 1/64 = 0.296875 and the value 3/16 * 3/4 + 1/64.
    expectValue(ease, 8.90625F, 0.15625F);
    expectValue(ease, 21.09375F, 0.84375F);
}

TEST_F(Sampling, HandlesAtThirdsMakeTheTimeLinear) {
    kaAnimationCurve2D* curve = segment({10, 0.5F}, {20, 0.5F});
    expectValue(curve, 15, 0.5F);
    expectValue(curve, 6, 0.248F); // t = 0.2: 0.5 * (0.384 + 0.096) + 0.008
    expectValue(curve, 24, 0.752F);
    float value = 0.0F;
    ASSERT_TRUE(sample(curve, 0, value));
    EXPECT_EQ(value, 0.0F);
}

TEST_F(Sampling, WithoutACubicTermTheTimeIsAParabola) {
    // Out handle on its key's frame, in handle at a third: the time is t^2.
    expectValue(segment({0, 0.25F}, {10, 0.5F}), 7.5F, 0.40625F); // t = 1/2: 0.375 * 0.75 + 0.125
    // Out handle at two thirds, in handle on the last frame: 2 t - t^2; 3/4 of the way at t = 1/2.
    expectValue(segment({20, 0.25F}, {30, 0.5F}), 22.5F, 0.40625F);
    // Out handle a third before the segment, in handle on its begin: 2 t^2 - t, which is 0 at 0 and at 1/2;
    // the smallest root counts.
    expectValue(segment({-10, 8}, {0, 8}), 0.0F, 0.0F);
}

/// At its own frame a key with a handle that points backwards comes twice, here with t = 0 and t = 1/2. Of
/// three roots the largest is tried first, then the smallest: the third, far outside, changes sides as the in
/// handle passes the place where the time is a parabola.
TEST_F(Sampling, AtAKeyWhoseHandlePointsBackwardsTheThirdRootDecides) {
    constexpr float Tiny = 3e-6F; // the cubic coefficient is a tenth of it
    expectValue(segment({-10, 8}, {Tiny, 8}), 0, 0);
    expectValue(segment({-10, 8}, {0, 8}), 0, 0);
    expectValue(segment({-10, 8}, {-Tiny, 8}), 0, 6.125F); // 3/8 of 8, 3/8 of 8, 1/8 of 1
    for (float in : {Tiny, 1e-7F, 0.0F, -1e-7F, -Tiny})    // behind the key there is one root
        expectValue(segment({-10, 8}, {in, 8}), 1e-6F, 6.125F);
}

TEST_F(Sampling, NearlyWithoutACubicTermTheTimeIsNearlyAParabola) {
    // 0.42 and 8.76 of 25 frames: the formula, whose digits cancel here, gave 5e23 for some frames.
    kaAnimationCurve2D* curve =
        makeCurve(Keys{{{0, 0}, {0, 0}, {0.42281309F, 0}}, {{25, 1}, {8.7561464F, 0}, {25, 1}}});
    // At t = 1/2 the frame is 3/8 of each handle and 1/8 of 25.
    expectValue(curve, 6.5671098F, 0.125F);
    expectValue(curve, 0, 0);
    for (int i = 1; i < 1000; ++i) {
        float value = -1.0F;
        ASSERT_TRUE(sample(curve, 0.025F * static_cast<float>(i), value));
        EXPECT_GT(value, 0.0F);
        EXPECT_LT(value, 1.0F);
    }
}

TEST_F(Sampling, NearATripleRootThePlainPowerRefusesOnOneSide) {
    // Handles on the far keys' frames: the time is 4 t^3 - 6 t^2 + 3 t, so p = 0, and q = 1/8 - s/4. For s =
    // 0.506 q = -0.0015 and the discriminant is 5.6e-7: the powers of negative numbers are undefined. For s =
    // 0.494 t = 1/2 - (0.006)^(1/3) = 0.318288, where the value is 3 t^2 - 2 t^3 = 0.239432.
    kaAnimationCurve2D* curve = segment({30, 0}, {0, 1});
    expectAnswerAlone(curve, 15.18F, false);
    float value = 0.0F;
    ASSERT_TRUE(sample(curve, 14.82F, value));
    EXPECT_NEAR(static_cast<double>(value), 0.239432, 1e-5);
    expectValue(curve, 15, 0.5F); // here p and q are both 0
}

TEST_F(Sampling, BesidesATripleRootTheSignedRootHolds) {
    // s = 0.6: q = -0.025, discriminant 1.6e-4; t = 1/2 + 0.025^(1/3) = 0.792402, 3 t^2 - 2 t^3 = 0.888603.
    float value = 0.0F;
    ASSERT_TRUE(sample(segment({30, 0}, {0, 1}), 18, value));
    EXPECT_NEAR(static_cast<double>(value), 0.888603, 1e-5);
}

TEST_F(Sampling, OfThreeRootsTheFirstTriedCounts) {
    // Handles at 1.5 and -0.5 of the way: the time is 7 t^3 - 10.5 t^2 + 4.5 t, half way at t = 1/2 and at
    // 1/2 +- sqrt(3/28) = 0.827327 and 0.172673. The first tried is the largest.
    float value = 0.0F;
    ASSERT_TRUE(sample(segment({45, 0}, {-15, 1}), 15, value));
    EXPECT_NEAR(static_cast<double>(value), 0.920849, 1e-5); // 3 t^2 - 2 t^3 at 0.827327
}

TEST_F(Sampling, ResultsNearZeroBecomeZero) {
    const auto level = [](float y) {
        return makeCurve(Keys{{{0, y}, {0, y}, {5, y}}, {{10, y}, {5, y}, {10, y}}});
    };
    float value = 0.0F;
    ASSERT_TRUE(sample(level(5e-7F), 5, value));
    EXPECT_EQ(value, 0.0F);
    ASSERT_TRUE(sample(level(-9.9e-7F), 5, value));
    EXPECT_EQ(value, 0.0F);
    expectValue(level(-2e-6F), 5, -2e-6F);
    expectValue(level(2e-6F), 5, 2e-6F);
    expectValue(level(5e-7F), 10, 5e-7F); // a key's value as such is not a result of the formula
}

TEST_F(Sampling, MissingHandlesStandOnTheirKeys) {
    kaAnimationCurve2D* curve = segment({15, 0}, {15, 1});
    manager->destroyPoint2D(curve->findPoint(0.0F)->getOutTangent());
    manager->destroyPoint2D(curve->findPoint(30.0F)->getInTangent());
    float value = 0.0F;
    ASSERT_TRUE(sample(curve, 15, value));
    EXPECT_EQ(value, 0.0F) << "a step now";
}

/// Steps, so that the value names the segment: the frame is looked up among many keys in several ways, which
/// must agree on every one.
TEST_F(Sampling, FindsTheSegmentHoweverKeysAreSpaced) {
    struct Spacing {
        const char* name;
        float (*frameOf)(int key);
    };
    constexpr int Count = 100;
    const Spacing spacings[] = {
        {"even", [](int i) { return static_cast<float>(i) * 4.0F; }},
        {"even, of no round width", [](int i) { return -3.7F + static_cast<float>(i) / 30.0F; }},
        {"even after a long first segment", [](int i) { return i == 0 ? -5000.0F : static_cast<float>(i); }},
        {"even but for a gap", [](int i) { return static_cast<float>(i < 40 ? i : i + 20); }},
        {"two widths", [](int i) { return static_cast<float>(i < 50 ? i : 50 + (i - 50) * 3); }},
        {"off even by turns", [](int i) { return static_cast<float>(i) + (i % 2 == 0 ? 0.0F : 0.45F); }},
        {"in pairs", [](int i) { return static_cast<float>(i / 2 * 10 + i % 2); }},
        {"ever wider", [](int i) { return std::ldexp(1.0F, i - 40); }},
        {"crowded in the end",
         [](int i) { return 10.0F - std::ldexp(10.0F, -i / 5) + static_cast<float>(i) * 1e-4F; }},
        {"over all floats", [](int i) { return std::ldexp(i < 50 ? -1.0F : 1.0F, i < 50 ? 120 - i : i); }},
    };
    for (const Spacing& spacing : spacings) {
        SCOPED_TRACE(spacing.name);
        Keys keys;
        for (int i = 0; i < Count; ++i)
            keys.push_back(stepKey(spacing.frameOf(i), static_cast<float>(i + 1)));
        kaAnimationCurve2D* curve = makeCurve(keys);
        ASSERT_EQ(curve->getChildCount(), static_cast<unsigned int>(Count));
        for (float (*within)(float, float) :
             {+[](float first, float) { return first; },
              +[](float first, float second) { return std::nextafter(second, first); },
              +[](float first, float second) { return first / 2.0F + second / 2.0F; }}) {
            for (int turn = 0; turn < Count - 1; ++turn) {
                const int i = turn * 37 % (Count - 1); // never in the segment looked at last
                expectValue(curve, within(spacing.frameOf(i), spacing.frameOf(i + 1)),
                            static_cast<float>(i + 1));
            }
        }
    }
}

/// 32 768 segments fill a huge page.
TEST_F(Sampling, FindsEverySegmentOfCurvesThatGrowBeyondAPage) {
    constexpr int Many = 32767;
    Keys keys;
    for (int i = 0; i < Many; ++i)
        keys.push_back(stepKey(static_cast<float>(i), static_cast<float>(i + 1)));
    kaAnimationCurve2D* curve = makeCurve(keys);
    for (int count = Many; count < Many + 4; ++count) {
        for (int i = 0; i < count - 1; ++i)
            expectValue(curve, static_cast<float>(i) + 0.5F, static_cast<float>(i + 1));
        curve->addObject(makeKey(stepKey(static_cast<float>(count), static_cast<float>(count + 1))));
    }
}

TEST_F(Sampling, SeesEveryDirectWrite) {
    kaAnimationCurve2D* curve = segment({15, 0}, {15, 1});
    kaControlPoint2D* first = curve->findPoint(0.0F);
    kaControlPoint2D* last = curve->findPoint(30.0F);
    expectValue(curve, 15, 0.5F);
    first->setPosition(0, 1);
    place(*first->getOutTangent(), {15, 1});
    expectValue(curve, 15, 1);
    last->setMaximum(5);
    expectValue(curve, 30, 5);
    last->setBegin(40);
    place(*last->getInTangent(), {20, 5});
    place(*first->getOutTangent(), {20, 1});
    expectValue(curve, 20, 3);
    expectValue(curve, 28.125F, 4.375F); // t = 3/4: the time is 45/64 of 40, the value 1 + 4 * 27/32
}

TEST_F(Sampling, SeesKeysComeAndGo) {
    kaAnimationCurve2D* curve = makeCurve(Keys{stepKey(0, 1), stepKey(10, 2)});
    expectValue(curve, 7, 1);
    curve->addObject(makeKey(stepKey(5, 9)));
    expectValue(curve, 7, 9);
    manager->destroyPoint2D(curve->findPoint(5.0F));
    expectValue(curve, 7, 1);
    curve->setChildIDs({curve->getChildIDs()[0]});
    expectAnswerAlone(curve, 7, false);
}

TEST_F(Sampling, SeesKeysThatAreOutOfOrder) {
    kaAnimationCurve2D* curve = makeCurve(Keys{stepKey(0, 1), stepKey(10, 2), stepKey(20, 3)});
    kaControlPoint2D* moved = curve->findPoint(0.0F);
    for (kaControlPoint2D* part : {moved, moved->getInTangent(), moved->getOutTangent()})
        part->setPosition(15, 7);
    expectValue(curve, 12, 2);
    expectValue(curve, 17, 7);
    expectValue(curve, 5, 7); // before the first key, now at 10, the second's value
}

} // namespace
