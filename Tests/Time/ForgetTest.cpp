#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What becomes of the places that know an object when it is destroyed.
class Forget : public TimeFixture {};

TEST_F(Forget, ADestroyedObjectRunsNoMore) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    kaAnimationUnit* other = makeBlock(0.0F, 100.0F);
    start(block);
    start(other);
    loopAt(0.0);
    manager->destroyUnit(block);
    EXPECT_EQ(controller->getRunningObjects().size(), 1U);
    EXPECT_TRUE(isRunning(other));
    loopAt(1.0);
}

TEST_F(Forget, SoDoesEverythingBelowADestroyedContainer) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    kaAnimationStrip* clip = makeClip({block});
    start(block);
    controller->addWaitingObject(curveOf(block));
    manager->destroyStrip(clip);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_THAT(controller->getWaitingObjects(), IsEmpty());
}

TEST_F(Forget, AnObjectWhoseIdWasChangedWhileItRanIsFoundAllTheSame) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    start(block);
    manager->setID(4711, block);
    start(block);
    ASSERT_EQ(controller->getRunningObjects().size(), 2U) << "under both ids";
    manager->destroyUnit(block);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
}

TEST_F(Forget, WhatTakesTheIdOfADestroyedObjectRunsOnlyOnceItIsStarted) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    kaAnimationUnit* other = makeBlock(0.0F, 100.0F);
    const auto id = block->getId();
    start(block);
    manager->destroyUnit(block);
    kaAnimationUnit* heir = manager->createUnit(id);
    ASSERT_EQ(heir->getId(), id);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    start(heir);
    start(other);
    ASSERT_EQ(controller->getRunningObjects().size(), 2U);
    EXPECT_EQ(controller->getRunningObjects().at(id), heir);
}

TEST_F(Forget, AnObjectThatStartsWhileThePlaceOfItsIdWasNotLookedAtTakesIt) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    const auto id = block->getId();
    start(block);
    loopAt(0.0);
    manager->destroyUnit(block);
    kaAnimationUnit* heir = manager->createUnit(id);
    controller->addWaitingObject(heir);
    controller->enqueueWaitingObjects(); // without a look at what runs
    EXPECT_EQ(controller->getRunningObjects().at(id), heir);
    manager->destroyUnit(heir);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
}

TEST_F(Forget, NullsOfAJumpStayWhereTheyStand) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationUnit* other = makeBlock(20.0F, 30.0F);
    kaAnimationCurve2D* left = curveOf(other);
    controller->gotoGlobalBegin({nullptr, curveOf(block), left, left, nullptr});
    manager->destroyUnit(block);
    EXPECT_THAT(Controller::getCurves(), ElementsAre(nullptr, left, left, nullptr));
}

TEST_F(Forget, ADestroyedObjectWaitsNoMore) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    kaAnimationUnit* other = makeBlock(0.0F, 100.0F);
    for (kaAnimationUnit* unit : {block, other, block})
        controller->addWaitingObject(unit);
    manager->destroyUnit(block);
    EXPECT_THAT(controller->getWaitingObjects(), ElementsAre(other));
    kaAnimationUnit* reborn = makeBlock(0.0F, 100.0F); // perhaps where the other one stood in memory
    controller->addWaitingObject(reborn);
    EXPECT_THAT(controller->getWaitingObjects(), ElementsAre(other, reborn));
    controller->enqueueWaitingObjects();
    EXPECT_EQ(controller->getRunningObjects().size(), 2U);
}

TEST_F(Forget, DestroyedCurvesAndSequencesLeaveTheLastJump) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationUnit* other = makeBlock(20.0F, 30.0F);
    kaAnimationSequence* sequence = makeSequence("door", 40.0F, 50.0F);
    kaAnimationSequence* kept = makeSequence("window", 60.0F, 70.0F);
    kaAnimationStreak* track = makeTrack({block, other, sequence, kept});
    controller->gotoGlobalBegin(track);
    const kaAnimationCurve2D* left = curveOf(other);
    manager->destroyUnit(block);
    manager->destroySequence(sequence);
    EXPECT_THAT(Controller::getCurves(), ElementsAre(left));
    EXPECT_THAT(Controller::getSeqs(), ElementsAre(kept));
    manager->destroyStreak(track);
    EXPECT_THAT(Controller::getCurves(), IsEmpty());
    EXPECT_THAT(Controller::getSeqs(), IsEmpty());
}

TEST_F(Forget, ADestroyedCopyLeavesTheCopyBuffer) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    ASSERT_TRUE(manager->copy(static_cast<Object*>(block)));
    ASSERT_EQ(manager->getCopyBuffer().size(), 1U);
    manager->destroyObject(manager->getCopyBuffer().at(0));
    EXPECT_THAT(manager->getCopyBuffer(), IsEmpty());
}

TEST_F(Forget, GlobalPlaybackGoesOnWithWhatIsLeft) {
    kaAnimationUnit* block = makeBlock(0.0F, 100.0F);
    kaAnimationUnit* other = makeBlock(0.0F, 100.0F);
    controller->playGlobal({block->getId(), other->getId()}, false, false, 0.0F, 100.0F, 0.0F);
    manager->destroyUnit(block);
    playLoopAt(2.0);
    EXPECT_NEAR(valueOf(curveOf(other)), 0.5F, 1e-5F);
}

} // namespace
