#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

class ContainerCopy : public TimeFixture {
  protected:
    static void dress(Object* object) {
        object->setName("dressed");
        object->setRangeBegin(3.0F);
        object->setRangeEnd(4.0F);
        object->setPlaying(true);
        object->setRepeating(true);
        object->setMotionBlur(true);
        object->setReversePlay(true);
        object->setPausing(true);
        object->setFlipped(true);
        object->setTrimmed(true);
        object->setLocked(true);
        object->setSelected(true);
        object->setInternal(true);
        object->setUseCustomRange(true);
        object->setActive(false);
    }

    static void expectCopied(const Object* copy, const Object* source) {
        EXPECT_NE(copy->getId(), source->getId());
        EXPECT_EQ(copy->getName(), "dressed");
        EXPECT_EQ(spanOf(copy), spanOf(source));
        EXPECT_EQ(copy->getRangeBegin(), 3.0F);
        EXPECT_EQ(copy->getRangeEnd(), 4.0F);
        EXPECT_FALSE(copy->isActive());
        EXPECT_TRUE(copy->isPlaying() && copy->isRepeating() && copy->isMotionBlur());
        EXPECT_TRUE(copy->isFlipped() && copy->isTrimmed());
        EXPECT_FALSE(copy->isSelected() || copy->isLocked() || copy->isReversePlay() || copy->isPausing());
        EXPECT_FALSE(copy->isInternal() || copy->isUseCustomRange());
        EXPECT_EQ(copy->getParent(), source->getParent());
    }
};

TEST_F(ContainerCopy, OfABlockHasCurvesOfItsOwnOnTheSameFields) {
    kaAnimationUnit* block = makeBlock(2.0F, 6.0F);
    block->setNodeID(9);
    dress(block);
    const kaAnimationUnit* copy = manager->duplicateUnit(block, false);
    expectCopied(copy, block);
    EXPECT_EQ(copy->getNodeID(), 9U);
    const kaAnimationCurve2D* curve = curveOf(copy);
    EXPECT_NE(curve, curveOf(block));
    EXPECT_EQ(curve->getField(), curveOf(block)->getField());
    EXPECT_EQ(curve->getParent(), copy->getId());
    EXPECT_EQ(copy->getMaximum(), 1.0F) << "recomputed from the curves";
    EXPECT_EQ(manager->getUnit(copy->getId()), copy);
    EXPECT_EQ(manager->getCurve2D(curve->getId()), curve);
}

TEST_F(ContainerCopy, OfAnEmptyBlockKeepsBeginAndEndButNotTheValueBounds) {
    kaAnimationUnit* block = manager->createUnit(0);
    block->setBegin(1.0F);
    block->setEnd(2.0F);
    block->setMinimum(-5.0F);
    block->setMaximum(5.0F);
    const kaAnimationUnit* copy = manager->duplicateUnit(block, false);
    EXPECT_EQ(spanOf(copy), Span(1.0F, 2.0F));
    EXPECT_EQ(copy->getMinimum(), KA_EMPTY_EXTENT);
    EXPECT_EQ(copy->getMaximum(), -KA_EMPTY_EXTENT);
}

TEST_F(ContainerCopy, OfATrackLosesItsSequences) {
    kaAnimationSequence* sequence = makeSequence("s", 10.0F, 12.0F);
    kaAnimationUnit* block = makeBlock(2.0F, 6.0F);
    kaAnimationStrip* clip = makeClip({makeBlock(7.0F, 8.0F)});
    kaAnimationStreak* track = makeTrack({block, clip, sequence});
    track->setIndex(4);
    const kaAnimationStreak* copy = manager->duplicateStreak(track);
    EXPECT_EQ(copy->getIndex(), 4U);
    ASSERT_EQ(copy->getUnits().size(), 1U);
    ASSERT_EQ(copy->getStrips().size(), 1U);
    EXPECT_NE(copy->getUnits().at(0), block);
    EXPECT_NE(copy->getStrips().at(0), clip);
    EXPECT_THAT(copy->getSequences(), IsEmpty());
    EXPECT_THAT(copy->getSequencesRecursive(), IsEmpty());
    EXPECT_EQ(spanOf(copy), Span(2.0F, 8.0F)) << "recomputed without the sequence";
    EXPECT_EQ(copy->getCurves().size(), 2U);
}

TEST_F(ContainerCopy, OfATrackIsDressedAsTheSource) {
    kaAnimationStreak* track = makeTrack({makeBlock(2.0F, 6.0F)});
    dress(track);
    expectCopied(manager->duplicateStreak(track), track);
}

TEST_F(ContainerCopy, OfAClipNumbersItsTracksAnewInChildOrder) {
    kaAnimationStrip* clip = makeClip({makeBlock(20.0F, 30.0F), makeBlock(0.0F, 10.0F)});
    dress(clip);
    const kaAnimationStrip* copy = manager->duplicateStrip(clip);
    expectCopied(copy, clip);
    ASSERT_EQ(copy->getStreaks().size(), 2U);
    EXPECT_EQ(copy->getStreaks().at(0)->getBegin(), 0.0F) << "number 1 in the source";
    EXPECT_EQ(copy->getStreaks().at(1)->getBegin(), 20.0F);
    EXPECT_THAT(copy->getCurves(), Not(testing::Contains(clip->getCurves().at(0))));
}

/// The copy names the source's parent without being its child; as its children arrive the parent takes in
/// their ids.
TEST_F(ContainerCopy, KeepsTheParentWhichTakesInTheCurvesThatArrive) {
    kaAnimationUnit* block = makeBlock(2.0F, 6.0F);
    kaAnimationStreak* track = makeTrack({block});
    const kaAnimationUnit* copy = manager->duplicateUnit(block, false);
    EXPECT_EQ(copy->getParent(), track->getId());
    EXPECT_THAT(track->getObjects(), ElementsAre(block));
    EXPECT_THAT(track->getCurveIDs(),
                testing::UnorderedElementsAre(curveOf(block)->getId(), curveOf(copy)->getId()));
}

TEST_F(ContainerCopy, OfAnObjectWhoseParentIsUnknownHasNone) {
    kaAnimationUnit* block = makeBlock(2.0F, 6.0F);
    block->setParent(4711);
    EXPECT_EQ(manager->duplicateUnit(block, false)->getParent(), 0ULL);
    kaAnimationSequence* sequence = makeSequence("s", 0.0F, 1.0F);
    sequence->setParent(4711);
    EXPECT_EQ(manager->duplicateSequence(sequence)->getParent(), 0ULL);
}

TEST_F(ContainerCopy, PassesOverChildrenOfAnotherKind) {
    kaAnimationUnit* block = manager->createUnit(0);
    block->setChildIDs({makeSequence("s", 0.0F, 1.0F)->getId(), 4711});
    EXPECT_FALSE(manager->duplicateUnit(block, false)->hasChildren());
    kaAnimationStrip* clip = manager->createStrip(0);
    clip->setChildIDs({makeBlock(0.0F, 1.0F)->getId()});
    EXPECT_FALSE(manager->duplicateStrip(clip)->hasChildren());
}

} // namespace
