#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class TrackMove : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        block = makeBlock(0.0F, 10.0F);
        track = makeTrack({block});
    }

    kaAnimationUnit* block = nullptr;
    kaAnimationStreak* track = nullptr;
};

TEST_F(TrackMove, TakesTheObjectFromItsTrackToTheOther) {
    kaAnimationStreak* other = makeTrack({makeBlock(5.0F, 15.0F)});
    EXPECT_TRUE(manager->moveObjectToStreak(block, other));
    EXPECT_FALSE(track->hasChildren());
    EXPECT_EQ(block->getParent(), other->getId());
    EXPECT_EQ(other->getChildCount(), 2U) << "overlaps are allowed";
}

TEST_F(TrackMove, IsRefusedForNullAndForWhatIsOnNoTrack) {
    EXPECT_FALSE(manager->moveObjectToStreak(nullptr, track));
    EXPECT_FALSE(manager->moveObjectToStreak(block, static_cast<kaAnimationStreak*>(nullptr)));
    EXPECT_FALSE(manager->moveObjectToStreak(block, nullptr, 0));
    kaAnimationUnit* loose = makeBlock(20.0F, 30.0F);
    EXPECT_FALSE(manager->moveObjectToStreak(loose, track));
    kaAnimationCurve2D* inBlock = curveOf(block);
    EXPECT_FALSE(manager->moveObjectToStreak(inBlock, track)) << "its parent is no track";
    loose->setParent(track->getId()); // names the track, which does not hold it
    EXPECT_FALSE(manager->moveObjectToStreak(loose, track));
    EXPECT_THAT(track->getObjects(), ElementsAre(block));
}

TEST_F(TrackMove, IsRefusedForATrackBelowTheObject) {
    kaAnimationStreak* inner = makeTrack({makeBlock(0.0F, 5.0F)});
    kaAnimationStrip* clip = makeClip({inner});
    kaAnimationStreak* outer = makeTrack({clip});
    EXPECT_FALSE(manager->moveObjectToStreak(clip, inner));
    EXPECT_THAT(outer->getObjects(), ElementsAre(clip));
    EXPECT_EQ(clip->getParent(), outer->getId());
}

TEST_F(TrackMove, GivesAClipTheTracksItLacks) {
    kaAnimationStrip* clip = makeClip({makeTrack({makeBlock(50.0F, 60.0F)})});
    EXPECT_TRUE(manager->moveObjectToStreak(block, clip, 2));
    ASSERT_EQ(clip->getStreaks().size(), 3U);
    EXPECT_FALSE(clip->getStreaks().at(1)->hasChildren());
    EXPECT_THAT(clip->getStreaks().at(2)->getObjects(), ElementsAre(block));
    EXPECT_FALSE(track->hasChildren());
}

TEST_F(TrackMove, MakesNoTrackThatIsThere) {
    kaAnimationStrip* clip = makeClip({track, makeTrack({makeBlock(50.0F, 60.0F)})});
    EXPECT_TRUE(manager->moveObjectToStreak(block, clip, 1));
    EXPECT_EQ(clip->getStreaks().size(), 2U);
    EXPECT_EQ(clip->getStreaks().at(1)->getChildCount(), 2U);
}

/// Numbers repeat after a removal, so a clip may have children enough and still no track of that number.
TEST_F(TrackMove, CountsTheClipsChildrenAndNotTheirNumbers) {
    kaAnimationStrip* clip = makeClip({makeTrack({}), makeTrack({}), makeTrack({})});
    clip->subObject(clip->getStreaks().at(0), true);
    EXPECT_FALSE(manager->moveObjectToStreak(block, clip, 0));
    EXPECT_EQ(clip->getChildCount(), 2U);
    EXPECT_THAT(track->getObjects(), ElementsAre(block));
}

TEST_F(TrackMove, TheTracksStayWhenTheMoveIsRefused) {
    kaAnimationStrip* clip = manager->createStrip(0);
    EXPECT_FALSE(manager->moveObjectToStreak(makeBlock(0.0F, 1.0F), clip, 1));
    EXPECT_EQ(clip->getChildCount(), 2U);
}

TEST_F(TrackMove, ReachesTrackNumber65535AndNoFurther) {
    kaAnimationStrip* clip = manager->createStrip(0);
    EXPECT_FALSE(manager->moveObjectToStreak(block, clip, 65536));
    EXPECT_FALSE(manager->moveObjectToStreak(block, clip, 0xFFFFFFFF));
    EXPECT_FALSE(clip->hasChildren());
    EXPECT_TRUE(manager->moveObjectToStreak(block, clip, 65535));
    EXPECT_EQ(clip->getChildCount(), 65536U);
}

} // namespace
