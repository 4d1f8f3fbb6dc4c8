#include "Builders.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <cmath>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Spots = std::vector<Spot>;

constexpr kaUID Later = 4711; // an id that nothing has yet

/// What was asked for once is remembered; each change that makes the answer another one has to be noticed.
class ForgottenChange : public RegistryFixture {
  protected:
    static kaAnimationCurve2D* rising() { return makeCurve(Spots{{0.0F, 0.0F}, {100.0F, 100.0F}}); }

    static float valueOf(const kaAnimationCurve2D* curve) {
        return kaAnimationManager::the()->getField(curve->getField())->value;
    }

    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();
};

TEST_F(ForgottenChange, ACurveAddedAfterTheCurvesWereAskedForIsAmongThem) {
    kaAnimationCurve2D* first = rising();
    kaAnimationCurve2D* second = rising();
    kaAnimationUnit* block = makeBlock({first});
    kaAnimationStreak* track = makeTrack({block});
    kaAnimationStrip* clip = makeClip({track});
    for (const kaAnimationObject* object :
         {static_cast<kaAnimationObject*>(block), static_cast<kaAnimationObject*>(track),
          static_cast<kaAnimationObject*>(clip)})
        ASSERT_THAT(object->getCurves(), ElementsAre(first));
    block->addObject(second);
    EXPECT_THAT(block->getCurves(), UnorderedElementsAre(first, second));
    EXPECT_THAT(track->getCurves(), UnorderedElementsAre(first, second));
    EXPECT_THAT(clip->getCurves(), UnorderedElementsAre(first, second));
    block->subObject(second, false);
    EXPECT_THAT(block->getCurves(), ElementsAre(first));
    EXPECT_THAT(track->getCurves(), ElementsAre(first));
    EXPECT_THAT(clip->getCurves(), ElementsAre(first));
}

TEST_F(ForgottenChange, ACurveAddedAfterAnEvaluationTakesPartInTheNext) {
    kaAnimationCurve2D* first = rising();
    kaAnimationCurve2D* second = rising();
    kaAnimationUnit* block = makeBlock({first});
    controller->evaluateObject(block, 10.0F, false);
    ASSERT_NEAR(valueOf(first), 10.0F, 1e-3F);
    block->addObject(second);
    controller->evaluateObject(block, 20.0F, false);
    EXPECT_NEAR(valueOf(first), 20.0F, 1e-3F);
    EXPECT_NEAR(valueOf(second), 20.0F, 1e-3F);
    block->subObject(second, false);
    controller->evaluateObject(block, 30.0F, false);
    EXPECT_NEAR(valueOf(first), 30.0F, 1e-3F);
    EXPECT_NEAR(valueOf(second), 20.0F, 1e-3F);
}

TEST_F(ForgottenChange, AListOfCurvesWrittenByTheHostTakesThePlaceOfTheOneBefore) {
    kaAnimationCurve2D* first = rising();
    kaAnimationCurve2D* second = rising();
    kaAnimationUnit* block = makeBlock({first});
    ASSERT_THAT(block->getCurves(), ElementsAre(first));
    block->setCurveIDs({second->getId()});
    EXPECT_THAT(block->getCurves(), ElementsAre(second));
    block->setCurveIDs({});
    EXPECT_THAT(block->getCurves(), IsEmpty());
}

/// A block that lists ids which the registry learns, gives to others and forgets, without a word to the
/// block.
class ListedCurve : public ForgottenChange {
  protected:
    void SetUp() override {
        ForgottenChange::SetUp();
        first = rising();
        block = manager->createUnit(0);
        block->setCurveIDs({first->getId(), Later});
        ASSERT_THAT(block->getCurves(), ElementsAre(first));
    }

    kaAnimationCurve2D* first = nullptr;
    kaAnimationUnit* block = nullptr;
};

TEST_F(ListedCurve, IsThereOnceItIsMade) {
    kaAnimationCurve2D* made = manager->createCurve2D(Later);
    EXPECT_THAT(block->getCurves(), UnorderedElementsAre(first, made));
}

TEST_F(ListedCurve, IsGoneOnceItIsDestroyed) {
    manager->createCurve2D(Later);
    ASSERT_EQ(block->getCurves().size(), 2U);
    manager->destroyCurve2D(manager->getCurve2D(Later));
    EXPECT_THAT(block->getCurves(), ElementsAre(first));
}

TEST_F(ListedCurve, IsGoneOnceAHostHasDeletedItItself) {
    kaAnimationCurve2D* made = manager->createCurve2D(Later);
    ASSERT_EQ(block->getCurves().size(), 2U);
    delete made;
    EXPECT_THAT(block->getCurves(), ElementsAre(first));
}

TEST_F(ListedCurve, ComesAndGoesWithItsId) {
    kaAnimationCurve2D* other = rising();
    manager->setID(Later, other);
    EXPECT_THAT(block->getCurves(), UnorderedElementsAre(first, other));
    manager->setID(Later + 1, other);
    EXPECT_THAT(block->getCurves(), ElementsAre(first));
}

