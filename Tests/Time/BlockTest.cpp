#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Block : public TimeFixture {};

TEST_F(Block, StartsWithoutNodeUnderTheIdGivenOrAFreshOne) {
    IdSequence ids;
    const kaAnimationUnit* named = manager->createUnit("arm", 7);
    EXPECT_EQ(named->getId(), 7ULL);
    EXPECT_EQ(named->getName(), "arm");
    EXPECT_EQ(named->getNodeID(), 0U);
    EXPECT_EQ(named->getTypeID(), 3U);
    EXPECT_EQ(manager->createUnit(0)->getId(), ids.next());
}

TEST_F(Block, TakesCurvesOnly) {
    kaAnimationUnit* block = manager->createUnit(0);
    EXPECT_EQ(block->addObject(nullptr), nullptr);
    EXPECT_EQ(block->addObject(manager->createPoint2D(0)), nullptr);
    EXPECT_EQ(block->addObject(manager->createUnit(0)), nullptr);
    EXPECT_EQ(block->addObject(manager->createSequence("s", 0)), nullptr);
    EXPECT_THAT(block->getChildIDs(), IsEmpty());

    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{2.0F, 0.0F}, {6.0F, 1.0F}});
    EXPECT_EQ(block->addObject(curve), curve);
    EXPECT_EQ(curve->getParent(), block->getId());
    EXPECT_EQ(spanOf(block), Span(2.0F, 6.0F));
    EXPECT_THAT(block->getCurves(), ElementsAre(curve));
}

TEST_F(Block, LearnsItsNodeFromTheFirstCurveOnly) {
    kaAnimationUnit* block = manager->createUnit(0);
    kaAnimationCurve2D* first = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    kaAnimationCurve2D* second = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    manager->getField(first->getField())->nodeID = 0x100000000ULL + 42;
    manager->getField(second->getField())->nodeID = 43;
    block->addObject(first);
    EXPECT_EQ(block->getNodeID(), 42U) << "the low 32 bits";
    block->addObject(second);
    EXPECT_EQ(block->getNodeID(), 42U);
}

TEST_F(Block, KeepsLookingForItsNodeWhileItHasNone) {
    kaAnimationUnit* block = manager->createUnit(0);
    kaAnimationCurve2D* unbound = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    unbound->setAnimationField(nullptr);
    block->addObject(unbound);
    EXPECT_EQ(block->getNodeID(), 0U);
    kaAnimationCurve2D* bound = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    manager->getField(bound->getField())->nodeID = 5;
    block->addObject(bound);
    EXPECT_EQ(block->getNodeID(), 5U);
}

TEST_F(Block, GivesUpOnlyItsOwnCurves) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationCurve2D* own = curveOf(block);
    kaAnimationCurve2D* other = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    EXPECT_EQ(block->subObject(nullptr, false), nullptr);
    EXPECT_EQ(block->subObject(other, true), nullptr);
    EXPECT_EQ(manager->getCurve2D(other->getId()), other) << "a refusal destroys nothing";
    EXPECT_EQ(block->subObject(block, false), nullptr);

    EXPECT_EQ(block->subObject(own, false), own);
    EXPECT_EQ(own->getParent(), 0ULL);
    EXPECT_THAT(block->getCurves(), IsEmpty());
    EXPECT_EQ(block->subObject(own, false), nullptr) << "no child any more";
}

TEST_F(Block, HasTheRegistryFreeACurveThatItGivesUpToBeDestroyed) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    const kaUID curve = curveOf(block)->getId();
    EXPECT_EQ(block->subObject(curveOf(block), true), nullptr);
    EXPECT_EQ(manager->getObject(curve), nullptr);
    EXPECT_FALSE(block->hasChildren());
}

TEST_F(Block, MovedBeginBeyondItsEndChangesItselfButNoCurve) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    const kaAnimationStreak* track = makeTrack({block});
    block->moveBegin(15.0F, true);
    EXPECT_EQ(block->getBegin(), 15.0F);
    EXPECT_EQ(spanOf(curveOf(block)), Span(0.0F, 10.0F));
    EXPECT_EQ(track->getBegin(), 0.0F) << "nobody is told of a refusal";
    block->setBegin(0.0F);
    block->moveEnd(-1.0F, true);
    EXPECT_EQ(block->getEnd(), -1.0F);
    EXPECT_EQ(spanOf(curveOf(block)), Span(0.0F, 10.0F));
}

struct TrimRow {
    const char* name;
    bool atBegin;
    float to;
    bool accepted;
};

class BlockTrim : public Block, public testing::WithParamInterface<TrimRow> {};

TEST_P(BlockTrim, ChangesOnlyTheBlocksSpan) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    const kaAnimationStreak* track = makeTrack({block});
    const TrimRow& row = GetParam();
    if (row.atBegin)
        block->trimBegin(row.to, true);
    else
        block->trimEnd(row.to, true);
    const Span trimmed = row.atBegin ? Span(row.to, 10.0F) : Span(0.0F, row.to);
    EXPECT_EQ(spanOf(block), row.accepted ? trimmed : Span(0.0F, 10.0F));
    EXPECT_EQ(spanOf(track), spanOf(block)) << "the parent is told";
    EXPECT_EQ(block->isTrimmed(), row.accepted);
    EXPECT_EQ(spanOf(curveOf(block)), Span(0.0F, 10.0F));
}

INSTANTIATE_TEST_SUITE_P(Spans, BlockTrim,
                         testing::Values(TrimRow{"begin_inwards", true, 4.0F, true},
                                         TrimRow{"begin_outwards", true, -4.0F, true},
                                         TrimRow{"begin_at_the_end", true, 10.0F, false},
                                         TrimRow{"begin_beyond_the_end", true, 11.0F, false},
                                         TrimRow{"end_inwards", false, 4.0F, true},
                                         TrimRow{"end_at_the_begin", false, 0.0F, false},
                                         TrimRow{"end_a_millionth_after_the_begin", false, 0.000001F, false},
                                         TrimRow{"end_before_the_begin", false, -1.0F, false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(Block, WithoutCurvesIgnoresEveryEdit) {
    kaAnimationUnit* block = manager->createUnit(0);
    block->setBegin(1.0F);
    block->setEnd(2.0F);
    block->move(5.0F, true);
    block->moveBegin(0.0F, true);
    block->moveEnd(9.0F, true);
    block->trimBegin(1.5F, true);
    block->trimEnd(1.75F, true);
    block->flip();
    block->triggerLoop(1.5F);
    EXPECT_EQ(spanOf(block), Span(1.0F, 2.0F));
    EXPECT_FALSE(block->isTrimmed());
    EXPECT_FALSE(block->isFlipped());
    EXPECT_FALSE(block->isPlaying());
}

} // namespace
