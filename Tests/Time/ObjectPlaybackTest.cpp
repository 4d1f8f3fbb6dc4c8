#include "TimeFixture.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A block over [10, 60] whose curve rises from 0 to 1: two seconds long.
class ObjectPlayback : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        block = makeBlock(10.0F, 60.0F);
    }

    kaAnimationUnit* block = nullptr;
};

TEST_F(ObjectPlayback, StartsWaitingObjectsAtTheEndOfATick) {
    controller->addWaitingObject(block);
    controller->addWaitingObject(nullptr);
    EXPECT_THAT(controller->getWaitingObjects(), ElementsAre(block));
    loopAt(5.0);
    EXPECT_TRUE(isRunning(block));
    EXPECT_FALSE(block->isPlaying()) << "it moves with the next tick";
    loopAt(6.0);
    EXPECT_TRUE(block->isPlaying());
    EXPECT_EQ(block->getStartTime(), 6.0F);
    EXPECT_EQ(block->getEndTime(), 8.0F);
    EXPECT_EQ(Controller::getCurrentFrame(), 10.0F);
}

TEST_F(ObjectPlayback, PlaysFromItsBeginByTheClock) {
    start(block);
    loopAt(100.0);
    loopAt(101.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 35.0F);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
    EXPECT_EQ(block->getLastFrame(), 35.0F);
    EXPECT_THAT(sent, IsEmpty()) << "no messages";
}

TEST_F(ObjectPlayback, FollowsTheFrameRate) {
    Controller::setFps(50.0F);
    start(block);
    loopAt(0.0);
    EXPECT_EQ(block->getEndTime(), 1.0F);
    loopAt(0.5);
    EXPECT_EQ(Controller::getCurrentFrame(), 35.0F);
}

TEST_F(ObjectPlayback, LeavesWhenItIsOver) {
    start(block);
    block->setCustomBegin(10.0F);
    block->setCustomEnd(60.0F);
    block->setCustomStart(10.0F);
    block->setUseCustomRange(true);
    loopAt(0.0);
    loopAt(2.0);
    EXPECT_TRUE(isRunning(block)) << "the end itself is not past the end";
    loopAt(2.04);
    EXPECT_FALSE(isRunning(block));
    EXPECT_FALSE(block->isPlaying());
    EXPECT_FALSE(block->isUseCustomRange()) << "cleared when it leaves";
    EXPECT_EQ(valueOf(curveOf(block)), 1.0F);
}

TEST_F(ObjectPlayback, StartsACustomRangeAtItsStartFrame) {
    block->setCustomBegin(20.0F);
    block->setCustomEnd(45.0F);
    block->setCustomStart(30.0F);
    block->setUseCustomRange(true);
    start(block);
    loopAt(0.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 30.0F);
    EXPECT_EQ(block->getEndTime(), 1.0F) << "the length of the custom range";
    loopAt(0.6);
    EXPECT_EQ(Controller::getCurrentFrame(), 45.0F);
    EXPECT_TRUE(isRunning(block));
    loopAt(0.64);
    EXPECT_FALSE(isRunning(block));
}

TEST_F(ObjectPlayback, PlaysBackwardsFromItsOriginDownToItsBegin) {
    block->setReversePlay(true);
    block->setCustomBegin(10.0F);
    block->setCustomEnd(60.0F);
    block->setCustomStart(60.0F);
    block->setUseCustomRange(true);
    start(block);
    loopAt(0.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 60.0F);
    loopAt(1.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 35.0F);
    loopAt(2.0);
    EXPECT_TRUE(isRunning(block));
    loopAt(2.04);
    EXPECT_FALSE(isRunning(block));
}

TEST_F(ObjectPlayback, ARepeatingObjectNeverLeavesByItself) {
    block->setRepeating(true);
    start(block);
    loopAt(0.0);
    loopAt(3.0); // frame 85, folded 35
    EXPECT_EQ(Controller::getCurrentFrame(), 85.0F);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
    loopAt(1000.0);
    EXPECT_TRUE(isRunning(block));
}

TEST_F(ObjectPlayback, ARepeatingObjectWithoutLengthStaysAtItsBegin) {
    block->setCustomBegin(35.0F);
    block->setCustomEnd(35.0F);
    block->setUseCustomRange(true);
    block->setRepeating(true);
    start(block);
    loopAt(0.0);
    loopAt(1.0);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
    EXPECT_TRUE(isRunning(block));
}

TEST_F(ObjectPlayback, PassesOverInactiveAndPausedObjects) {
    kaAnimationUnit* inactive = makeBlock(0.0F, 10.0F);
    inactive->setActive(false);
    block->setPausing(true);
    start(block);
    start(inactive);
    loopAt(1.0);
    EXPECT_EQ(block->getStartTime(), 0.0F);
    EXPECT_EQ(inactive->getStartTime(), 0.0F);
    EXPECT_TRUE(isRunning(block) && isRunning(inactive));
    block->setPausing(false);
    loopAt(2.0);
    EXPECT_EQ(block->getStartTime(), 2.0F);
}

