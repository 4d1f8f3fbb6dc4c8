#include "CapturedOutput.h"
#include "TimeFixture.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

using namespace ka_test;
using testing::ElementsAre;
using testing::FloatEq;
using testing::Pair;

namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

/// A track over [0, 40] with blocks over [0, 10] and [20, 40].
class ContainerTime : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        early = makeBlock(0.0F, 10.0F);
        late = makeBlock(20.0F, 40.0F);
        track = makeTrack({early, late});
    }

    static void expectSpan(const Object* object, float begin, float end) {
        EXPECT_THAT(spanOf(object), Pair(FloatEq(begin), FloatEq(end))) << object->getName();
    }
    static void expectBlock(const kaAnimationUnit* block, float begin, float end) {
        expectSpan(block, begin, end);
        expectSpan(curveOf(block), begin, end);
    }
    static std::vector<Spot> spotsOf(const kaAnimationUnit* block) {
        std::vector<Spot> spots;
        for (const kaControlPoint2D* key : keysOf(*curveOf(block)))
            spots.push_back(spotOf(*key));
        return spots;
    }

    kaAnimationUnit* early = nullptr;
    kaAnimationUnit* late = nullptr;
    kaAnimationStreak* track = nullptr;
};

TEST_F(ContainerTime, MovingATrackMovesEveryKey) {
    track->move(5.0F, false);
    expectSpan(track, 5.0F, 45.0F);
    expectBlock(early, 5.0F, 15.0F);
    expectBlock(late, 25.0F, 45.0F);
}

TEST_F(ContainerTime, OnlyAMoveThatTellsTheParentReachesTheAncestors) {
    kaAnimationStrip* clip = makeClip({track});
    kaAnimationStreak* outer = makeTrack({clip});
    early->move(-5.0F, false);
    expectSpan(track, 0.0F, 40.0F);
    early->move(-5.0F, true);
    for (const Object* ancestor : std::vector<Object*>{track, clip, outer})
        expectSpan(ancestor, -10.0F, 40.0F);
    clip->move(10.0F, true);
    expectSpan(outer, 0.0F, 50.0F);
    expectBlock(late, 30.0F, 50.0F);
}

TEST_F(ContainerTime, MovingAChildPastAnotherSortsTheParent) {
    early->move(100.0F, true);
    EXPECT_THAT(track->getObjects(), ElementsAre(late, early));
}

TEST_F(ContainerTime, MovedBeginStretchesTheChildrenAboutTheEnd) {
    track->moveBegin(-40.0F, false); // twice as long
    expectSpan(track, -40.0F, 40.0F);
    expectBlock(early, -40.0F, -20.0F);
    expectBlock(late, 0.0F, 40.0F);
}

TEST_F(ContainerTime, MovedEndStretchesTheChildrenAboutTheBegin) {
    track->moveEnd(80.0F, false);
    expectSpan(track, 0.0F, 80.0F);
    expectBlock(early, 0.0F, 20.0F);
    expectBlock(late, 40.0F, 80.0F);
}

TEST_F(ContainerTime, AClipStretchesThroughItsTracks) {
    kaAnimationStrip* clip = makeClip({track, makeTrack({makeBlock(10.0F, 40.0F)})});
    clip->moveEnd(80.0F, false);
    expectSpan(clip, 0.0F, 80.0F);
    expectSpan(track, 0.0F, 80.0F);
    expectBlock(late, 40.0F, 80.0F);
    expectBlock(clip->getStreaks().at(1)->getUnits().at(0), 20.0F, 80.0F);
}

TEST_F(ContainerTime, ABlockStretchesItsCurves) {
    kaAnimationUnit* block = makeBlock({makeCurve(std::vector<Spot>{{0.0F, 0.0F}, {10.0F, 1.0F}}),
                                        makeCurve(std::vector<Spot>{{10.0F, 0.0F}, {20.0F, 1.0F}})});
    block->moveBegin(-20.0F, false); // twice as long
    const auto curves = block->getObjects();
    expectSpan(curves.at(0), -20.0F, 0.0F);
    expectSpan(curves.at(1), 0.0F, 20.0F);
    block->moveEnd(60.0F, false); // and twice again
    expectSpan(curves.at(0), -20.0F, 20.0F);
    expectSpan(curves.at(1), 20.0F, 60.0F);
}

/// A block sets its begin before the test, so a begin that passes the block's end leaves it inverted, and the
/// end that follows is scaled from there: factor (25 - 20) / (10 - 20). The curve's end goes to (10 - 20) *
/// -0.5 + 20 = 25; its begin is asked to 30, beyond the new end, and stays.
TEST_F(ContainerTime, ABeginThatPassesABlocksEndLeavesItsCurveBehind) {
    track->moveBegin(20.0F, false);
    expectSpan(early, 20.0F, 25.0F);
    expectSpan(curveOf(early), 0.0F, 25.0F);
    expectBlock(late, 30.0F, 40.0F);
}

TEST_F(ContainerTime, AStretchTellsTheParentWhenAskedToAndNeverRecomputesTheOwnExtent) {
    kaAnimationStrip* clip = makeClip({track});
    track->moveEnd(80.0F, false);
    expectSpan(clip, 0.0F, 40.0F);
    track->moveEnd(160.0F, true);
    expectSpan(clip, 0.0F, 160.0F);
    track->moveBegin(200.0F, true);
    EXPECT_EQ(track->getBegin(), 200.0F) << "no test of the range";
    EXPECT_EQ(track->getEnd(), 160.0F);
}

