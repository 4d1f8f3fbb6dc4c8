#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Callbacks, listeners and triggered functions that change the world in the middle of what calls them.
class Callback : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        first = makeBlock(0.0F, 100.0F);
        second = makeBlock(0.0F, 100.0F);
        third = makeBlock(0.0F, 100.0F);
    }

    /// Has `action` happen when `object` starts to play.
    void whenStarted(Object* object, std::function<void()> action) {
        inCallback = std::move(action);
        manager->createConnection(object, Manager::TriggerBegin, &onTrigger);
    }

    void playAll() {
        controller->playGlobal({first->getId(), second->getId(), third->getId()}, false, false, 0.0F, 100.0F,
                               0.0F);
    }

    kaAnimationUnit* first = nullptr;
    kaAnimationUnit* second = nullptr;
    kaAnimationUnit* third = nullptr;
};

// In the tick of object playback.

TEST_F(Callback, MayDestroyTheObjectThatPlays) {
    start(first);
    start(second);
    whenStarted(first, [this] { manager->destroyUnit(first); });
    loopAt(0.0);
    EXPECT_EQ(controller->getRunningObjects().size(), 1U);
    EXPECT_TRUE(second->isPlaying()) << "the tick goes on";
}

TEST_F(Callback, MayDestroyWhatWouldHavePlayedNext) {
    for (kaAnimationUnit* unit : {first, second, third})
        start(unit);
    kaAnimationUnit* lowest = static_cast<kaAnimationUnit*>(controller->getRunningObjects().begin()->second);
    whenStarted(lowest, [this, lowest] {
        for (kaAnimationUnit* unit : {first, second, third})
            if (unit != lowest)
                manager->destroyUnit(unit);
    });
    loopAt(0.0);
    EXPECT_EQ(controller->getRunningObjects().size(), 1U);
    EXPECT_TRUE(lowest->isPlaying());
}

TEST_F(Callback, MayDestroyTheContainerAroundTheObjectThatPlays) {
    kaAnimationStreak* track = makeTrack({first, makeBlock(0.0F, 50.0F)});
    kaAnimationStrip* clip = makeClip({track});
    start(clip);
    whenStarted(first, [this, clip] { manager->destroyStrip(clip); });
    loopAt(0.0);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
}

TEST_F(Callback, MayDestroyTheNextChildOfAContainer) {
    kaAnimationUnit* next = makeBlock(0.0F, 50.0F);
    kaAnimationUnit* last = makeBlock(0.0F, 50.0F);
    kaAnimationStreak* track = makeTrack({first, next, last});
    start(track);
    whenStarted(first, [this, next] { manager->destroyUnit(next); });
    loopAt(0.0);
    EXPECT_TRUE(last->isPlaying());
    EXPECT_EQ(track->getChildCount(), 2U);
}

TEST_F(Callback, MayStopObjectPlayback) {
    start(first);
    start(second);
    Object* lowest = controller->getRunningObjects().begin()->second;
    Object* other = controller->getRunningObjects().rbegin()->second;
    whenStarted(lowest, [this] { controller->stop(); });
    loopAt(0.0);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_FALSE(other->isPlaying());
}

TEST_F(Callback, MayStartObjectsThatThenMoveWithTheNextTick) {
    start(first);
    whenStarted(first, [this] { controller->addWaitingObject(second); });
    loopAt(0.0);
    EXPECT_TRUE(isRunning(second));
    EXPECT_FALSE(second->isPlaying());
}

TEST_F(Callback, MayStartGlobalPlayback) {
    start(first);
    start(second);
    Object* lowest = controller->getRunningObjects().begin()->second;
    whenStarted(lowest, [this] { playAll(); });
    loopAt(3.0);
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_TRUE(Controller::isPlaying());
    EXPECT_EQ(Controller::getStartTime(), 3.0F);
}

