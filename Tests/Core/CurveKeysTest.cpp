#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"

#include <limits>

using namespace ka_test;
using testing::ElementsAre;

namespace {

using Spots = std::vector<Spot>;

class CurveKeys : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();

    kaControlPoint2D* point(float x, float y) { return manager->createPoint2D(x, y, 0); }
};

std::vector<float> framesOf(const kaAnimationCurve2D& curve) {
    std::vector<float> frames;
    for (const kaControlPoint2D* key : keysOf(curve))
        frames.push_back(spotOf(*key).x);
    return frames;
}

class CurveCreation : public CurveKeys {};

TEST_F(CurveCreation, DrawsItsIdThenItsFields) {
    IdSequence ids;
    const kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    EXPECT_EQ(curve->getId(), ids.next());
    EXPECT_EQ(curve->getField(), ids.next());
    ASSERT_NE(manager->getField(curve->getField()), nullptr);
    EXPECT_EQ(manager->getField(curve->getField())->attribute, "");
    EXPECT_EQ(curve->getTypeID(), 2U);
    EXPECT_EQ(curve->getName(), "Curve");
    EXPECT_EQ(curve->getColor(), osg::Color3f(0, 0, 0)) << "the colour of a field without attribute";
    EXPECT_THAT(curve->getCurveIDs(), ElementsAre(curve->getId()));
    EXPECT_TRUE(curve->getSequenceIDs().empty());
    EXPECT_FALSE(curve->hasChildren());
    EXPECT_EQ(curve->getBegin(), 1e23F);
}

TEST_F(CurveCreation, ForAFieldBindsItAndTakesItsColour) {
    kaAnimationField* field = manager->createField(0);
    field->attribute = "scaleX";
    const kaAnimationCurve2D* curve = manager->createCurve2D(field, "mine", 0, false);
    EXPECT_EQ(curve->getField(), field->getId());
    EXPECT_EQ(curve->getName(), "mine");
    EXPECT_EQ(curve->getColor(), kaAnimationUtils::getDefaultCurveColor(field));
    EXPECT_EQ(manager->getFields().size(), 1U);
}

TEST_F(CurveCreation, ForNoFieldBindsNone) {
    kaAnimationCurve2D curve(static_cast<kaAnimationField*>(nullptr), "mine", 9);
    EXPECT_EQ(curve.getField(), 0ULL);
    EXPECT_EQ(curve.getId(), 9ULL);
    EXPECT_TRUE(manager->getFields().empty());
}

TEST_F(CurveCreation, SetAnimationFieldChangesTheColourAndNullKeepsIt) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    kaAnimationField* field = manager->createField(0);
    field->attribute = "translationY";
    curve->setAnimationField(field);
    EXPECT_EQ(curve->getField(), field->getId());
    const osg::Color3f green(0.298F, 0.898F, 0.298F);
    EXPECT_EQ(curve->getColor(), green);
    curve->setAnimationField(nullptr);
    EXPECT_EQ(curve->getField(), 0ULL);
    EXPECT_EQ(curve->getColor(), green);
}

TEST_F(CurveKeys, StandInOrderOfFrameWhateverTheOrderOfAdding) {
    const kaAnimationCurve2D* curve = makeCurve(Spots{{20, 1}, {0, -2}, {10, 5}, {-5, 0}});
    EXPECT_THAT(framesOf(*curve), ElementsAre(-5, 0, 10, 20));
    EXPECT_EQ(curve->getBegin(), -5.0F);
    EXPECT_EQ(curve->getEnd(), 20.0F);
    EXPECT_EQ(curve->getMinimum(), -2.0F);
    EXPECT_EQ(curve->getMaximum(), 5.0F);
}

TEST_F(CurveKeys, AddingReturnsTheKeyAndMakesTheCurveItsParent) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    kaControlPoint2D* key = point(1, 2);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_EQ(key->getParent(), curve->getId());
}

TEST_F(CurveKeys, AddingAnythingElseIsRefused) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}});
    EXPECT_EQ(curve->addObject(nullptr), nullptr);
    for (kaAnimationObject* other : {static_cast<kaAnimationObject*>(manager->createUnit(0)),
                                     static_cast<kaAnimationObject*>(manager->createCurve2D(0ULL)),
                                     static_cast<kaAnimationObject*>(manager->createSequence("s", 0))}) {
        EXPECT_EQ(curve->addObject(other), nullptr);
        EXPECT_EQ(other->getParent(), 0ULL);
    }
    EXPECT_EQ(curve->getChildCount(), 1U);
}

