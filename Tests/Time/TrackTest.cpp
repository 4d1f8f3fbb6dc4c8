#include "TimeFixture.h"

#include <gmock/gmock.h>
#include <limits>
#include <random>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Track : public TimeFixture {};

struct InsertRow {
    const char* name;
    float begin;
    float end;
    bool accepted;
};

class TrackInsert : public Track, public testing::WithParamInterface<InsertRow> {};

/// The track holds blocks over [10, 20] and [30, 40].
TEST_P(TrackInsert, KeepsBlocksFromOverlapping) {
    kaAnimationStreak* track = makeTrack({makeBlock(10.0F, 20.0F), makeBlock(30.0F, 40.0F)});
    kaAnimationUnit* block = makeBlock(GetParam().begin, GetParam().end);
    EXPECT_EQ(track->insertObject(block), GetParam().accepted);
    EXPECT_EQ(track->findObject(block->getId()).second, GetParam().accepted);
    EXPECT_EQ(block->getParent(), GetParam().accepted ? track->getId() : 0ULL);
}

INSTANTIATE_TEST_SUITE_P(Spans, TrackInsert,
                         testing::Values(InsertRow{"inside_a_child", 12.0F, 18.0F, false},
                                         InsertRow{"same_span", 10.0F, 20.0F, false},
                                         InsertRow{"covers_a_child", 5.0F, 25.0F, false},
                                         InsertRow{"covers_both", 0.0F, 50.0F, false},
                                         InsertRow{"overlaps_a_begin", 5.0F, 11.0F, false},
                                         InsertRow{"overlaps_an_end", 19.0F, 25.0F, false},
                                         InsertRow{"inside_with_common_begin", 10.0F, 12.0F, false},
                                         InsertRow{"starts_where_one_ends", 20.0F, 30.0F, true},
                                         InsertRow{"ends_where_one_starts", 0.0F, 10.0F, true},
                                         InsertRow{"after_all", 40.0F, 50.0F, true},
                                         InsertRow{"before_all", -5.0F, 5.0F, true}),
                         [](const auto& row) { return std::string(row.param.name); });

/// The rule, child by child.
bool isInTheWay(const kaAnimationObject& child, float begin, float end) {
    const float childBegin = child.getBegin();
    const float childEnd = child.getEnd();
    const auto isInside = [](float frame, float from, float to) { return from < frame && frame < to; };
    return isInside(begin, childBegin, childEnd) || isInside(end, childBegin, childEnd) ||
           (childBegin <= begin && end <= childEnd) || (begin <= childBegin && childEnd <= end);
}

