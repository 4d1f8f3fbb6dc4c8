#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;

namespace {

/// What a host evaluates when its user scrubs.
class Evaluate : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        object = makeBlock(0.0F, 10.0F);
        track = makeTrack({object}); // keeps the block out of the scene's list
        curve = makeCurve(std::vector<Spot>{{0.0F, 0.0F}, {20.0F, 1.0F}});
        active = makeBlock(0.0F, 40.0F);
        inactive = makeBlock(0.0F, 80.0F);
        inactive->kaAnimationObject::setActive(false);
        controller->setObjectID(object->getId());
        controller->setCurveIDs({4711, curve->getId(), object->getId()});
        for (kaAnimationCurve2D* each : {curveOf(object), curve, curveOf(active), curveOf(inactive)})
            manager->getField(each->getField())->value = Untouched;
    }

    void expectValues(float ofObject, float ofCurve, float ofActive) {
        EXPECT_NEAR(valueOf(curveOf(object)), ofObject, 1e-5F);
        EXPECT_NEAR(valueOf(curve), ofCurve, 1e-5F);
        EXPECT_NEAR(valueOf(curveOf(active)), ofActive, 1e-5F);
        EXPECT_EQ(valueOf(curveOf(inactive)), Untouched);
    }

    static constexpr float Untouched = -7.0F;
    kaAnimationUnit* object = nullptr;
    kaAnimationStreak* track = nullptr;
    kaAnimationCurve2D* curve = nullptr;
    kaAnimationUnit* active = nullptr;
    kaAnimationUnit* inactive = nullptr;
};

TEST_F(Evaluate, EvaluatesTheObjectAndTheCurvesThatTheHostEdits) {
    controller->evaluate(5.0F, false);
    expectValues(0.5F, 0.25F, Untouched);
}

TEST_F(Evaluate, EvaluatesTheActiveBlocksOfTheSceneWhenSwitchedOn) {
    controller->setEvalActiveUnits(true);
    EXPECT_TRUE(controller->isEvalActiveUnits());
    controller->evaluate(5.0F, false);
    expectValues(0.5F, 0.25F, 0.125F);
}

TEST_F(Evaluate, EvaluatesWhatIsAskedForOnly) {
    controller->evaluate(5.0F, true, false, false, false);
    expectValues(0.5F, Untouched, Untouched);
    controller->evaluate(10.0F, false, true, false, false);
    expectValues(0.5F, 0.5F, Untouched);
    controller->evaluate(10.0F, false, false, true, false);
    expectValues(0.5F, 0.5F, 0.25F);
    controller->evaluate(1.0F, false, false, false, false);
    expectValues(0.5F, 0.5F, 0.25F);
}

TEST_F(Evaluate, OfNothingIsFine) {
    controller->setObjectID(0);
    controller->setCurveIDs({});
    controller->evaluate(5.0F, false);
    expectValues(Untouched, Untouched, Untouched);
    EXPECT_TRUE(controller->getCurveIDs().empty());
    EXPECT_EQ(controller->getObjectID(), 0ULL);
}

TEST_F(Evaluate, ForMotionBlurMovesFlaggedCurvesOnly) {
    curve->setMotionBlur(true);
    controller->evaluate(5.0F, true);
    expectValues(Untouched, 0.25F, Untouched);
}

TEST_F(Evaluate, LooseCurvesAreHeldAtTheirJointRange) {
    kaAnimationCurve2D* late = makeCurve(std::vector<Spot>{{10.0F, 5.0F}, {30.0F, 6.0F}});
    controller->evaluateCurves({nullptr, curve, late}, 100.0F, false);
    EXPECT_EQ(valueOf(curve), 1.0F);
    EXPECT_EQ(valueOf(late), 6.0F);
    controller->evaluateCurves({late, nullptr, curve}, -100.0F, false);
    EXPECT_EQ(valueOf(curve), 0.0F);
    EXPECT_NEAR(valueOf(late), 5.0F, 1e-5F);
}

TEST_F(Evaluate, NoCurvesAtAllWriteNothing) {
    controller->evaluateCurves({}, 5.0F, false);
    controller->evaluateCurves({nullptr, nullptr}, 5.0F, false);
    expectValues(Untouched, Untouched, Untouched);
}

/// Both drive one field over the same span: the one that comes later in the list is written later and wins.
TEST_F(Evaluate, CurvesOfOneSpanKeepTheirOrder) {
    kaAnimationCurve2D* low = makeCurve(std::vector<Spot>{{0.0F, 1.0F}, {10.0F, 1.0F}});
    kaAnimationCurve2D* high = makeCurve(std::vector<Spot>{{0.0F, 2.0F}, {10.0F, 2.0F}});
    high->setField(low->getField());
    controller->evaluateCurves({nullptr, low, high}, 5.0F, false);
    EXPECT_NEAR(valueOf(low), 2.0F, 1e-5F);
    controller->evaluateCurves({high, nullptr, low}, 5.0F, false);
    EXPECT_NEAR(valueOf(low), 1.0F, 1e-5F);
}

TEST_F(Evaluate, FieldsAreWrittenAndCounted) {
    kaAnimationField* field = manager->getField(curve->getField());
    EXPECT_EQ(controller->updateAnimationFields({}), 0U);
    EXPECT_EQ(controller->updateAnimationFields({field, nullptr, field}), 2U);
}

} // namespace
