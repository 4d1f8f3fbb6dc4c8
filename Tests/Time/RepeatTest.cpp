#include "TimeFixture.h"

#include <cmath>
#include <limits>

using namespace ka_test;

namespace {

constexpr double TicksPerSecond = 25.0;
constexpr int TicksOfAMinute = 1500;

/// Ranges whose ends stand on tenths of a frame, in number as many as there are lengths of whole tenths.
std::vector<Span> tenthRanges() {
    std::vector<Span> ranges;
    for (int begin = -6; begin <= 6; ++begin)
        for (int length = 1; length <= 40; ++length)
            ranges.emplace_back(static_cast<float>(begin) / 10.0F,
                                static_cast<float>(begin + length) / 10.0F);
    return ranges;
}

struct Direction {
    const char* name;
    bool reverse;
};

std::string nameOf(const testing::TestParamInfo<Direction>& row) {
    return row.param.name;
}

/// The frame that a repeating block samples its curve at.
class RepeatFold : public TimeFixture {
  protected:
    float folded(float frame, float lo, float hi) {
        if (!_block) {
            _block = makeBlock(0.0F, 1.0F);
            _block->setRepeating(true);
            _block->setUseCustomRange(true);
        }
        _block->setCustomBegin(lo);
        _block->setCustomEnd(hi);
        Controller::CurveFrames buckets[3];
        controller->collectCurvesWithFrame(_block, frame, buckets[0], buckets[1], buckets[2], false);
        for (const auto& bucket : buckets)
            if (!bucket.empty())
                return bucket.begin()->second.second;
        ADD_FAILURE() << "nothing is sampled";
        return 0.0F;
    }