TEST_F(CurveKeys, AKeyAtTheSameFrameGivesWay) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 1}, {20, 0}});
    const kaUID old = curve->findPoint(10.0F)->getId();
    kaControlPoint2D* key = point(10, 7);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_EQ(manager->getObject(old), nullptr);
    EXPECT_EQ(curve->findPoint(10.0F), key);
    EXPECT_EQ(curve->getChildCount(), 3U);
    EXPECT_EQ(curve->getMaximum(), 7.0F);
}

TEST_F(CurveKeys, AddingAKeyThatTheCurveHoldsKeepsIt) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 1}, {20, 0}});
    kaControlPoint2D* key = curve->findPoint(10.0F);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_THAT(framesOf(*curve), ElementsAre(0, 10, 20));
    EXPECT_EQ(manager->getPoint2D(key->getId()), key);
    EXPECT_EQ(key->getParent(), curve->getId());
}

TEST_F(CurveKeys, AddingRecomputesTheHandlesOfTheKeyAndItsNeighboursOnly) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 0}, {30, 0}, {40, 0}});
    for (kaControlPoint2D* key : keysOf(*curve))
        place(*key->getInTangent(), {-99, -99});
    curve->addObject(point(20, 0));
    std::vector<bool> recomputed;
    for (const kaControlPoint2D* key : keysOf(*curve))
        recomputed.push_back(spotOf(*key->getInTangent()).x != -99.0F);
    EXPECT_THAT(recomputed, ElementsAre(false, true, true, true, false));
}

TEST_F(CurveKeys, OneKeyCanStandInTwoCurves) {
    kaAnimationCurve2D* first = makeCurve(Spots{{0, 0}, {10, 1}});
    kaAnimationCurve2D* second = makeCurve(Spots{{5, 5}});
    kaControlPoint2D* key = first->findPoint(10.0F);
    EXPECT_EQ(second->addObject(key), key);
    EXPECT_EQ(key->getParent(), second->getId());
    EXPECT_EQ(first->getChildCount(), 2U);
    manager->destroyPoint2D(key); // only the second curve is its parent
    EXPECT_EQ(second->getChildCount(), 1U);
    EXPECT_EQ(first->getChildCount(), 2U);
    EXPECT_THAT(framesOf(*first), ElementsAre(0));
    first->updateBounds();
    EXPECT_EQ(first->getEnd(), 0.0F);
}

TEST_F(CurveKeys, RemovingLeavesTheKeyWithoutParentAndTheNeighboursHandlesAlone) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 9}, {20, 0}});
    kaControlPoint2D* key = curve->findPoint(10.0F);
    const Key before = keyOf(*curve->findPoint(0.0F));
    EXPECT_EQ(curve->subObject(key, false), key);
    EXPECT_EQ(key->getParent(), 0ULL);
    EXPECT_THAT(framesOf(*curve), ElementsAre(0, 20));
    EXPECT_EQ(curve->getMaximum(), 0.0F);
    EXPECT_EQ(keyOf(*curve->findPoint(0.0F)).out.y, before.out.y);
    EXPECT_EQ(manager->getPoint2D(key->getId()), key);
}

TEST_F(CurveKeys, RemovingAndDestroyingGivesNull) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 9}});
    const kaUID id = curve->findPoint(10.0F)->getId();
    EXPECT_EQ(curve->subObject(curve->findPoint(10.0F), true), nullptr);
    EXPECT_EQ(manager->getObject(id), nullptr);
    EXPECT_THAT(framesOf(*curve), ElementsAre(0));
}

TEST_F(CurveKeys, RemovingAStrangerIsRefused) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}});
    kaControlPoint2D* stranger = point(0, 0);
    EXPECT_EQ(curve->subObject(nullptr, true), nullptr);
    EXPECT_EQ(curve->subObject(stranger, true), nullptr);
    EXPECT_EQ(curve->subObject(manager->createUnit(0), true), nullptr);
    EXPECT_EQ(manager->getPoint2D(stranger->getId()), stranger);
    EXPECT_EQ(curve->getChildCount(), 1U);
}