TEST_F(Callback, MayPauseTheTickThatItStandsIn) {
    start(first);
    start(second);
    Object* lowest = controller->getRunningObjects().begin()->second;
    Object* other = controller->getRunningObjects().rbegin()->second;
    whenStarted(lowest, [this] { controller->pause(true); });
    loopAt(0.0);
    EXPECT_TRUE(other->isPlaying()) << "the tick is finished";
    EXPECT_TRUE(Controller::isPausing());
}

TEST_F(Callback, CannotTickInTheMiddleOfTheTick) {
    start(first);
    whenStarted(first, [this] {
        seconds = 1.0;
        controller->loop();
    });
    loopAt(0.0);
    EXPECT_EQ(first->getLastFrame(), 0.0F);
    loopAt(2.0);
    EXPECT_EQ(first->getLastFrame(), 50.0F);
}

TEST_F(Callback, OfASequenceMayDestroyItAndTheRest) {
    kaAnimationSequence* early = makeSequence("early", 0.0F, 10.0F);
    kaAnimationSequence* late = makeSequence("late", 0.0F, 20.0F);
    inCallback = [this, early, late] {
        manager->destroySequence(early);
        manager->destroySequence(late);
    };
    controller->evaluateSequences({early, late}, 5.0F);
    EXPECT_THAT(fired, ElementsAre("early"));
}

TEST_F(Callback, OfASequenceMayDestroyTheObjectThatIsEvaluated) {
    kaAnimationStreak* track = makeTrack({first, makeSequence("door", 0.0F, 10.0F)});
    start(track);
    inCallback = [this, track] { manager->destroyStreak(track); };
    loopAt(0.0);
    loopAt(0.1);
    EXPECT_THAT(fired, ElementsAre("door"));
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
}

TEST_F(Callback, MayResetInTheMiddleOfAReset) {
    kaAnimationStreak* track = makeTrack({first, makeSequence("door", 0.0F, 10.0F)});
    start(track);
    start(second);
    loopAt(0.0);
    loopAt(1.0);
    fired.clear();
    inCallback = [this] {
        controller->reset();
        playAll();
    };
    controller->reset();
    EXPECT_THAT(fired, ElementsAre("door"));
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
    EXPECT_FALSE(second->isPlaying());
    EXPECT_EQ(second->getLastFrame(), 0.0F);
}

TEST_F(Callback, MayDestroyObjectsInTheMiddleOfAReset) {
    kaAnimationStreak* track = makeTrack({first, makeSequence("door", 5.0F, 10.0F)});
    kaAnimationStrip* clip = makeClip({track});
    clip->setBegin(5.0F);
    start(clip);
    start(second);
    loopAt(0.0);
    inCallback = [this, clip] {
        manager->destroyStrip(clip);
        manager->destroyUnit(second);
    };
    controller->reset();
    EXPECT_THAT(controller->getRunningObjects(), IsEmpty());
}

// In the tick of global playback.

TEST_F(Callback, ThatStopsGlobalPlaybackEndsItWithThisTick) {
    playAll();
    const kaMessageListener listener = kaOpenSGUtils::addListener(
        "currentFrameChanged", [this](std::string_view, const kaMessage&, int) { controller->stopGlobal(); });
    playLoopAt(5.0); // frame 125, past the end
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_EQ(first->getLastFrame(), 125.0F) << "the scene shows the frame that was announced";
    EXPECT_EQ(count("finishedPlayingGlobal"), 0U);
}

TEST_F(Callback, ThatStartsGlobalPlaybackAnewTakesItOver) {
    playAll();
    const kaMessageListener listener =
        kaOpenSGUtils::addListener("currentFrameChanged", [this](std::string_view, const kaMessage&, int) {
            controller->playGlobal(second->getId(), false, false, 50.0F, 60.0F, 50.0F);
        });
    playLoopAt(4.5); // past the end of the new range, but that frame is of the old run
    EXPECT_TRUE(Controller::isPlaying());
    EXPECT_EQ(first->getLastFrame(), 0.0F);
    EXPECT_EQ(second->getLastFrame(), 0.0F);
    EXPECT_EQ(count("finishedPlayingGlobal"), 0U);
}