TEST_F(ContainerTime, ASpanOfZeroIsNotStretched) {
    kaAnimationUnit* block = makeBlock({makeCurve(std::vector<Spot>{{5.0F, 2.0F}})});
    block->moveBegin(0.0F, false);
    expectSpan(block, 0.0F, 5.0F);
    expectSpan(curveOf(block), 5.0F, 5.0F);
    kaAnimationSequence* instant = makeSequence("s", 5.0F, 5.0F);
    kaAnimationStreak* narrow = makeTrack({instant});
    narrow->moveEnd(9.0F, false);
    expectSpan(narrow, 5.0F, 9.0F);
    expectSpan(instant, 5.0F, 5.0F);
}

TEST_F(ContainerTime, AFrameThatIsNoNumberReachesNoChild) {
    track->moveBegin(NotANumber, false);
    EXPECT_TRUE(std::isnan(track->getBegin()));
    expectBlock(early, 0.0F, 10.0F);
    early->moveEnd(NotANumber, true);
    EXPECT_TRUE(std::isnan(early->getEnd())) << "set first, then refused";
    expectSpan(curveOf(early), 0.0F, 10.0F);
}

TEST_F(ContainerTime, FlippingMirrorsTheChildrenInTheSpan) {
    track->flip();
    EXPECT_TRUE(track->isFlipped());
    EXPECT_TRUE(early->isFlipped());
    EXPECT_TRUE(curveOf(early)->isFlipped());
    expectBlock(early, 30.0F, 40.0F);
    expectBlock(late, 0.0F, 20.0F);
    EXPECT_THAT(track->getObjects(), ElementsAre(late, early));
    EXPECT_EQ(spotsOf(early).at(0).y, 1.0F) << "played backwards";
    EXPECT_EQ(spotsOf(early).at(1).y, 0.0F);
    track->flip();
    EXPECT_FALSE(track->isFlipped());
    expectBlock(early, 0.0F, 10.0F);
    expectBlock(late, 20.0F, 40.0F);
}

TEST_F(ContainerTime, FlippingDoesNotTellTheAncestors) {
    kaAnimationStrip* clip = makeClip({track});
    track->setEnd(50.0F); // a span of 50 to mirror in
    track->flip();
    expectSpan(track, 10.0F, 50.0F);
    expectSpan(clip, 0.0F, 40.0F);
}

/// The flip of a trimmed block puts its curve at [4, 14] and gives the block that extent; from there the
/// track moves it by (10 - 14) + 4 - 4.
TEST_F(ContainerTime, AChildFlipsBeforeItIsMovedToItsMirrorPlace) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationStreak* own = makeTrack({block});
    block->trimBegin(4.0F, true);
    expectSpan(own, 4.0F, 10.0F);
    own->flip();
    expectBlock(block, 0.0F, 10.0F);
}

TEST_F(ContainerTime, ASequenceIsMovedToItsMirrorPlaceAndNotFlipped) {
    kaAnimationSequence* sequence = makeSequence("s", 12.0F, 15.0F);
    track->addObject(sequence);
    const CapturedOutput output;
    track->flip();
    expectSpan(sequence, 25.0F, 28.0F);
    EXPECT_FALSE(sequence->isFlipped());
    EXPECT_EQ(output.text(), "moving sequence by offset 13.000000\n");
}

TEST_F(ContainerTime, AClipEditsItsTracksAndNothingElse) {
    kaAnimationUnit* loose = makeBlock(0.0F, 40.0F);
    kaAnimationStrip* clip = makeClip({track});
    std::vector<kaUID> ids = clip->getChildIDs();
    ids.push_back(loose->getId());
    clip->setChildIDs(ids);
    clip->move(10.0F, false);
    clip->moveEnd(90.0F, false);
    clip->flip();
    clip->triggerLoop(20.0F);
    expectBlock(loose, 0.0F, 40.0F);
    EXPECT_FALSE(loose->isPlaying());
    EXPECT_TRUE(late->isPlaying());
}

struct FlagRow {
    const char* name;
    void (kaAnimationObject::*set)(bool);
    bool (kaAnimationObject::*get)() const;
};

class ContainerFlag : public ContainerTime, public testing::WithParamInterface<FlagRow> {};

TEST_P(ContainerFlag, ReachesEverythingBelow) {
    const FlagRow& row = GetParam();
    kaAnimationSequence* sequence = makeSequence("s", 12.0F, 15.0F);
    track->addObject(sequence);
    kaAnimationStrip* clip = makeClip({track});
    const bool before = (clip->*row.get)();
    (clip->*row.set)(!before);
    for (const Object* object :
         std::vector<Object*>{clip, track, early, late, curveOf(early), curveOf(late), sequence})
        EXPECT_NE((object->*row.get)(), before) << object->getTypeID();
    (track->*row.set)(before);
    EXPECT_NE((clip->*row.get)(), before) << "ancestors keep theirs";
    EXPECT_EQ((early->*row.get)(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, ContainerFlag,
    testing::Values(FlagRow{"active", &kaAnimationObject::setActive, &kaAnimationObject::isActive},
                    FlagRow{"repeating", &kaAnimationObject::setRepeating, &kaAnimationObject::isRepeating},
                    FlagRow{"motion_blur", &kaAnimationObject::setMotionBlur,
                            &kaAnimationObject::isMotionBlur}),
    [](const auto& row) { return std::string(row.param.name); });

/// The base rule switches what `_curves` lists, wherever it sits.
TEST_F(ContainerTime, ActivityAlsoReachesCurvesThatAreListedButNoLongerBelow) {
    kaAnimationCurve2D* elsewhere = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    track->setCurveIDs({elsewhere->getId()});
    track->setActive(false);
    EXPECT_FALSE(elsewhere->isActive());
    EXPECT_FALSE(track->isActive());
}

} // namespace