TEST_F(CurveKeys, WithoutKeysTheExtentStaysAsItWas) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{3, 4}});
    curve->subObject(curve->findPoint(3.0F), true);
    EXPECT_EQ(curve->getBegin(), 3.0F);
    EXPECT_EQ(curve->getMaximum(), 4.0F);
}

class SetPoints : public CurveKeys {};

TEST_F(SetPoints, ReplacesTheListSortsItAndComputesEveryHandle) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{100, 100}});
    kaControlPoint2D* former = curve->findPoint(100.0F);
    curve->setPoints({point(20, 2), nullptr, point(0, 0), point(10, 1)});
    EXPECT_THAT(framesOf(*curve), ElementsAre(0, 10, 20));
    EXPECT_EQ(curve->getEnd(), 20.0F);
    EXPECT_EQ(former->getParent(), curve->getId()) << "former keys are not detached";
    EXPECT_EQ(manager->getPoint2D(former->getId()), former) << "nor destroyed";
    for (const kaControlPoint2D* key : keysOf(*curve)) {
        EXPECT_EQ(key->getParent(), curve->getId());
        EXPECT_FLOAT_EQ(spotOf(*key->getOutTangent()).x, spotOf(*key).x + 5.0F);
    }
}

TEST_F(SetPoints, WithoutAUsableFirstEntryChangesNothing) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{3, 4}});
    curve->setPoints({});
    curve->setPoints({nullptr, point(1, 1), point(2, 2)});
    EXPECT_THAT(framesOf(*curve), ElementsAre(3));
}

TEST_F(SetPoints, KeepsKeysAtOneFrameInTheOrderGiven) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    kaControlPoint2D* first = point(5, 1);
    kaControlPoint2D* second = point(5, 2);
    curve->setPoints({point(9, 0), first, second});
    EXPECT_EQ(keysOf(*curve)[0], first);
    EXPECT_EQ(keysOf(*curve)[1], second);
    EXPECT_EQ(curve->getPoints().at(5.0F), first);
}

TEST_F(SetPoints, TellsTheAncestors) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{3, 4}});
    const kaAnimationStreak* track = makeTrack({makeBlock({curve})});
    curve->setPoints({point(-7, 0), point(70, 9)});
    EXPECT_EQ(track->getBegin(), -7.0F);
    EXPECT_EQ(track->getEnd(), 70.0F);
    EXPECT_EQ(track->getMaximum(), 9.0F);
}

class DeletingKeys : public CurveKeys {
  protected:
    kaAnimationCurve2D* curve = nullptr;
    kaAnimationUnit* block = nullptr;

    void SetUp() override {
        CurveKeys::SetUp();
        curve = makeCurve(Spots{{0, 0}, {10, 5}, {20, 1}, {30, 2}});
        block = makeBlock({curve});
    }
};

TEST_F(DeletingKeys, TheSelectedOnesGoAndEveryRemainingHandleIsComputed) {
    curve->findPoint(10.0F)->setSelected(true);
    curve->findPoint(30.0F)->setSelected(true);
    EXPECT_EQ(curve->deleteSelectedPoints(true, true), curve);
    EXPECT_THAT(framesOf(*curve), ElementsAre(0, 20));
    EXPECT_FLOAT_EQ(spotOf(*curve->findPoint(0.0F)->getOutTangent()).x, 10.0F);
    EXPECT_EQ(block->getEnd(), 20.0F);
    EXPECT_EQ(manager->getObjects().size(), 4U); // two keys, curve, block
}

TEST_F(DeletingKeys, AllSelectedDestroysTheCurveWhenAsked) {
    curve->setSelected(true);
    const kaUID id = curve->getId();
    EXPECT_EQ(curve->deleteSelectedPoints(true, true), nullptr);
    EXPECT_EQ(manager->getObject(id), nullptr);
    EXPECT_TRUE(block->getCurveIDs().empty());
    EXPECT_FALSE(block->hasChildren());
}

TEST_F(DeletingKeys, AllSelectedWithoutDestroyingTakesTheCurveOutOfTheIdSets) {
    curve->setSelected(true);
    EXPECT_EQ(curve->deleteSelectedPoints(true, false), curve);
    EXPECT_TRUE(curve->getCurveIDs().empty());
    EXPECT_TRUE(block->getCurveIDs().empty());
    EXPECT_THAT(block->getChildIDs(), ElementsAre(curve->getId()));
    EXPECT_EQ(block->getBegin(), 1e23F) << "its only child has no children now";
}

