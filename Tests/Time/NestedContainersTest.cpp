#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::IsEmpty;

namespace {

/// Clips on tracks in clips on tracks ...
class NestedContainers : public TimeFixture {
  protected:
    /// @return the levels that could be stacked on the block.
    int stack(Object* bottom, int wanted) {
        top = bottom;
        for (int level = 0; level < wanted; ++level) {
            Object* above =
                level % 2 == 0 ? static_cast<Object*>(manager->createStreak(0)) : manager->createStrip(0);
            if (!above->addObject(top))
                return level;
            top = above;
        }
        return wanted;
    }

    Object* top = nullptr;
};

TEST_F(NestedContainers, EndWhereTheTreeWouldBecomeTooDeep) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    const int levels = stack(block, 100000);
    constexpr int BelowTheBlock = 3; // the block, its curve, a key
    EXPECT_EQ(levels, static_cast<int>(KA_MAX_DEPTH) - BelowTheBlock);
    EXPECT_EQ(spanOf(top), Span(0.0F, 10.0F));
}

TEST_F(NestedContainers, AreEditedEvaluatedTriggeredCopiedAndDestroyedInFullDepth) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    stack(block, 100000);
    block->move(5.0F, true);
    EXPECT_EQ(spanOf(top), Span(5.0F, 15.0F));
    top->move(-5.0F, true);
    top->flip();
    EXPECT_EQ(spanOf(block), Span(0.0F, 10.0F));
    EXPECT_TRUE(block->isFlipped());
    top->setRepeating(true);
    EXPECT_TRUE(block->isRepeating());
    top->setRepeating(false);
    start(top);
    loopAt(0.0);
    EXPECT_TRUE(block->isPlaying());
    Object* copy = manager->duplicateObject(top);
    EXPECT_EQ(copy->getCurves().size(), 1U);
    const std::size_t before = manager->getObjects().size();
    manager->destroyObject(top);
    EXPECT_EQ(manager->getObjects().size(), before - (KA_MAX_DEPTH + 1)) << "the curve has two keys";
}

TEST_F(NestedContainers, RefuseThemselvesAndTheirAncestors) {
    kaAnimationStreak* track = manager->createStreak(0);
    kaAnimationStrip* clip = makeClip({track});
    EXPECT_EQ(track->addObject(track), nullptr);
    EXPECT_EQ(track->addObject(clip), nullptr);
    EXPECT_FALSE(track->insertObject(clip));
    const std::size_t before = manager->getObjects().size();
    EXPECT_EQ(clip->addObject(clip), nullptr);
    EXPECT_EQ(clip->insertObject(clip), nullptr);
    EXPECT_EQ(manager->getObjects().size(), before) << "no track was made in vain";
    EXPECT_THAT(track->getChildIDs(), IsEmpty());
    EXPECT_EQ(clip->getParent(), 0ULL);
}

TEST_F(NestedContainers, AClipCountsTheTrackThatItWouldPutInBetween) {
    constexpr int MostAbove = static_cast<int>(KA_MAX_DEPTH) - 3; // the clip, the track, the sequence
    for (int above : {MostAbove, MostAbove + 1}) {
        kaAnimationStrip* clip = manager->createStrip(0);
        ASSERT_EQ(stack(clip, above), above);
        kaAnimationSequence* sequence = manager->createSequence("s", 0);
        const std::size_t before = manager->getObjects().size();
        const bool fits = above == MostAbove;
        EXPECT_EQ(clip->addObject(sequence) != nullptr, fits);
        EXPECT_EQ(manager->getObjects().size(), before + (fits ? 1 : 0));
    }
}

/// A host that writes child lists itself can bend them into a ring.
TEST_F(NestedContainers, InARingAreWalkedOnce) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationStreak* track = makeTrack({block});
    kaAnimationStrip* clip = makeClip({track});
    track->setChildIDs({block->getId(), clip->getId(), clip->getId()});
    clip->move(5.0F, false);
    EXPECT_EQ(spanOf(block), Span(5.0F, 15.0F));
    clip->moveEnd(30.0F, false);
    clip->moveBegin(0.0F, false);
    clip->flip();
    clip->setRepeating(true);
    clip->setMotionBlur(true);
    clip->setActive(true);
    EXPECT_TRUE(block->isRepeating());
    clip->triggerLoop(1000.0F);
    controller->evaluateObject(clip, 7.0F, false);
    const kaAnimationStrip* copy = manager->duplicateStrip(clip);
    EXPECT_EQ(copy->getStreaks().at(0)->getUnits().size(), 1U);
    track->setChildIDs({block->getId()});
}

} // namespace