TEST_F(ObjectPlayback, EachObjectHasAStartOfItsOwn) {
    kaAnimationUnit* other = makeBlock(0.0F, 100.0F);
    start(block);
    loopAt(0.0);
    start(other);
    loopAt(1.0);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
    EXPECT_EQ(valueOf(curveOf(other)), 0.0F);
    loopAt(1.4);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.7F, 1e-5F);
    EXPECT_NEAR(valueOf(curveOf(other)), 0.1F, 1e-5F);
}

TEST_F(ObjectPlayback, StartingWhatRunsAlreadyChangesNothing) {
    start(block);
    loopAt(1.0);
    controller->addWaitingObject(block);
    controller->addWaitingObject(block);
    loopAt(1.5);
    EXPECT_EQ(controller->getRunningObjects().size(), 1U);
    EXPECT_EQ(block->getStartTime(), 1.0F);
}

TEST_F(ObjectPlayback, ArmsItsSequencesWhenItIsTimed) {
    kaAnimationSequence* sequence = makeSequence("door", 20.0F, 30.0F);
    sequence->setArmed(false);
    kaAnimationStreak* track = makeTrack({block, sequence});
    start(track);
    loopAt(0.0);
    EXPECT_TRUE(sequence->isArmed());
    loopAt(1.0); // frame 35, past the sequence: armed, so it fires once
    loopAt(1.04);
    EXPECT_THAT(fired, ElementsAre("door"));
    EXPECT_FALSE(sequence->isArmed());
}

TEST_F(ObjectPlayback, FiresTheTriggersOfEverythingBelow) {
    kaAnimationUnit* inner = makeBlock(20.0F, 30.0F);
    kaAnimationUnit* chained = makeBlock(0.0F, 10.0F);
    kaAnimationStreak* track = makeTrack({inner, makeBlock(40.0F, 100.0F)});
    manager->createConnection(inner, Manager::TriggerEnd, chained, Manager::ActionPlay);
    start(track);
    loopAt(0.0);
    loopAt(0.2);
    EXPECT_TRUE(inner->isPlaying());
    EXPECT_FALSE(isRunning(chained));
    loopAt(0.44); // frame 31
    EXPECT_TRUE(isRunning(chained));
    EXPECT_FALSE(chained->isPlaying());
    loopAt(0.48);
    EXPECT_TRUE(chained->isPlaying());
}

TEST_F(ObjectPlayback, StoppingLeavesTheValuesWhereTheyAre) {
    start(block);
    loopAt(0.0);
    loopAt(1.0);
    controller->stop();
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_FALSE(block->isPlaying());
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
}

TEST_F(ObjectPlayback, ResettingPutsEveryRunningObjectAtItsBegin) {
    kaAnimationUnit* other = makeBlock(0.0F, 50.0F);
    start(block);
    start(other);
    loopAt(0.0);
    loopAt(1.0);
    controller->reset();
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    for (const kaAnimationUnit* unit : {block, other}) {
        EXPECT_FALSE(unit->isPlaying());
        EXPECT_EQ(unit->getLastFrame(), unit->getBegin());
    }
    EXPECT_EQ(valueOf(curveOf(other)), 0.0F);
}

TEST_F(ObjectPlayback, ResettingOneObjectTakesItOutAtItsBegin) {
    kaAnimationUnit* other = makeBlock(0.0F, 50.0F);
    start(block);
    start(other);
    loopAt(0.0);
    controller->reset(static_cast<Object*>(nullptr));
    controller->reset(block);
    EXPECT_FALSE(isRunning(block));
    EXPECT_FALSE(block->isPlaying());
    EXPECT_EQ(block->getLastFrame(), 10.0F);
    EXPECT_TRUE(isRunning(other));
    block->setCustomBegin(35.0F);
    block->setUseCustomRange(true);
    controller->reset(block); // not running: only evaluated
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
}

TEST_F(ObjectPlayback, GoingToTheEndTakesItOutAndKeepsItsPlayingFlag) {
    start(block);
    loopAt(0.0);
    controller->gotoEnd(nullptr);
    controller->gotoEnd(block);
    EXPECT_FALSE(isRunning(block));
    EXPECT_TRUE(block->isPlaying());
    EXPECT_EQ(valueOf(curveOf(block)), 1.0F);
    block->setCustomEnd(35.0F);
    block->setUseCustomRange(true);
    controller->gotoEnd(block);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
}

TEST_F(ObjectPlayback, ClockValuesThatMakeNoSenseAreTakenAsTheyCome) {
    start(block);
    loopAt(0.0);
    for (double time : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, -5.0}) {
        loopAt(time);
        EXPECT_EQ(block->getStartTime(), 0.0F);
    }
    EXPECT_FALSE(isRunning(block)) << "1e300 is past its end";
}

TEST_F(ObjectPlayback, WithoutAClockTheTimeOfDayCounts) {
    Controller::setTimeCB(nullptr);
    start(block);
    controller->loop();
    constexpr float StartOf2020 = 1577836800.0F;
    EXPECT_GT(block->getStartTime(), StartOf2020);
}

} // namespace
