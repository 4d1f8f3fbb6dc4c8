#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Spots = std::vector<Spot>;

class Destruction : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();

    std::vector<kaUID> registered() const {
        std::vector<kaUID> ids;
        for (const auto& entry : manager->getObjects())
            ids.push_back(entry.first);
        return ids;
    }
};

TEST_F(Destruction, OfNullDoesNothing) {
    manager->createUnit(1);
    manager->destroyPoint2D(nullptr);
    manager->destroyCurve2D(nullptr);
    manager->destroyUnit(nullptr);
    manager->destroyStreak(nullptr);
    manager->destroyStrip(nullptr);
    manager->destroySequence(nullptr);
    manager->destroyObject(nullptr);
    manager->destroyField(nullptr);
    EXPECT_EQ(registered().size(), 1U);
}

TEST_F(Destruction, TakesTheWholeSubtree) {
    kaAnimationCurve2D* kept = makeCurve(Spots{{0, 0}, {1, 1}});
    kaAnimationUnit* first = makeBlock(0, 10);
    kaAnimationUnit* second = makeBlock(20, 30);
    kaAnimationStrip* clip = makeClip({makeTrack({first, second, makeSequence("s", 50, 60)})});
    manager->destroyStrip(clip);
    EXPECT_EQ(registered().size(), 3U); // the curve that was elsewhere and its keys
    EXPECT_EQ(manager->getCurve2D(kept->getId()), kept);
}

TEST_F(Destruction, AsAnObjectOfTheBaseTakesTheWholeSubtreeToo) {
    manager->destroyObject(makeClip({makeTrack({makeBlock(0, 10), makeSequence("s", 50, 60)})}));
    EXPECT_THAT(registered(), IsEmpty());
}

TEST_F(Destruction, LeavesFieldsInPlace) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    const kaUID field = curve->getField();
    manager->destroyCurve2D(curve);
    EXPECT_NE(manager->getField(field), nullptr);
}

TEST_F(Destruction, OfAFieldLeavesTheCurvesThatName) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    const kaUID field = curve->getField();
    manager->destroyField(manager->getField(field));
    EXPECT_EQ(curve->getField(), field);
    EXPECT_EQ(manager->getField(field), nullptr);
}

TEST_F(Destruction, TellsTheParentFirst) {
    kaAnimationUnit* first = makeBlock(0, 10);
    kaAnimationUnit* second = makeBlock(20, 30);
    kaAnimationStreak* track = makeTrack({first, second});
    const kaAnimationStrip* clip = makeClip({track});
    manager->destroyUnit(second);
    EXPECT_THAT(track->getChildIDs(), ElementsAre(first->getId()));
    EXPECT_EQ(track->getEnd(), 10.0F);
    EXPECT_EQ(clip->getEnd(), 10.0F);
    EXPECT_EQ(clip->getCurveIDs(), first->getCurveIDs());
}

TEST_F(Destruction, OfEveryKindTellsTheParent) {
    kaAnimationStreak* track = makeTrack({});
    const auto expectGone = [&](auto* object, auto destroy) {
        track->addObject(object);
        ASSERT_EQ(track->getChildCount(), 1U);
        (manager->*destroy)(object);
        EXPECT_EQ(track->getChildCount(), 0U);
    };
    expectGone(manager->createCurve2D(0ULL), &kaAnimationManager::destroyCurve2D);
    expectGone(manager->createUnit(0), &kaAnimationManager::destroyUnit);
    expectGone(manager->createStreak(0), &kaAnimationManager::destroyStreak);
    expectGone(manager->createStrip(0), &kaAnimationManager::destroyStrip);
    expectGone(manager->createSequence("s", 0), &kaAnimationManager::destroySequence);
}

TEST_F(Destruction, AsAnObjectTellsTheParentOfEveryKind) {
    kaAnimationStreak* track = makeTrack({});
    for (kaAnimationObject* object : {static_cast<kaAnimationObject*>(manager->createPoint2D(0)),
                                      static_cast<kaAnimationObject*>(manager->createUnit(0)),
                                      static_cast<kaAnimationObject*>(manager->createSequence("s", 0))}) {
        track->addObject(object);
        manager->destroyObject(object);
        EXPECT_EQ(track->getChildCount(), 0U);
    }
}

TEST_F(Destruction, GoesByTheParentIdNotByTheLists) {
    kaAnimationSequence* sequence = makeSequence("s", 5, 6);
    kaAnimationStreak* first = makeTrack({sequence});
    kaAnimationStreak* second = makeTrack({sequence});
    const kaUID id = sequence->getId();
    manager->destroySequence(sequence);
    EXPECT_THAT(second->getChildIDs(), IsEmpty());
    EXPECT_THAT(first->getChildIDs(), ElementsAre(id))
        << "the earlier list keeps an id that nothing answers to";
    EXPECT_THAT(first->getObjects(), IsEmpty());
    first->updateBounds();
    EXPECT_EQ(first->getBegin(), 1e23F);
    manager->destroyStreak(first);
    manager->destroyStreak(second);
}

TEST_F(Destruction, OfOneOfTwoParentsTakesTheSharedChildFromTheOther) {
    kaAnimationSequence* sequence = makeSequence("s", 5, 6);
    kaAnimationStreak* first = makeTrack({sequence});
    kaAnimationStreak* second = makeTrack({sequence});
    manager->destroyStreak(first);
    EXPECT_THAT(registered(), ElementsAre(second->getId()));
    EXPECT_THAT(second->getChildIDs(), IsEmpty());
}

