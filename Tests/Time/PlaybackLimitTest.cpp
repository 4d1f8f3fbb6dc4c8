#include "TimeFixture.h"

#include <malloc.h>

using namespace ka_test;

namespace {

class PlaybackLimit : public TimeFixture {
  protected:
    /// So many tracks, each in the one before, written by the host; the last one lists the block.
    Object* nest(unsigned int levels, const Object* block) {
        std::vector<kaUID> below{block->getId()};
        Object* top = nullptr;
        for (unsigned int i = 0; i < levels; ++i) {
            top = manager->createStreak(0);
            top->setChildIDs(below);
            below = {top->getId()};
        }
        return top;
    }

    /// The value at frame 5 of a block below so many tracks: 0.5 where playing reaches it, else 0.
    float valueBelow(unsigned int levels) {
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        Object* top = nest(levels, block);
        controller->evaluateObject(top, 5.0F, false);
        return valueOf(curveOf(block));
    }
};

TEST_F(PlaybackLimit, IsTheDepthOfATree) {
    EXPECT_NEAR(valueBelow(KA_MAX_DEPTH), 0.5F, 1e-3F);
    EXPECT_EQ(valueBelow(KA_MAX_DEPTH + 1), 0.0F);
}

TEST_F(PlaybackLimit, EndsListsThatAreDeeperThanTheStack) {
    EXPECT_EQ(valueBelow(100000), 0.0F);
}

TEST_F(PlaybackLimit, ReachesWhatStandsBelowOneTrackTwice) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    Object* track = nest(1, block);
    Object* above = nest(1, track);
    above->setChildIDs({track->getId(), above->getId(), track->getId()});
    controller->evaluateObject(above, 5.0F, false);
    EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-3F);
}

#ifndef KA_WATCHED_MEMORY // which keeps what is freed

/// What is remembered of objects that were played goes with the first edit after they have gone.
TEST_F(PlaybackLimit, KeepsNothingOfWhatWasPlayedOnce) {
    constexpr std::size_t Megabyte = 1 << 20;
    const auto inUse = [] {
        const struct mallinfo2 heap = mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    const auto makeAndDestroy = [this](bool play) {
        std::vector<kaAnimationUnit*> blocks(2000);
        for (kaAnimationUnit*& block : blocks) {
            std::vector<kaAnimationCurve2D*> curves(4);
            for (kaAnimationCurve2D*& curve : curves)
                curve = makeCurve(std::vector<Spot>{{0.0F, 0.0F}, {10.0F, 1.0F}});
            block = makeBlock(curves);
        }
        for (kaAnimationUnit* block : blocks)
            if (play)
                controller->evaluateObject(block, 5.0F, false);
        for (kaAnimationUnit* block : blocks)
            manager->destroyUnit(block);
        manager->destroyAllFields();
        kaAnimationUnit* last = makeBlock(0.0F, 10.0F);
        controller->evaluateObject(last, 5.0F, false);
        manager->destroyUnit(last);
    };
    makeAndDestroy(false); // what is made once and kept, as the index of objects is
    const std::size_t before = inUse();
    makeAndDestroy(true);
    EXPECT_LE(inUse(), before + Megabyte);
}

#endif

} // namespace
