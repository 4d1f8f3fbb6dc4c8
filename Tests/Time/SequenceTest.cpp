#include "CapturedOutput.h"
#include "DecimalComma.h"
#include "TimeFixture.h"

#include <array>
#include <cstdio>
#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Sequence : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        sequence = makeSequence("door", 10.0F, 20.0F);
        track = makeTrack({sequence});
    }

    kaAnimationSequence* sequence = nullptr;
    kaAnimationStreak* track = nullptr;
};

std::string addressOf(const void* pointer) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%p", pointer);
    return text.data();
}

TEST_F(Sequence, IsBornArmedAndListsItself) {
    EXPECT_TRUE(sequence->isArmed());
    EXPECT_EQ(sequence->getTypeID(), 6U);
    EXPECT_THAT(sequence->getSequencesRecursive(), ElementsAre(sequence));
    EXPECT_THAT(track->getSequencesRecursive(), ElementsAre(sequence));
    EXPECT_THAT(sequence->getCurveIDs(), IsEmpty());
    EXPECT_EQ(manager->createSequence("x", 77)->getId(), 77ULL);
}

TEST_F(Sequence, TakesNoChildren) {
    kaAnimationUnit* block = makeBlock(0.0F, 1.0F);
    EXPECT_EQ(sequence->addObject(block), block);
    EXPECT_EQ(sequence->subObject(block, true), block);
    EXPECT_FALSE(sequence->hasChildren());
    EXPECT_EQ(manager->getObject(block->getId()), block);
}

TEST_F(Sequence, SaysOneLineWhenMovedQuietly) {
    const CapturedOutput output;
    sequence->move(2.5F, false);
    EXPECT_EQ(output.text(), "moving sequence by offset 2.500000\n");
    EXPECT_EQ(spanOf(sequence), Span(12.5F, 22.5F));
    EXPECT_EQ(spanOf(track), Span(10.0F, 20.0F));
}

TEST_F(Sequence, SaysItsParentWhenMovedAloud) {
    const CapturedOutput output;
    sequence->move(-2.5F, true);
    EXPECT_EQ(output.text(), "moving sequence by offset -2.500000\ntelling parent " +
                                 addressOf(static_cast<const Object*>(track)) + "\n");
    EXPECT_EQ(spanOf(track), Span(7.5F, 17.5F));
}

TEST_F(Sequence, SaysNilForAParentThatNobodyKnows) {
    sequence->setParent(4711);
    const CapturedOutput output;
    sequence->move(0.0F, true);
    EXPECT_EQ(output.text(),
              "moving sequence by offset 0.000000\ntelling parent " + addressOf(nullptr) + "\n");
}

TEST_F(Sequence, SaysTheSameUnderADecimalComma) {
    const DecimalComma comma;
    const CapturedOutput output;
    sequence->move(0.5F, false);
    EXPECT_EQ(output.text(), "moving sequence by offset 0.500000\n");
}

struct EditRow {
    const char* name;
    void (kaAnimationObject::*edit)(float, bool);
    float to;
    Span span;
    bool trimmed;
};

class SequenceEdit : public Sequence, public testing::WithParamInterface<EditRow> {};

TEST_P(SequenceEdit, KeepsASpan) {
    const EditRow& row = GetParam();
    (sequence->*row.edit)(row.to, true);
    EXPECT_EQ(spanOf(sequence), row.span);
    EXPECT_EQ(spanOf(track), row.span) << "the parent is told";
    EXPECT_EQ(sequence->isTrimmed(), row.trimmed);
}

using Edited = kaAnimationObject;
INSTANTIATE_TEST_SUITE_P(
    Edits, SequenceEdit,
    testing::Values(EditRow{"begin", &Edited::moveBegin, 15.0F, {15.0F, 20.0F}, false},
                    EditRow{"begin_at_the_end", &Edited::moveBegin, 20.0F, {10.0F, 20.0F}, false},
                    EditRow{"begin_beyond_the_end", &Edited::moveBegin, 25.0F, {10.0F, 20.0F}, false},
                    EditRow{"end", &Edited::moveEnd, 15.0F, {10.0F, 15.0F}, false},
                    EditRow{"end_at_the_begin", &Edited::moveEnd, 10.0F, {10.0F, 20.0F}, false},
                    EditRow{"trimmed_begin", &Edited::trimBegin, 15.0F, {15.0F, 20.0F}, true},
                    EditRow{"trimmed_begin_refused", &Edited::trimBegin, 20.0F, {10.0F, 20.0F}, false},
                    EditRow{"trimmed_end", &Edited::trimEnd, 15.0F, {10.0F, 15.0F}, true},
                    EditRow{"trimmed_end_refused", &Edited::trimEnd, 10.0F, {10.0F, 20.0F}, false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Sequence, QuietEditsDoNotReachTheParent) {
    sequence->moveEnd(30.0F, false);
    sequence->trimBegin(0.0F, false);
    EXPECT_EQ(spanOf(sequence), Span(0.0F, 30.0F));
    EXPECT_EQ(spanOf(track), Span(10.0F, 20.0F));
}

TEST_F(Sequence, KeepsAMillionthOfAFrame) {
    kaAnimationSequence* instant = makeSequence("s", 0.0F, 0.5F);
    instant->trimEnd(0.000001F, false);
    EXPECT_FALSE(instant->isTrimmed()) << "not more than the tolerance";
    instant->trimEnd(0.000002F, false);
    EXPECT_TRUE(instant->isTrimmed());
}

TEST_F(Sequence, IsNotFlipped) {
    sequence->flip();
    EXPECT_EQ(spanOf(sequence), Span(10.0F, 20.0F));
    EXPECT_FALSE(sequence->isFlipped());
}

TEST_F(Sequence, CopiesWhatItIsAndNotHowItIsShown) {
    sequence->setArmed(false);
    sequence->setPlaying(true);
    sequence->setRepeating(true);
    sequence->setSelected(true);
    sequence->setLocked(true);
    sequence->setMotionBlur(true);
    sequence->setMaximum(5.0F);
    sequence->setTrimmed(true);
    const kaAnimationSequence* copy = manager->duplicateSequence(sequence);
    EXPECT_NE(copy->getId(), sequence->getId());
    EXPECT_EQ(copy->getName(), "door");
    EXPECT_EQ(spanOf(copy), Span(10.0F, 20.0F));
    EXPECT_FALSE(copy->isArmed());
    EXPECT_TRUE(copy->isPlaying() && copy->isRepeating() && copy->isActive());
    EXPECT_FALSE(copy->isSelected() || copy->isLocked() || copy->isMotionBlur() || copy->isTrimmed());
    EXPECT_EQ(copy->getMaximum(), -KA_EMPTY_EXTENT);
    EXPECT_EQ(copy->getParent(), track->getId());
    EXPECT_THAT(copy->getChildIDs(), IsEmpty());
    EXPECT_THAT(copy->getSequencesRecursive(), ElementsAre(copy));
}

TEST_F(Sequence, WithTheEmptyExtentWidensNoParent) {
    kaAnimationStreak* own = makeTrack({manager->createSequence("s", 0)});
    EXPECT_EQ(spanOf(own), Span(KA_EMPTY_EXTENT, -KA_EMPTY_EXTENT));
}

} // namespace