TEST_F(Destruction, OfATrackInAClipWhoseChildHoldsAnother) {
    kaAnimationStrip* inner = makeClip({makeTrack({makeBlock(0, 5)})});
    kaAnimationStrip* outer = makeClip({makeTrack({inner})});
    manager->destroyStrip(inner);
    ASSERT_EQ(outer->getStreaks().size(), 1U);
    EXPECT_FALSE(outer->getStreaks().at(0)->hasChildren());
    manager->destroyStrip(outer);
    EXPECT_THAT(registered(), IsEmpty());
}

TEST_F(Destruction, OfAListThatNamesAnObjectTwiceFreesItOnce) {
    kaAnimationStreak* track = makeTrack({makeSequence("s", 5, 6)});
    const kaUID id = track->getChildIDs()[0];
    track->setChildIDs({id, id, 99, id});
    manager->destroyStreak(track);
    EXPECT_THAT(registered(), IsEmpty());
}

TEST_F(Destruction, OfAKeyNeverFollowsItsOwnId) {
    kaControlPoint2D* key = manager->createPoint2D(7);
    kaControlPoint2D* other = manager->createPoint2D(8);
    const kaUID old = key->getId();
    manager->setID(50, key); // the key's list still says 7
    manager->setID(old, other);
    ASSERT_EQ(manager->getPoint2D(7), other);
    manager->destroyPoint2D(key);
    EXPECT_EQ(manager->getPoint2D(7), nullptr)
        << "7 is not the key's own id any more but a child like any other";
}

TEST_F(Destruction, LeavesNoPointerInTheController) {
    kaAnimationController* controller = kaAnimationController::the();
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {1, 1}});
    kaAnimationUnit* block = makeBlock({curve});
    controller->addWaitingObject(block);
    controller->enqueueWaitingObjects();
    controller->addWaitingObject(block);
    controller->gotoGlobalBegin(block);
    ASSERT_EQ(controller->getRunningObjects().size(), 1U);
    ASSERT_EQ(kaAnimationController::getCurves().size(), 1U);
    manager->destroyUnit(block);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_THAT(controller->getWaitingObjects(), IsEmpty());
    EXPECT_THAT(kaAnimationController::getCurves(), IsEmpty());
    controller->loop();
}

TEST_F(Destruction, LeavesNoPointerInTheCopyBuffer) {
    kaAnimationUnit* block = makeBlock(0, 10);
    ASSERT_TRUE(manager->copy(block));
    const std::vector<kaAnimationObject*> copies = manager->getCopyBuffer();
    ASSERT_EQ(copies.size(), 1U);
    manager->destroyObject(copies[0]);
    for (const kaAnimationObject* copy : manager->getCopyBuffer())
        EXPECT_EQ(copy, nullptr);
    manager->clearCopyBuffer(true);
    EXPECT_EQ(manager->getUnit(block->getId()), block);
}

class DestroyingAll : public Destruction {};

TEST_F(DestroyingAll, LeavesTheLastOneOfThree) {
    manager->createUnit(5);
    manager->createUnit(9);
    manager->createUnit(7);
    manager->destroyAllObjects(true);
    EXPECT_THAT(registered(), ElementsAre(9));
    manager->destroyAllObjects(true);
    EXPECT_THAT(registered(), ElementsAre(9)) << "one alone stays";
}

TEST_F(DestroyingAll, InAnEmptyRegistryDoesNothing) {
    manager->destroyAllObjects(true);
    manager->destroyAllObjects(false);
    EXPECT_THAT(registered(), IsEmpty());
}

TEST_F(DestroyingAll, KeepsWhatIsInternalUnlessAskedForAll) {
    for (kaUID id : {3, 4, 5, 6, 7})
        manager->createUnit(id);
    manager->getUnit(3)->setInternal(true);
    manager->getUnit(6)->setInternal(true);
    manager->destroyAllObjects(false);
    EXPECT_THAT(registered(), ElementsAre(3, 6));
    manager->destroyAllObjects(true);
    EXPECT_THAT(registered(), ElementsAre(6));
}

TEST_F(DestroyingAll, StopsAtTwoWhenOneOfThemIsInternal) {
    for (kaUID id : {3, 4, 5})
        manager->createUnit(id);
    manager->getUnit(3)->setInternal(true);
    manager->destroyAllObjects(false); // 4 goes, then 3 is skipped and 5 goes, then one is left
    EXPECT_THAT(registered(), ElementsAre(3));
}

TEST_F(DestroyingAll, TakesAWholeSubtreeAtOnce) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {1, 1}});
    manager->setID(1, makeBlock({curve}));
    kaAnimationUnit* last = manager->createUnit(~0ULL);
    manager->destroyAllObjects(true);
    EXPECT_THAT(registered(), ElementsAre(last->getId()));
}

TEST_F(DestroyingAll, MayEmptyTheRegistryWhenOneHoldsTheRest) {
    kaAnimationStreak* track = manager->createStreak(1);
    track->addObject(manager->createSequence("s", 2));
    manager->destroyAllObjects(true);
    EXPECT_THAT(registered(), IsEmpty());
}

TEST_F(DestroyingAll, TakesAnInternalChildWithItsParent) {
    kaAnimationStreak* track = manager->createStreak(1);
    kaAnimationSequence* internal = manager->createSequence("s", 2);
    internal->setInternal(true);
    track->addObject(internal);
    manager->createUnit(3);
    manager->createUnit(4);
    manager->destroyAllObjects(false);
    EXPECT_THAT(registered(), ElementsAre(4));
}

TEST_F(DestroyingAll, FieldsGoWithoutLimit) {
    manager->createField(1);
    manager->createField(2);
    const kaAnimationCurve2D* curve = manager->createCurve2D(5);
    manager->destroyAllFields();
    EXPECT_TRUE(manager->getFields().empty());
    EXPECT_NE(curve->getField(), 0ULL);
    manager->destroyAllFields();
}

} // namespace
