#include "TimeFixture.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class GlobalPlayback : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        block = makeBlock(0.0F, 100.0F);
    }

    void play(bool reverse, bool repeat, float begin, float end, float from) {
        controller->playGlobal(block->getId(), reverse, repeat, begin, end, from);
    }
    static std::vector<float> frames() { return values<float>("currentFrameChanged", "frame"); }
    static std::vector<int> fullFrames() { return values<int>("currentFullFrameChanged", "frame"); }

    kaAnimationUnit* block = nullptr;
};

TEST_F(GlobalPlayback, FollowsTheClockFromItsStartFrame) {
    seconds = 50.0;
    play(false, false, 0.0F, 100.0F, 10.0F);
    EXPECT_TRUE(Controller::isPlaying());
    EXPECT_EQ(Controller::getStartTime(), 50.0F);
    playLoopAt(52.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 60.0F);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.6F, 1e-5F);
    EXPECT_TRUE(Controller::isPlaying());
}

TEST_F(GlobalPlayback, RunsBackwardsAndFinishesBeforeItsBegin) {
    play(true, false, -10.0F, 100.0F, 10.0F);
    playLoopAt(2.0);
    EXPECT_EQ(Controller::getCurrentFrame(), -40.0F);
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_THAT(values<bool>("finishedPlayingGlobal", "finished"), ElementsAre(true));
}

TEST_F(GlobalPlayback, SendsEveryFrameEachWholeFrameAndTheEnd) {
    play(false, false, 0.0F, 2.0F, 0.0F);
    for (int tick = 0; tick <= 9; ++tick)
        playLoopAt(tick * 0.01); // a quarter frame each, up to 2.25
    EXPECT_EQ(frames().size(), 10U);
    EXPECT_FLOAT_EQ(frames().at(3), 0.75F);
    EXPECT_THAT(fullFrames(), ElementsAre(1, 2));
    EXPECT_EQ(count("finishedPlayingGlobal"), 1U);
    EXPECT_EQ(sent.back().name, "finishedPlayingGlobal");
    playLoopAt(1.0);
    EXPECT_EQ(frames().size(), 10U) << "idle";
}

TEST_F(GlobalPlayback, SendsItsValuesInTheTypesThatHostsReadThemIn) {
    play(false, false, 0.0F, 1.0F, 0.5F);
    playLoopAt(0.04);
    ASSERT_EQ(sent.size(), 3U);
    EXPECT_EQ(sent[0].name, "currentFrameChanged");
    EXPECT_EQ(sent[0].message.getEntries().size(), 2U);
    EXPECT_EQ(*sent[0].message.get<float>("frame"), 1.5F);
    EXPECT_EQ(*sent[0].message.get<Controller::AnimationWidget>("sender"), Controller::WidgetGlobalPlayback);
    EXPECT_EQ(static_cast<int>(Controller::WidgetGlobalPlayback), 3);
    EXPECT_EQ(sent[1].name, "currentFullFrameChanged");
    EXPECT_EQ(sent[1].message.getEntries().size(), 1U);
    EXPECT_EQ(*sent[1].message.get<int>("frame"), 1);
    EXPECT_EQ(sent[2].name, "finishedPlayingGlobal");
    EXPECT_EQ(sent[2].message.getEntries().size(), 1U);
    EXPECT_TRUE(*sent[2].message.get<bool>("finished"));
}

TEST_F(GlobalPlayback, TakesTheRangeFromItsObjectsAndStartsAtTheCurrentFrame) {
    kaAnimationUnit* later = makeBlock(50.0F, 170.0F);
    controller->setCurrentFrame(25.0F, Controller::WidgetHost);
    controller->playGlobal({block->getId(), 4711, later->getId()}, false, false, 0.0F, 0.0F, 0.0F);
    EXPECT_EQ(Controller::getBegin(), 0.0F);
    EXPECT_EQ(Controller::getEnd(), 170.0F);
    EXPECT_EQ(Controller::getStart(), 25.0F);
    playLoopAt(1.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 50.0F);
}

TEST_F(GlobalPlayback, WithoutObjectsFinishesWithTheFirstTick) {
    controller->playGlobal(std::vector<unsigned long long>{}, false, false, 0.0F, 0.0F, 0.0F);
    EXPECT_EQ(Controller::getBegin(), 1e23F);
    EXPECT_EQ(Controller::getEnd(), -1e23F);
    playLoopAt(0.0);
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_EQ(count("finishedPlayingGlobal"), 1U);
}

TEST_F(GlobalPlayback, OfTheObjectWithoutIdDoesNothing) {
    controller->playGlobal(0, false, false, 0.0F, 10.0F, 0.0F);
    EXPECT_FALSE(Controller::isPlaying());
    controller->playGlobal(4711, false, false, 0.0F, 10.0F, 0.0F);
    playLoopAt(0.2);
    EXPECT_TRUE(Controller::isPlaying()) << "an unknown object is passed over at each tick";
}

struct RepeatRow {
    const char* name;
    bool reverse;
    double time;
    float expected;
};

class GlobalRepeat : public GlobalPlayback, public testing::WithParamInterface<RepeatRow> {};