TEST_F(Track, FindsRoomAmongManyBlocksThatMoveAndLeaveAsALookAtEachWould) {
    std::mt19937 random(3);
    const auto below = [&random](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    kaAnimationStreak* track = manager->createStreak(0);
    std::vector<kaAnimationObject*> inside;
    int accepted = 0;
    for (int step = 0; step < 6000; ++step) {
        const auto begin = static_cast<float>(below(9000));
        const float end = begin + static_cast<float>(1 + below(12));
        if (!inside.empty() && step % 7 == 0) {
            inside[static_cast<std::size_t>(below(static_cast<int>(inside.size())))]->move(
                begin / 9.0F - 500.0F, true);
        } else if (!inside.empty() && step % 5 == 0) {
            const auto at = inside.begin() + below(static_cast<int>(inside.size()));
            track->subObject(*at, true);
            inside.erase(at);
        } else {
            bool isFree = true;
            for (const kaAnimationObject* child : track->getObjects())
                isFree = isFree && !isInTheWay(*child, begin, end);
            kaAnimationUnit* block = makeBlock(begin, end);
            ASSERT_EQ(track->insertObject(block), isFree) << step << ": " << begin << " to " << end;
            if (isFree)
                inside.push_back(block);
            accepted += isFree ? 1 : 0;
        }
    }
    EXPECT_GT(accepted, 500);
    EXPECT_GT(inside.size(), 300U);
}

TEST_F(Track, InsertsBlocksClipsAndSequencesOnly) {
    kaAnimationStreak* track = manager->createStreak(0);
    EXPECT_FALSE(track->insertObject(nullptr));
    EXPECT_FALSE(track->insertObject(makeCurve(std::vector<Spot>{{0.0F, 0.0F}})));
    EXPECT_FALSE(track->insertObject(manager->createPoint2D(0)));
    EXPECT_FALSE(track->insertObject(makeTrack({makeBlock(0.0F, 1.0F)})));
    EXPECT_THAT(track->getChildIDs(), IsEmpty());
    EXPECT_TRUE(track->insertObject(makeBlock(0.0F, 1.0F)));
    EXPECT_TRUE(track->insertObject(makeClip({makeBlock(1.0F, 2.0F)})));
    EXPECT_TRUE(track->insertObject(makeSequence("s", 2.0F, 3.0F)));
    EXPECT_EQ(track->getChildCount(), 3U);
}

TEST_F(Track, HasNoRoomBesideAnEmptyBlockWhoseExtentCoversNothingAndIsCoveredByAll) {
    kaAnimationStreak* track = makeTrack({manager->createUnit(0)});
    EXPECT_FALSE(track->insertObject(makeBlock(0.0F, 10.0F)));
    kaAnimationStreak* filled = makeTrack({makeBlock(0.0F, 10.0F)});
    EXPECT_FALSE(filled->insertObject(manager->createUnit(0)));
    kaAnimationStreak* bare = manager->createStreak(0);
    EXPECT_TRUE(bare->insertObject(manager->createUnit(0)));
}

TEST_F(Track, RefusesAPointInTimeWhereAChildEnds) {
    kaAnimationStreak* track = makeTrack({makeBlock(0.0F, 10.0F)});
    EXPECT_FALSE(track->insertObject(makeSequence("s", 10.0F, 10.0F))) << "the child covers it";
    EXPECT_FALSE(track->insertObject(makeSequence("s", 0.0F, 0.0F)));
    EXPECT_TRUE(track->insertObject(makeSequence("s", 11.0F, 11.0F)));
}

TEST_F(Track, PassesOverChildrenThatTheRegistryDoesNotKnow) {
    kaAnimationStreak* track = manager->createStreak(0);
    track->setChildIDs({123456});
    EXPECT_TRUE(track->insertObject(makeBlock(0.0F, 10.0F)));
}

TEST_F(Track, AddsOverlappingAndWronglyTypedObjectsUnchecked) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationUnit* over = makeBlock(5.0F, 15.0F);
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{-2.0F, 0.0F}, {-1.0F, 0.0F}});
    kaAnimationStreak* inner = makeTrack({makeBlock(20.0F, 30.0F)});
    kaAnimationStreak* track = manager->createStreak(0);
    for (Object* object : std::vector<Object*>{block, over, curve, inner})
        EXPECT_EQ(track->addObject(object), object);
    EXPECT_EQ(track->addObject(nullptr), nullptr);
    EXPECT_THAT(track->getObjects(), ElementsAre(curve, block, over, inner)) << "in order of begin";
    EXPECT_EQ(spanOf(track), Span(-2.0F, 30.0F));
}

TEST_F(Track, ListsItsChildrenByKindInChildOrder) {
    kaAnimationUnit* late = makeBlock(20.0F, 30.0F);
    kaAnimationUnit* early = makeBlock(0.0F, 10.0F);
    kaAnimationStrip* clip = makeClip({makeBlock(12.0F, 15.0F)});
    kaAnimationSequence* sequence = makeSequence("s", 16.0F, 17.0F);
    const kaAnimationStreak* track = makeTrack({late, sequence, early, clip});
    EXPECT_THAT(track->getUnits(), ElementsAre(early, late));
    EXPECT_THAT(track->getStrips(), ElementsAre(clip));
    EXPECT_THAT(track->getSequences(), ElementsAre(sequence));
}

TEST_F(Track, GivesUpAChildOfAnyKind) {
    kaAnimationSequence* sequence = makeSequence("s", 0.0F, 1.0F);
    kaAnimationUnit* block = makeBlock(2.0F, 3.0F);
    kaAnimationStreak* track = makeTrack({sequence, block});
    EXPECT_EQ(track->subObject(sequence, false), sequence);
    EXPECT_EQ(sequence->getParent(), 0ULL);
    EXPECT_THAT(track->getSequencesRecursive(), IsEmpty());
    EXPECT_EQ(track->subObject(sequence, true), nullptr) << "no child any more";
    EXPECT_EQ(manager->getSequence(sequence->getId()), sequence);
    const kaUID gone = block->getId();
    EXPECT_EQ(track->subObject(block, true), nullptr);
    EXPECT_EQ(manager->getObject(gone), nullptr);
    EXPECT_EQ(track->subObject(nullptr, true), nullptr);
}

TEST_F(Track, IsNotTrimmed) {
    kaAnimationStreak* track = makeTrack({makeBlock(0.0F, 10.0F)});
    track->trimBegin(5.0F, true);
    track->trimEnd(6.0F, true);
    EXPECT_EQ(spanOf(track), Span(0.0F, 10.0F));
    EXPECT_FALSE(track->isTrimmed());
}

} // namespace
