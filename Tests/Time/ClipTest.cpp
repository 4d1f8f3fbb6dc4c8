#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class Clip : public TimeFixture {
  protected:
    /// A clip whose tracks 0, 1, 2 ... hold a block each, or nothing.
    kaAnimationStrip* clipOf(const std::vector<bool>& filled) {
        kaAnimationStrip* clip = manager->createStrip(0);
        float begin = 0.0F;
        for (bool full : filled) {
            kaAnimationStreak* track = manager->createStreak(0);
            if (full)
                track->addObject(makeBlock(begin, begin + 1.0F));
            clip->addObject(track);
            begin += 1.0F;
        }
        return clip;
    }

    static std::vector<unsigned int> numbers(const kaAnimationStrip& clip) {
        std::vector<unsigned int> found;
        for (const auto& entry : clip.getStreaks())
            found.push_back(entry.first);
        return found;
    }
};

TEST_F(Clip, NumbersTracksInTheOrderOfAdding) {
    kaAnimationStrip* clip = manager->createStrip(0);
    kaAnimationStreak* first = makeTrack({makeBlock(20.0F, 30.0F)});
    kaAnimationStreak* second = makeTrack({makeBlock(0.0F, 10.0F)});
    second->setIndex(77);
    EXPECT_EQ(clip->addObject(first), first);
    EXPECT_EQ(clip->addObject(second), second);
    EXPECT_THAT(clip->getStreaks(), ElementsAre(Pair(0U, first), Pair(1U, second)));
    EXPECT_THAT(clip->getObjects(), ElementsAre(second, first)) << "children stand in order of begin";
    EXPECT_EQ(first->getParent(), clip->getId());
}

TEST_F(Clip, PutsALooseObjectOnANewTrackNumberedByTheTracksItHad) {
    kaAnimationStrip* clip = clipOf({true, true});
    for (Object* object : std::vector<Object*>{makeBlock(5.0F, 6.0F), makeClip({makeBlock(7.0F, 8.0F)}),
                                               makeSequence("s", 9.0F, 9.5F)}) {
        const auto had = static_cast<unsigned int>(clip->getChildCount());
        auto* track = static_cast<kaAnimationStreak*>(clip->addObject(object));
        ASSERT_NE(track, nullptr);
        EXPECT_EQ(track->getTypeID(), KA_TYPE_STREAK);
        EXPECT_EQ(track->getName(), "Track");
        EXPECT_EQ(track->getIndex(), had);
        EXPECT_THAT(track->getObjects(), ElementsAre(object));
        EXPECT_EQ(track->getParent(), clip->getId());
    }
    EXPECT_EQ(spanOf(clip), Span(0.0F, 9.5F));
}

TEST_F(Clip, TakesNothingElse) {
    kaAnimationStrip* clip = manager->createStrip(0);
    const std::size_t registered = manager->getObjects().size();
    EXPECT_EQ(clip->addObject(nullptr), nullptr);
    kaControlPoint2D* point = manager->createPoint2D(0);
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    EXPECT_EQ(clip->addObject(point), nullptr);
    EXPECT_EQ(clip->addObject(curve), nullptr);
    EXPECT_EQ(clip->insertObject(curve), nullptr);
    EXPECT_EQ(clip->insertObject(nullptr), nullptr);
    EXPECT_EQ(clip->insertObject(makeTrack({})), nullptr);
    EXPECT_EQ(clip->subObject(nullptr, true), nullptr);
    EXPECT_EQ(clip->subObject(curve, true), nullptr);
    EXPECT_EQ(manager->getCurve2D(curve->getId()), curve);
    EXPECT_FALSE(clip->hasChildren());
    EXPECT_EQ(manager->getObjects().size(), registered + 3) << "no track was made in vain";
}

TEST_F(Clip, NumbersRepeatAfterARemoval) {
    kaAnimationStrip* clip = clipOf({true, true, true});
    kaAnimationStreak* first = clip->getStreaks().at(0);
    kaAnimationStreak* last = clip->getStreaks().at(2);
    EXPECT_EQ(clip->subObject(first, false), first);
    EXPECT_EQ(first->getParent(), 0ULL);
    kaAnimationStreak* added = makeTrack({makeBlock(50.0F, 60.0F)});
    clip->addObject(added);
    EXPECT_EQ(added->getIndex(), 2U) << "two tracks were there";
    EXPECT_EQ(clip->getStreaks().at(2), last) << "of one number the first in child order";
}