/// Over [10, 20], from 10, at 25 frames a second.
TEST_P(GlobalRepeat, FoldsIntoTheRange) {
    play(GetParam().reverse, true, 10.0F, 20.0F, 10.0F);
    playLoopAt(GetParam().time);
    EXPECT_FLOAT_EQ(Controller::getCurrentFrame(), GetParam().expected);
    EXPECT_TRUE(Controller::isPlaying());
}

INSTANTIATE_TEST_SUITE_P(Times, GlobalRepeat,
                         testing::Values(RepeatRow{"inside", false, 0.2, 15.0F},
                                         RepeatRow{"at_the_end", false, 0.4, 10.0F},
                                         RepeatRow{"second_round", false, 0.64, 16.0F},
                                         RepeatRow{"much_later", false, 40.2, 15.0F},
                                         RepeatRow{"backwards", true, 0.2, 15.0F},
                                         RepeatRow{"backwards_second_round", true, 0.64, 14.0F}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(GlobalPlayback, FoldsIntoARangeWithoutLengthAsItsBegin) {
    play(false, true, 7.0F, 7.0F, 7.0F);
    playLoopAt(1.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 7.0F);
    EXPECT_TRUE(Controller::isPlaying());
}

TEST_F(GlobalPlayback, RoundsToWholeFramesWhenForcedTo) {
    Controller::setForcePlayLoopFullFrame(true);
    play(false, false, 0.0F, 100.0F, 0.5F);
    playLoopAt(0.0);
    EXPECT_EQ(Controller::getCurrentFrame(), 1.0F) << "half away from zero";
    playLoopAt(0.03); // frame 1.25
    EXPECT_EQ(Controller::getCurrentFrame(), 1.0F);
    playLoopAt(0.07); // frame 2.25
    EXPECT_EQ(Controller::getCurrentFrame(), 2.0F);
}

TEST_F(GlobalPlayback, AnnouncesANegativeWholeFrameByItsFloor) {
    play(true, false, -100.0F, 100.0F, 0.0F);
    playLoopAt(0.02); // frame -0.5
    EXPECT_THAT(fullFrames(), ElementsAre(-1));
    EXPECT_EQ(Controller::getFullFrame(), -1.0F);
}

TEST_F(GlobalPlayback, AFrameThatIsNoNumberIsAnnouncedEachTickAndFinishesNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    play(false, false, 0.0F, 100.0F, nan);
    playLoopAt(0.0);
    playLoopAt(0.01);
    EXPECT_THAT(fullFrames(), ElementsAre(std::numeric_limits<int>::min(), std::numeric_limits<int>::min()));
    EXPECT_TRUE(std::isnan(frames().at(0)));
    EXPECT_TRUE(Controller::isPlaying());
}

TEST_F(GlobalPlayback, AHugeFrameIsWholeAsTheSmallestInt) {
    Controller::setForcePlayLoopFullFrame(true);
    play(false, false, 0.0F, 1e30F, 1e20F);
    playLoopAt(0.0);
    const float smallest = static_cast<float>(std::numeric_limits<int>::min());
    EXPECT_EQ(Controller::getCurrentFrame(), smallest);
    EXPECT_THAT(fullFrames(), ElementsAre(std::numeric_limits<int>::min()));
}

TEST_F(GlobalPlayback, EndsObjectPlaybackWithEveryObjectAtItsBegin) {
    kaAnimationUnit* other = makeBlock(10.0F, 60.0F);
    start(other);
    loopAt(0.0);
    loopAt(1.0);
    play(false, false, 0.0F, 100.0F, 0.0F);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_FALSE(other->isPlaying());
    EXPECT_EQ(other->getLastFrame(), 10.0F);
    EXPECT_EQ(Controller::getStartTime(), 1.0F);
}

TEST_F(GlobalPlayback, FiresSequencesButNoTriggers) {
    kaAnimationStreak* track = makeTrack({makeBlock(0.0F, 50.0F), makeSequence("door", 60.0F, 70.0F)});
    controller->playGlobal(track->getId(), false, false, 0.0F, 100.0F, 0.0F);
    playLoopAt(0.0);
    playLoopAt(2.6); // frame 65
    EXPECT_THAT(fired, ElementsAre("door"));
    EXPECT_FALSE(track->isPlaying());
}

TEST_F(GlobalPlayback, StopsWithoutAMessageAndForgetsTheLastJump) {
    controller->gotoGlobalEnd(block);
    EXPECT_THAT(Controller::getCurves(), ElementsAre(curveOf(block)));
    play(false, false, 0.0F, 100.0F, 0.0F);
    EXPECT_THAT(Controller::getPlayingObjects(), ElementsAre(block->getId()));
    controller->stopGlobal();
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_THAT(Controller::getCurves(), IsEmpty());
    playLoopAt(1.0);
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(GlobalPlayback, OptionsAreReadable) {
    play(true, true, 1.0F, 2.0F, 1.5F);
    EXPECT_TRUE(Controller::isReverse() && Controller::isRepeat());
    EXPECT_EQ(Controller::getBegin(), 1.0F);
    EXPECT_EQ(Controller::getEnd(), 2.0F);
    EXPECT_EQ(Controller::getStart(), 1.5F);
}

} // namespace
