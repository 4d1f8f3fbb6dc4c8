#include "TimeFixture.h"

using namespace ka_test;

namespace {

class Pause : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        block = makeBlock(0.0F, 100.0F);
        start(block);
        loopAt(0.0);
    }

    void pauseAt(double time, bool pausing) {
        seconds = time;
        controller->pause(pausing);
    }
    void pauseBlockAt(double time, bool pausing) {
        seconds = time;
        controller->pause(block, pausing);
    }

    kaAnimationUnit* block = nullptr;
};

TEST_F(Pause, FreezesObjectPlaybackAndGoesOnWhereItWas) {
    loopAt(1.0);
    pauseAt(1.0, true);
    loopAt(2.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 25.0F);
    pauseAt(3.0, false);
    EXPECT_EQ(block->getStartTime(), 2.0F);
    loopAt(3.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 25.0F);
}

TEST_F(Pause, ASecondPauseKeepsTheFirstStart) {
    pauseAt(1.0, true);
    pauseAt(2.0, true);
    EXPECT_EQ(Controller::getPauseStartTime(), 1.0F);
    EXPECT_TRUE(Controller::isPausing());
}

TEST_F(Pause, ResumingWithoutAPauseDoesNothing) {
    pauseAt(5.0, false);
    EXPECT_EQ(block->getStartTime(), 0.0F);
    EXPECT_FALSE(Controller::isPausing());
}

TEST_F(Pause, GlobalPlaybackJumpsAheadByThePausedTime) {
    controller->playGlobal(block->getId(), false, false, 0.0F, 100.0F, 0.0F);
    playLoopAt(1.0);
    pauseAt(1.0, true);
    playLoopAt(1.5);
    EXPECT_EQ(Controller::getCurrentFrame(), 25.0F);
    pauseAt(2.0, false);
    playLoopAt(2.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 50.0F);
}

TEST_F(Pause, OfOneObjectLeavesTheOthersRunning) {
    kaAnimationUnit* other = makeBlock(0.0F, 100.0F);
    start(other);
    pauseBlockAt(1.0, true);
    EXPECT_EQ(block->getPauseTime(), 1.0F);
    loopAt(2.0);
    loopAt(3.0);
    EXPECT_EQ(block->getLastFrame(), 0.0F);
    EXPECT_EQ(other->getLastFrame(), 25.0F);
    pauseBlockAt(3.0, false);
    EXPECT_EQ(block->getStartTime(), 2.0F);
    loopAt(3.0);
    EXPECT_EQ(block->getLastFrame(), 25.0F);
}

TEST_F(Pause, ResumingAnObjectThatWasNotPausedMovesItsStartAllTheSame) {
    pauseBlockAt(4.0, false);
    EXPECT_EQ(block->getStartTime(), 4.0F);
    controller->pause(nullptr, true);
    controller->pause(nullptr, false);
}

} // namespace