TEST_F(DeletingKeys, WithoutTellingLeavesTheAncestors) {
    curve->setSelected(true);
    EXPECT_EQ(curve->deleteSelectedPoints(false, false), curve);
    EXPECT_TRUE(curve->getCurveIDs().empty());
    EXPECT_THAT(block->getCurveIDs(), ElementsAre(curve->getId()));
}

TEST_F(DeletingKeys, DeletePointsTakesThemAll) {
    EXPECT_EQ(curve->deletePoints(false, false), curve);
    EXPECT_FALSE(curve->hasChildren());
    EXPECT_TRUE(curve->getCurveIDs().empty());
    curve = makeCurve(Spots{{0, 0}, {1, 1}});
    const kaUID id = curve->getId();
    EXPECT_EQ(curve->deletePoints(true, true), nullptr);
    EXPECT_EQ(manager->getObject(id), nullptr);
}

TEST_F(DeletingKeys, OnACurveWithoutKeysOnlyDeleteSelectedPointsDestroysIt) {
    kaAnimationCurve2D* empty = manager->createCurve2D(0ULL);
    const kaUID id = empty->getId();
    EXPECT_EQ(empty->deletePoints(false, true), empty);
    EXPECT_THAT(empty->getCurveIDs(), ElementsAre(id)) << "untouched";
    EXPECT_EQ(empty->deleteSelectedPoints(false, true), nullptr);
    EXPECT_EQ(manager->getObject(id), nullptr);
}

TEST_F(DeletingKeys, NothingSelectedStillComputesHandlesAndBounds) {
    place(*curve->findPoint(0.0F)->getOutTangent(), {-99, -99});
    curve->setBegin(-50.0F);
    EXPECT_EQ(curve->deleteSelectedPoints(true, true), curve);
    EXPECT_EQ(curve->getBegin(), 0.0F);
    EXPECT_FLOAT_EQ(spotOf(*curve->findPoint(0.0F)->getOutTangent()).x, 5.0F);
}

class SelectionAndLock : public CurveKeys {};

TEST_F(SelectionAndLock, SelectingReachesEveryKeyAndTheCurve) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}});
    for (bool selected : {true, false}) {
        curve->setSelected(selected);
        EXPECT_EQ(curve->isSelected(), selected);
        for (const kaControlPoint2D* key : keysOf(*curve))
            EXPECT_EQ(key->isSelected(), selected);
    }
}

TEST_F(SelectionAndLock, LockingLocksTheKeysAndMarksTheCurveSelected) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}});
    curve->setLocked(true);
    EXPECT_FALSE(curve->isLocked());
    EXPECT_TRUE(curve->isSelected());
    for (const kaControlPoint2D* key : keysOf(*curve)) {
        EXPECT_TRUE(key->isLocked());
        EXPECT_FALSE(key->isSelected());
    }
    curve->setSelected(true);
    curve->setLocked(false);
    EXPECT_FALSE(curve->isSelected());
    EXPECT_TRUE(keysOf(*curve)[0]->isSelected());
    EXPECT_FALSE(keysOf(*curve)[0]->isLocked());
}

TEST_F(SelectionAndLock, ACurveWithoutKeysIgnoresBoth) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    curve->setSelected(true);
    EXPECT_FALSE(curve->isSelected());
    curve->setLocked(true);
    EXPECT_FALSE(curve->isSelected());
    EXPECT_FALSE(curve->isLocked());
}

TEST_F(SelectionAndLock, ChangingTypesReachesTheSelectedKeysOnly) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}, {20, 0}});
    kaControlPoint2D* key = curve->findPoint(10.0F);
    key->setSelected(true);
    place(*curve->findPoint(0.0F)->getOutTangent(), {-99, -99});
    curve->setBegin(-50.0F);
    curve->changeTangentsOfSelectedPoints(kaControlPoint2D::TANGENT_COLLAPSED);
    EXPECT_EQ(key->getTangentType(), 0U);
    EXPECT_EQ(spotOf(*key->getInTangent()).x, 10.0F);
    EXPECT_EQ(curve->findPoint(0.0F)->getTangentType(), 4U);
    EXPECT_EQ(spotOf(*curve->findPoint(0.0F)->getOutTangent()).x, -99.0F) << "neighbours do not follow";
    EXPECT_EQ(curve->getBegin(), -50.0F) << "nor do the bounds";
}

} // namespace