TEST_F(ListedCurve, IsTheOneThatHasTheIdNow) {
    manager->createCurve2D(Later);
    ASSERT_EQ(block->getCurves().size(), 2U);
    manager->destroyCurve2D(manager->getCurve2D(Later));
    kaAnimationUnit* noCurve = manager->createUnit(Later);
    EXPECT_THAT(block->getCurves(), ElementsAre(first));
    manager->destroyUnit(noCurve);
    kaAnimationCurve2D* made = manager->createCurve2D(Later);
    EXPECT_THAT(block->getCurves(), UnorderedElementsAre(first, made));
}

// The field of a curve, which is remembered, too.

class ListedField : public ForgottenChange {
  protected:
    /// @return whether the field got the value of the frame.
    bool isDriven(const kaAnimationField* field, float frame) {
        controller->evaluateObject(curve, frame, false);
        return std::abs(field->value - frame) < 1e-3F;
    }

    kaAnimationCurve2D* curve = nullptr;

  private:
    void SetUp() override {
        ForgottenChange::SetUp();
        curve = rising();
        curve->setField(Later);
        controller->evaluateObject(curve, 1.0F, false);
    }
};

TEST_F(ListedField, IsDrivenOnceItIsMade) {
    EXPECT_TRUE(isDriven(manager->createField(Later), 10.0F));
}

TEST_F(ListedField, IsDrivenOnceItHasTheId) {
    kaAnimationField* field = manager->createField(0);
    EXPECT_FALSE(isDriven(field, 10.0F));
    manager->setID(Later, field);
    EXPECT_TRUE(isDriven(field, 20.0F));
    manager->setID(Later + 1, field);
    EXPECT_FALSE(isDriven(field, 30.0F));
}

TEST_F(ListedField, ThatIsGoneBelongsToNoNode) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    kaAnimationField* field = manager->createField(Later);
    field->nodeID = node.getFieldContainerId();
    ASSERT_EQ(curve->getParentOSGNode(), node);
    manager->destroyField(field);
    EXPECT_EQ(curve->getParentOSGNode(), osg::NullFC);
}

// Copies.

/// A curve without keys ignores being selected or locked, and a copy has none at that moment.
TEST_F(ForgottenChange, TheCopyOfASelectedCurveHasSelectedKeysAndIsNotSelected) {
    kaAnimationCurve2D* curve = rising();
    curve->setSelected(true);
    ASSERT_TRUE(curve->isSelected());
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_FALSE(copy->isSelected());
    for (const kaControlPoint2D* key : keysOf(*copy))
        EXPECT_TRUE(key->isSelected());
}

TEST_F(ForgottenChange, TheCopyOfACurveHasTheFlagsOfTheCurve) {
    using Curve = kaAnimationCurve2D;
    const struct {
        const char* name;
        void (*set)(Curve&);
        bool (*get)(const Curve&);
        bool kept;
    } rows[] = {
        {"inactive", [](Curve& c) { c.setActive(false); }, [](const Curve& c) { return !c.isActive(); },
         true},
        {"playing", [](Curve& c) { c.setPlaying(true); }, [](const Curve& c) { return c.isPlaying(); }, true},
        {"repeating", [](Curve& c) { c.setRepeating(true); }, [](const Curve& c) { return c.isRepeating(); },
         true},
        {"flipped", [](Curve& c) { c.setFlipped(true); }, [](const Curve& c) { return c.isFlipped(); }, true},
        {"trimmed", [](Curve& c) { c.setTrimmed(true); }, [](const Curve& c) { return c.isTrimmed(); }, true},
        {"blurred", [](Curve& c) { c.setMotionBlur(true); }, [](const Curve& c) { return c.isMotionBlur(); },
         true},
        {"reverse", [](Curve& c) { c.setReversePlay(true); },
         [](const Curve& c) { return c.isReversePlay(); }, false},
        {"pausing", [](Curve& c) { c.setPausing(true); }, [](const Curve& c) { return c.isPausing(); },
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Curve* curve = rising();
        EXPECT_FALSE(row.get(*manager->duplicateCurve2D(curve)));
        row.set(*curve);
        EXPECT_EQ(row.get(*manager->duplicateCurve2D(curve)), row.kept);
    }
}

TEST_F(ForgottenChange, TheCopyOfACurveHasItsNumbersFieldAndColour) {
    kaAnimationCurve2D* curve = rising();
    curve->setRangeBegin(3.0F);
    curve->setRangeEnd(7.0F);
    curve->setName("turn");
    curve->setColor(osg::Color3f(0.25F, 0.5F, 0.75F));
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_EQ(copy->getRangeBegin(), 3.0F);
    EXPECT_EQ(copy->getRangeEnd(), 7.0F);
    EXPECT_EQ(copy->getName(), "turn");
    EXPECT_EQ(copy->getColor(), osg::Color3f(0.25F, 0.5F, 0.75F));
    EXPECT_EQ(copy->getField(), curve->getField());
    EXPECT_THAT(copy->getCurveIDs(), ElementsAre(copy->getId()));
}

} // namespace