TEST_F(Callback, ThatJumpsTakesGlobalPlaybackOver) {
    playAll();
    const kaMessageListener listener = kaOpenSGUtils::addListener(
        "currentFullFrameChanged",
        [this](std::string_view, const kaMessage&, int) { controller->gotoGlobalEnd(first); });
    playLoopAt(1.0);
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_EQ(first->getLastFrame(), 100.0F) << "stays where the jump put it";
    EXPECT_EQ(second->getLastFrame(), 0.0F);
}

TEST_F(Callback, MayDestroyWhatGlobalPlaybackEvaluates) {
    playAll();
    const kaMessageListener listener =
        kaOpenSGUtils::addListener("currentFrameChanged", [this](std::string_view, const kaMessage&, int) {
            manager->destroyAllObjects(true);
        });
    playLoopAt(1.0);
    EXPECT_TRUE(Controller::isPlaying());
    EXPECT_EQ(Controller::getCurrentFrame(), 25.0F);
}

TEST_F(Callback, OfTheEndMayStartAnew) {
    playAll();
    const kaMessageListener listener = kaOpenSGUtils::addListener(
        "finishedPlayingGlobal", [this](std::string_view, const kaMessage&, int) { playAll(); });
    playLoopAt(5.0);
    EXPECT_TRUE(Controller::isPlaying());
    EXPECT_EQ(Controller::getStartTime(), 5.0F);
}

TEST_F(Callback, CannotPlayOnInTheMiddleOfTheTick) {
    playAll();
    const kaMessageListener listener = kaOpenSGUtils::addListener(
        "currentFrameChanged", [this](std::string_view, const kaMessage&, int) { controller->playLoop(); });
    playLoopAt(1.0);
    EXPECT_EQ(count("currentFrameChanged"), 1U);
}

TEST_F(Callback, MaySetTheFrameAgain) {
    const kaMessageListener listener = kaOpenSGUtils::addListener(
        "currentFrameChanged", [this](std::string_view, const kaMessage& message, int) {
            if (*message.get<float>("frame") < 3.0F)
                controller->setCurrentFrame(*message.get<float>("frame") + 1.0F, Controller::WidgetHost);
        });
    controller->setCurrentFrame(1.0F, Controller::WidgetHost);
    EXPECT_EQ(Controller::getCurrentFrame(), 3.0F);
}

TEST_F(Callback, AllListenersHearAMessageAlsoWhenOneOfThemLeaves) {
    std::vector<int> heard;
    kaMessageListener leaving;
    leaving = kaOpenSGUtils::addListener("currentFrameChanged", [&](std::string_view, const kaMessage&, int) {
        heard.push_back(1);
        leaving.remove();
    });
    const kaMessageListener staying = kaOpenSGUtils::addListener(
        "currentFrameChanged", [&](std::string_view, const kaMessage&, int) { heard.push_back(2); });
    controller->setCurrentFrame(1.0F, Controller::WidgetHost);
    controller->setCurrentFrame(2.0F, Controller::WidgetHost);
    EXPECT_THAT(heard, ElementsAre(1, 2, 2));
}

// Connections.

TEST_F(Callback, MayMakeConnectionsWhileConnectionsRun) {
    static int later = 0;
    later = 0;
    whenStarted(first, [this] {
        for (int i = 0; i < 1000; ++i)
            manager->createConnection(first, Manager::TriggerBegin, [] { ++later; });
    });
    first->triggerLoop(0.0F);
    EXPECT_EQ(later, 0) << "those that had fired are carried out, no others";
    first->setPlaying(false);
    first->triggerLoop(0.0F);
    EXPECT_EQ(later, 1000);
}

// The clock and the cameras are callbacks, too.

TEST_F(Callback, OfTheClockMayDestroyTheObjectThatIsPaused) {
    static kaAnimationUnit* victim = nullptr;
    victim = first;
    const kaUID id = first->getId();
    Controller::setTimeCB([] {
        Manager::the()->destroyUnit(std::exchange(victim, nullptr));
        return 0.0;
    });
    controller->pause(first, true);
    EXPECT_EQ(manager->getUnit(id), nullptr);
}

} // namespace