  private:
    kaAnimationUnit* _block = nullptr;
};

struct FoldRow {
    float frame;
    float lo;
    float hi;
    float expected;
};

/// By hand, in exact arithmetic on the floats as they are stored.
TEST_F(RepeatFold, IsExactToTheFloat) {
    const float tenth = 0.1F;
    const std::vector<FoldRow> rows{
        {25.0F, 0.0F, 10.0F, 5.0F},
        {-3.0F, 0.0F, 10.0F, 7.0F},
        {20.0F, 10.0F, 20.0F, 10.0F},
        // 1e6 - 999 * (1000.29998779296875 - 0.100000001490116) = 800.212196312845
        {1e6F, tenth, 1000.3F, 800.212196F},
        {16777216.0F, 0.0F, 3.0F, 1.0F},
        // The length is no float: 16777217
        {16777217.0F + 8.0F, -1.0F, 16777216.0F, 7.0F},
    };
    for (const FoldRow& row : rows) {
        const float found = folded(row.frame, row.lo, row.hi);
        EXPECT_EQ(found, row.expected) << row.frame << " in " << row.lo << ".." << row.hi;
    }
}

TEST_F(RepeatFold, IsTheSlowOneRoundedOnce) {
    int wrong = 0;
    for (const auto& [lo, hi] : tenthRanges()) {
        for (int step = -3000; step <= 3000; step += 7) {
            const float frame = static_cast<float>(step) / 10.0F;
            const auto length = static_cast<long double>(hi) - static_cast<long double>(lo);
            const long double past = static_cast<long double>(frame) - static_cast<long double>(lo);
            const long double exact = static_cast<long double>(frame) - length * std::floor(past / length);
            const float found = folded(frame, lo, hi);
            // At the seam both ends of the range are one place.
            const bool same =
                std::abs(static_cast<long double>(found) - exact) <= std::abs(exact) * 6.0e-8L + 1e-12L;
            const bool atSeam = std::abs(std::abs(static_cast<long double>(found) - exact) - length) < 1e-9L;
            wrong += same || atSeam ? 0 : 1;
        }
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(RepeatFold, NeverLeavesTheRange) {
    const float huge = std::numeric_limits<float>::max();
    std::vector<Span> ranges = tenthRanges();
    ranges.insert(ranges.end(), {{-huge, huge}, {0.0F, huge}, {1e-30F, 2e-30F}, {1e7F, 1e7F + 1.0F}});
    for (const auto& [lo, hi] : ranges) {
        for (float frame : {0.0F, -0.1F, 1e6F, -1e6F, 1e20F, -1e20F, huge, -huge, lo, hi,
                            std::nextafter(lo, -huge), std::nextafter(hi, huge)}) {
            const float found = folded(frame, lo, hi);
            ASSERT_TRUE(lo <= found && found <= hi) << found << " of " << frame << " in " << lo << ".." << hi;
        }
    }
}

class RepeatingObject : public TimeFixture, public testing::WithParamInterface<Direction> {};

/// A minute at 25 ticks a second from begins that are no whole frames.
TEST_P(RepeatingObject, PlaysForAMinuteOverEveryRange) {
    std::vector<Object*> left;
    kaAnimationUnit* block = makeBlock(0.0F, 1.0F);
    block->setRepeating(true);
    block->setReversePlay(GetParam().reverse);
    for (const auto& [lo, hi] : tenthRanges()) {
        block->setCustomBegin(lo);
        block->setCustomEnd(hi);
        block->setCustomStart(lo);
        block->setUseCustomRange(true);
        block->setPlaying(false);
        seconds = 0.0;
        start(block);
        for (int tick = 0; tick < TicksOfAMinute && isRunning(block); ++tick)
            loopAt(tick / TicksPerSecond);
        if (!isRunning(block))
            left.push_back(block);
        controller->stop();
    }
    EXPECT_EQ(left.size(), 0U) << "of " << tenthRanges().size();
}

TEST_P(RepeatingObject, ReportsNoEndAtAnyFrame) {
    kaAnimationUnit* block = makeBlock(0.0F, 1.0F);
    block->setRepeating(true);
    block->setReversePlay(GetParam().reverse);
    int reported = 0;
    for (const auto& [lo, hi] : tenthRanges()) {
        block->setBegin(lo);
        block->setEnd(hi);
        for (int step = -2000; step <= 2000; ++step)
            reported += controller->evaluateObject(block, static_cast<float>(step) / 10.0F, false) ? 1 : 0;
    }
    EXPECT_EQ(reported, 0);
}

INSTANTIATE_TEST_SUITE_P(Directions, RepeatingObject,
                         testing::Values(Direction{"forwards", false}, Direction{"reverse", true}), &nameOf);

struct GlobalRow {
    const char* name;
    bool reverse;
    bool fullFrames;
};

class RepeatingTimeline : public TimeFixture, public testing::WithParamInterface<GlobalRow> {
  protected:
    void TearDown() override {
        Controller::setForcePlayLoopFullFrame(false);
        controller->stopGlobal();
        TimeFixture::TearDown();
    }

    /// @return whether the timeline played for a minute without an end and without a frame beyond its range.
    bool playsOn(float begin, float end) {
        sent.clear();
        seconds = 0.0;
        controller->playGlobal(std::vector<kaUID>{}, GetParam().reverse, true, begin, end, begin);
        for (int tick = 0; tick < TicksOfAMinute; ++tick) {
            playLoopAt(tick / TicksPerSecond);
            const float frame = Controller::getCurrentFrame();
            if (!Controller::isPlaying() || frame < begin || frame > end)
                return false;
        }
        return count("finishedPlayingGlobal") == 0;
    }
};

TEST_P(RepeatingTimeline, PlaysForAMinuteOverEveryRange) {
    Controller::setForcePlayLoopFullFrame(GetParam().fullFrames);
    int left = 0;
    for (const auto& [lo, hi] : tenthRanges())
        left += playsOn(lo, hi) ? 0 : 1;
    EXPECT_EQ(left, 0) << "of " << tenthRanges().size();
}

INSTANTIATE_TEST_SUITE_P(Ways, RepeatingTimeline,
                         testing::Values(GlobalRow{"forwards", false, false},
                                         GlobalRow{"reverse", true, false},
                                         GlobalRow{"forwards_whole_frames", false, true},
                                         GlobalRow{"reverse_whole_frames", true, true}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(TimeFixture, ATimelineOfWholeFramesRepeatsOverTheWholeFramesInItsRange) {
    Controller::setForcePlayLoopFullFrame(true);
    controller->playGlobal(std::vector<kaUID>{}, false, true, 0.6F, 2.4F, 0.6F);
    std::vector<float> frames;
    for (int tick = 0; tick < 100; ++tick) {
        playLoopAt(tick / 250.0);
        frames.push_back(Controller::getCurrentFrame());
    }
    for (float frame : frames)
        ASSERT_TRUE(frame == 1.0F || frame == 2.0F) << frame;
    controller->playGlobal(std::vector<kaUID>{}, false, true, 0.2F, 0.8F, 0.2F);
    playLoopAt(1.0);
    EXPECT_GE(Controller::getCurrentFrame(), 0.2F) << "a range without a whole frame is played as it is";
    EXPECT_LE(Controller::getCurrentFrame(), 0.8F);
    EXPECT_TRUE(Controller::isPlaying());
    Controller::setForcePlayLoopFullFrame(false);
    controller->stopGlobal();
}

TEST_F(TimeFixture, ARangeThatEndsBeforeItBeginsDoesNotRepeat) {
    kaAnimationStreak* empty = manager->createStreak(0);
    empty->setRepeating(true);
    start(empty);
    loopAt(0.0);
    EXPECT_FALSE(isRunning(empty));
    controller->playGlobal(std::vector<kaUID>{}, false, true, 0.0F, 0.0F, 0.0F);
    playLoopAt(1.0);
    EXPECT_FALSE(Controller::isPlaying());
}

} // namespace