TEST_F(Clip, InsertsOnTheFirstTrackByBeginThatHasRoom) {
    kaAnimationStrip* clip = manager->createStrip(0);
    kaAnimationStreak* late = makeTrack({makeBlock(10.0F, 20.0F)});
    kaAnimationStreak* early = makeTrack({makeBlock(0.0F, 5.0F)});
    clip->addObject(late);
    clip->addObject(early);

    kaAnimationUnit* onEarly = makeBlock(10.0F, 15.0F);
    EXPECT_EQ(clip->insertObject(onEarly), early);
    kaAnimationUnit* onLate = makeBlock(1.0F, 2.0F);
    EXPECT_EQ(clip->insertObject(onLate), late) << "the early one is taken there";
    kaAnimationUnit* nowhere = makeBlock(0.0F, 50.0F);
    kaAnimationStreak* made = clip->insertObject(nowhere);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->getIndex(), 2U);
    EXPECT_THAT(made->getObjects(), ElementsAre(nowhere));
}

TEST_F(Clip, GivesUpATrackOrHasTheTrackGiveUpTheObject) {
    kaAnimationStrip* clip = clipOf({true, true});
    kaAnimationStreak* track = clip->getStreaks().at(1);
    kaAnimationUnit* block = track->getUnits().at(0);
    EXPECT_EQ(clip->subObject(block, false), track);
    EXPECT_EQ(block->getParent(), 0ULL);
    EXPECT_THAT(numbers(*clip), ElementsAre(0U, 1U)) << "the track stays, empty";
    EXPECT_EQ(clip->subObject(block, false), nullptr) << "no track holds it";
    EXPECT_EQ(spanOf(clip), Span(0.0F, 1.0F));

    kaAnimationUnit* other = clip->getStreaks().at(0)->getUnits().at(0);
    const kaUID gone = other->getId();
    EXPECT_EQ(clip->subObject(other, true), clip->getStreaks().at(0));
    EXPECT_EQ(manager->getObject(gone), nullptr);

    const kaUID goneTrack = track->getId();
    EXPECT_EQ(clip->subObject(track, true), nullptr);
    EXPECT_EQ(manager->getObject(goneTrack), nullptr);
}

TEST_F(Clip, DestroysItsEmptyTracksAndKeepsTheNumbersOfTheOthers) {
    kaAnimationStrip* clip = clipOf({false, true, false, true, false});
    const auto before = manager->getObjects().size();
    clip->destroyEmptyStreaks();
    EXPECT_THAT(numbers(*clip), ElementsAre(1U, 3U));
    EXPECT_EQ(clip->getChildCount(), 2U);
    EXPECT_EQ(manager->getObjects().size(), before - 3);
}

TEST_F(Clip, DestroysEmptyTracksAtTheEndOnly) {
    kaAnimationStrip* clip = clipOf({false, true, false, false});
    clip->destroyEmptyStreaksAtEnd();
    EXPECT_THAT(numbers(*clip), ElementsAre(0U, 1U));
    clip->destroyEmptyStreaksAtEnd();
    EXPECT_THAT(numbers(*clip), ElementsAre(0U, 1U)) << "empty tracks below a filled one stay";
}

TEST_F(Clip, WithEmptyTracksOnlyLosesAllOfThem) {
    kaAnimationStrip* clip = clipOf({false, false, false});
    clip->destroyEmptyStreaksAtEnd();
    EXPECT_FALSE(clip->hasChildren());
}

TEST_F(Clip, WithoutTracksHasNoneToDestroy) {
    kaAnimationStrip* clip = manager->createStrip(0);
    clip->destroyEmptyStreaksAtEnd();
    clip->destroyEmptyStreaks();
    EXPECT_THAT(clip->getStreaks(), IsEmpty());
}

TEST_F(Clip, StopsAtTheFirstMissingNumber) {
    kaAnimationStrip* clip = clipOf({false, false, false});
    clip->getStreaks().at(2)->setIndex(9);
    clip->destroyEmptyStreaksAtEnd();
    EXPECT_EQ(clip->getChildCount(), 3U);
}

TEST_F(Clip, IsNotTrimmed) {
    kaAnimationStrip* clip = clipOf({true, true});
    clip->trimBegin(0.5F, true);
    clip->trimEnd(0.75F, true);
    EXPECT_EQ(spanOf(clip), Span(0.0F, 2.0F));
    EXPECT_FALSE(clip->isTrimmed());
}

} // namespace
