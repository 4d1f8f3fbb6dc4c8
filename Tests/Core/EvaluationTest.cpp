#include "Builders.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <cmath>
#include <string>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Spots = std::vector<Spot>;
using Keys = std::vector<Key>;
using Entry = std::pair<float, std::pair<kaAnimationCurve2D*, float>>;
using CurveFrames = kaAnimationController::CurveFrames;

class Evaluation : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();

    /// A curve whose value is its frame.
    kaAnimationCurve2D* ramp(float begin, float end) {
        return makeCurve(Keys{
            {{begin, begin}, {begin, begin}, {begin + 0.5F * (end - begin), begin + 0.5F * (end - begin)}},
            {{end, end}, {begin + 0.5F * (end - begin), begin + 0.5F * (end - begin)}, {end, end}}});
    }
    kaAnimationField* fieldOf(const kaAnimationCurve2D* curve) {
        return manager->getField(curve->getField());
    }
    float valueOf(const kaAnimationCurve2D* curve) { return fieldOf(curve)->value; }
};

class Collecting : public Evaluation {
  protected:
    CurveFrames finished;
    CurveFrames running;
    CurveFrames upcoming;

    void collect(kaAnimationObject* object, float frame, bool motionBlurOnly = false) {
        finished.clear();
        running.clear();
        upcoming.clear();
        controller->collectCurvesWithFrame(object, frame, finished, running, upcoming, motionBlurOnly);
    }
    static std::vector<Entry> entries(const CurveFrames& frames) { return {frames.begin(), frames.end()}; }
};

TEST_F(Collecting, PutsACurveBeforeInAndAfterItsObjectsSpan) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationUnit* block = makeBlock({curve});
    collect(block, -1);
    EXPECT_THAT(entries(upcoming), ElementsAre(Entry{10.0F, {curve, -1.0F}}));
    EXPECT_THAT(running, IsEmpty());
    EXPECT_THAT(finished, IsEmpty());
    for (float frame : {0.0F, 5.0F, 10.0F}) {
        collect(block, frame);
        EXPECT_THAT(entries(running), ElementsAre(Entry{0.0F, {curve, frame}}));
    }
    collect(block, 10.5F);
    EXPECT_THAT(entries(finished), ElementsAre(Entry{0.0F, {curve, 10.5F}}));
    EXPECT_THAT(running, IsEmpty());
}

TEST_F(Collecting, FromACurveAloneAndFromNull) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    collect(curve, 3);
    EXPECT_THAT(entries(running), ElementsAre(Entry{0.0F, {curve, 3.0F}}));
    collect(nullptr, 3);
    EXPECT_THAT(running, IsEmpty());
}

TEST_F(Collecting, AddsToWhatIsThere) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    collect(curve, 3);
    controller->collectCurvesWithFrame(curve, 4, finished, running, upcoming, false);
    EXPECT_THAT(entries(running), ElementsAre(Entry{0.0F, {curve, 3.0F}}, Entry{0.0F, {curve, 4.0F}}));
}

TEST_F(Collecting, OfABlockGoesInAscendingIdOrder) {
    kaAnimationCurve2D* high = ramp(0, 10);
    kaAnimationCurve2D* low = ramp(0, 5);
    manager->setID(200, high);
    manager->setID(100, low);
    high->setCurveIDs({200});
    low->setCurveIDs({100});
    collect(makeBlock({high, low}), 7);
    EXPECT_THAT(entries(running), ElementsAre(Entry{0.0F, {low, 7.0F}}, Entry{0.0F, {high, 7.0F}}))
        << "the block's own span counts, not the curves'";
}

TEST_F(Collecting, OfATrackGoesByEachChildsSpan) {
    kaAnimationCurve2D* first = ramp(0, 10);
    kaAnimationCurve2D* second = ramp(20, 30);
    kaAnimationCurve2D* third = ramp(40, 50);
    kaAnimationStreak* track =
        makeTrack({makeBlock({first}), makeBlock({second}), makeSequence("s", 0, 99), third});
    collect(track, 25);
    EXPECT_THAT(entries(finished), ElementsAre(Entry{0.0F, {first, 25.0F}}));
    EXPECT_THAT(entries(running), ElementsAre(Entry{20.0F, {second, 25.0F}}));
    EXPECT_THAT(entries(upcoming), ElementsAre(Entry{50.0F, {third, 25.0F}}));
    collect(makeClip({track}), 25);
    EXPECT_EQ(finished.size() + running.size() + upcoming.size(), 3U);
}

TEST_F(Collecting, FoldsTheFrameOfARepeatingObject) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationUnit* block = makeBlock({curve});
    block->setRepeating(true);
    const struct {
        float frame;
        float folded;
    } rows[] = {{25, 5}, {3, 3}, {10, 0}, {-1, 9}, {-20, 0}, {0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.frame);
        collect(block, row.frame);
        const CurveFrames& bucket = row.frame < 0 ? upcoming : row.frame <= 10 ? running : finished;
        ASSERT_EQ(bucket.size(), 1U) << "the bucket goes by the frame as it is";
        EXPECT_FLOAT_EQ(bucket.begin()->second.second, row.folded);
    }
}

TEST_F(Collecting, FoldsIntoTheCustomRangeButSortsByTheSpan) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationUnit* block = makeBlock({curve});
    block->setRepeating(true);
    block->setCustomBegin(100);
    block->setCustomEnd(104);
    block->setUseCustomRange(true);
    collect(block, 5);
    EXPECT_THAT(entries(running), ElementsAre(Entry{0.0F, {curve, 101.0F}}));
    collect(block, 107);
    EXPECT_THAT(entries(finished), ElementsAre(Entry{0.0F, {curve, 103.0F}}));
}

TEST_F(Collecting, ARepeatingContainerDoesNotFoldItsChildrensFrame) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationStreak* track = makeTrack({makeBlock({curve})});
    track->setRepeating(true);
    track->getUnits()[0]->setRepeating(false);
    collect(track, 25);
    EXPECT_THAT(entries(finished), ElementsAre(Entry{0.0F, {curve, 25.0F}}));
}

TEST_F(Collecting, ForMotionBlurTakesFlaggedCurvesOfARunningObject) {
    kaAnimationCurve2D* blurred = ramp(0, 10);
    kaAnimationUnit* block = makeBlock({blurred, ramp(0, 10)});
    blurred->setMotionBlur(true);
    collect(block, 5, true);
    EXPECT_THAT(entries(running), ElementsAre(Entry{0.0F, {blurred, 5.0F}}));
    for (float frame : {-1.0F, 11.0F}) {
        collect(block, frame, true);
        EXPECT_THAT(running, IsEmpty());
        EXPECT_THAT(finished, IsEmpty());
        EXPECT_THAT(upcoming, IsEmpty());
    }
}

TEST_F(Collecting, SkipsChildrenAndCurvesThatTheRegistryDoesNotKnow) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationStreak* track = makeTrack({curve});
    track->setChildIDs({77, curve->getId()});
    collect(track, 5);
    EXPECT_EQ(running.size(), 1U);
    kaAnimationUnit* block = makeBlock({curve});
    block->setCurveIDs({77});
    collect(block, 5);
    EXPECT_THAT(running, IsEmpty());
}

class EvaluatingObjects : public Evaluation {};

TEST_F(EvaluatingObjects, StoresTheValueInTheField) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    EXPECT_FALSE(controller->evaluateObject(makeBlock({curve}), 4, false));
    EXPECT_FLOAT_EQ(valueOf(curve), 4.0F);
    EXPECT_TRUE(controller->evaluateObject(nullptr, 4, false));
}

TEST_F(EvaluatingObjects, HoldsTheFirstAndLastValueOutsideTheCurve) {
    kaAnimationCurve2D* curve = ramp(10, 20);
    kaAnimationUnit* block = makeBlock({curve});
    controller->evaluateObject(block, 3, false);
    EXPECT_FLOAT_EQ(valueOf(curve), 10.0F);
    EXPECT_TRUE(controller->evaluateObject(block, 33, false));
    EXPECT_FLOAT_EQ(valueOf(curve), 20.0F);
}

TEST_F(EvaluatingObjects, ARepeatingCurveIsNotClamped) {
    kaAnimationCurve2D* curve = makeCurve(Keys{stepKey(10, 1), stepKey(15, 2), stepKey(20, 3)});
    kaAnimationUnit* block = makeBlock({curve});
    curve->setRepeating(true);
    controller->evaluateObject(block, 3, false);
    EXPECT_EQ(valueOf(curve), 2.0F) << "sampled before its first key: the second key's value";
}

TEST_F(EvaluatingObjects, WritesIntoTheScene) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("node");
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationField* field = fieldOf(curve);
    field->nodeID = node.getFieldContainerId();
    field->fcID = node->getCore().getFieldContainerId();
    field->name = "translation";
    field->attribute = "translationY";
    field->valuePos = 1;
    controller->evaluateObject(curve, 4, false);
    const osg::Transform3DPtr core = osg::Transform3DPtr::dcast(node->getCore());
    EXPECT_FLOAT_EQ(core->getTranslation()[1], 4.0F);
    EXPECT_EQ(core->getTranslation()[0], 0.0F);
}

TEST_F(EvaluatingObjects, SkipsInactiveCurvesAndUnknownFields) {
    kaAnimationCurve2D* inactive = ramp(0, 10);
    kaAnimationCurve2D* unbound = ramp(0, 10);
    kaAnimationCurve2D* good = ramp(0, 10);
    kaAnimationUnit* block = makeBlock({inactive, unbound, good});
    inactive->setActive(false);
    kaAnimationField* field = fieldOf(unbound);
    unbound->setField(987654321);
    controller->evaluateObject(block, 4, false);
    EXPECT_EQ(valueOf(inactive), 0.0F);
    EXPECT_EQ(field->value, 0.0F);
    EXPECT_FLOAT_EQ(valueOf(good), 4.0F);
}

TEST_F(EvaluatingObjects, LeavesTheFieldWhereACurveHasNoValue) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{5, 7}});
    kaAnimationCurve2D* atOneFrame = makeCurve(Keys{stepKey(5, 7), stepKey(5, 8)});
    fieldOf(curve)->value = 42.0F;
    fieldOf(atOneFrame)->value = 43.0F;
    controller->evaluateObject(makeBlock({curve, atOneFrame}), 5, false);
    EXPECT_EQ(valueOf(curve), 42.0F);
    EXPECT_EQ(valueOf(atOneFrame), 43.0F);
}

TEST_F(EvaluatingObjects, OfTwoCurvesOnOneFieldTheFinishedOneWinsOverTheUpcoming) {
    kaAnimationCurve2D* first = ramp(0, 10);
    kaAnimationCurve2D* second = ramp(20, 30);
    second->setField(first->getField());
    for (bool firstListedFirst : {true, false}) {
        kaAnimationStreak* track = firstListedFirst ? makeTrack({first, second}) : makeTrack({second, first});
        controller->evaluateObject(track, 15, false);
        EXPECT_FLOAT_EQ(valueOf(first), 10.0F);
    }
}

TEST_F(EvaluatingObjects, ARunningCurveWinsOverAllOthers) {
    kaAnimationCurve2D* first = ramp(0, 10);
    kaAnimationCurve2D* second = ramp(12, 18);
    kaAnimationCurve2D* third = ramp(20, 30);
    second->setField(first->getField());
    third->setField(first->getField());
    controller->evaluateObject(makeTrack({first, second, third}), 15, false);
    EXPECT_FLOAT_EQ(valueOf(first), 15.0F);
}

TEST_F(EvaluatingObjects, OfFinishedOnesTheLatestBeginWinsAndOfUpcomingOnesTheEarliestEnd) {
    kaAnimationCurve2D* early = ramp(0, 15);
    kaAnimationCurve2D* late = ramp(5, 10);
    late->setField(early->getField());
    controller->evaluateObject(makeTrack({late, early}), 50, false);
    EXPECT_FLOAT_EQ(valueOf(early), 10.0F) << "the one that begins at 5, though it ends first";
    controller->evaluateObject(makeTrack({late, early}), -50, false);
    EXPECT_FLOAT_EQ(valueOf(early), 5.0F) << "the one that ends at 10";
}

TEST_F(EvaluatingObjects, OfRunningOnesTheLatestBeginWinsAndOfEqualsTheLaterListed) {
    kaAnimationCurve2D* a = makeCurve(Keys{stepKey(0, 1), stepKey(20, 0)});
    kaAnimationCurve2D* b = makeCurve(Keys{stepKey(5, 2), stepKey(20, 0)});
    kaAnimationCurve2D* c = makeCurve(Keys{stepKey(5, 3), stepKey(20, 0)});
    b->setField(a->getField());
    c->setField(a->getField());
    controller->evaluateObject(makeTrack({b, c, a}), 10, false);
    EXPECT_EQ(valueOf(a), 3.0F);
    controller->evaluateObject(makeTrack({c, b, a}), 10, false);
    EXPECT_EQ(valueOf(a), 2.0F);
}

TEST_F(EvaluatingObjects, ReportTheirEndInTheDirectionOfPlay) {
    kaAnimationUnit* block = makeBlock({ramp(0, 10)});
    const struct {
        float frame;
        bool forward;
        bool backward;
    } rows[] = {{-1, false, true}, {0, false, false}, {10, false, false}, {25, true, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.frame);
        block->setReversePlay(false);
        EXPECT_EQ(controller->evaluateObject(block, row.frame, false), row.forward);
        block->setReversePlay(true);
        EXPECT_EQ(controller->evaluateObject(block, row.frame, false), row.backward);
    }
}

TEST_F(EvaluatingObjects, ThatRepeatSampleTheFoldedFrameAndNeverEnd) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    kaAnimationUnit* block = makeBlock({curve});
    block->setRepeating(true);
    for (bool reverse : {false, true}) {
        block->setReversePlay(reverse);
        EXPECT_FALSE(controller->evaluateObject(block, 25, false));
        EXPECT_FLOAT_EQ(valueOf(curve), 5.0F);
        EXPECT_FALSE(controller->evaluateObject(block, -3, false));
        EXPECT_FLOAT_EQ(valueOf(curve), 7.0F);
    }
}

TEST_F(EvaluatingObjects, ReportTheEndOfTheCustomRange) {
    kaAnimationUnit* block = makeBlock({ramp(0, 10)});
    block->setCustomBegin(2);
    block->setCustomEnd(4);
    block->setUseCustomRange(true);
    EXPECT_FALSE(controller->evaluateObject(block, 4, false));
    EXPECT_TRUE(controller->evaluateObject(block, 5, false));
    block->setReversePlay(true);
    EXPECT_FALSE(controller->evaluateObject(block, 2, false));
    EXPECT_TRUE(controller->evaluateObject(block, 1, false));
}

TEST_F(EvaluatingObjects, RememberTheFrame) {
    kaAnimationUnit* block = makeBlock({ramp(0, 10)});
    controller->evaluateObject(block, 7.5F, false);
    EXPECT_EQ(block->getLastFrame(), 7.5F);
}

std::string fired;

class EvaluatingSequences : public Evaluation {
  protected:
    void SetUp() override {
        Evaluation::SetUp();
        fired.clear();
        kaAnimationController::setSeqCB([](std::string name) { fired += name + " "; });
    }
    static std::string taken() {
        std::string text;
        text.swap(fired);
        return text;
    }
};

TEST_F(EvaluatingSequences, FireWithinTheirSpanAndOnceWhenPassedArmed) {
    kaAnimationSequence* inside = makeSequence("inside", 0, 10);
    kaAnimationSequence* passed = makeSequence("passed", 0, 2);
    kaAnimationSequence* ahead = makeSequence("ahead", 6, 9);
    const std::vector<kaAnimationSequence*> all = {inside, nullptr, passed, ahead};
    controller->evaluateSequences(all, 5);
    EXPECT_EQ(taken(), "inside passed ");
    EXPECT_FALSE(inside->isArmed());
    EXPECT_FALSE(passed->isArmed());
    EXPECT_TRUE(ahead->isArmed());
    controller->evaluateSequences(all, 5);
    EXPECT_EQ(taken(), "inside ") << "armed or not while the frame is in its span";
    controller->evaluateSequences(all, 10);
    EXPECT_EQ(taken(), "inside ahead ");
    controller->evaluateSequences(all, 10.5F);
    EXPECT_EQ(taken(), "");
}

TEST_F(EvaluatingSequences, InactiveOnesDoNotFire) {
    kaAnimationSequence* sequence = makeSequence("s", 0, 10);
    sequence->setActive(false);
    controller->evaluateSequences({sequence}, 5);
    EXPECT_EQ(taken(), "");
    EXPECT_TRUE(sequence->isArmed());
}

TEST_F(EvaluatingSequences, DisarmWithoutCallbackToo) {
    kaAnimationController::setSeqCB(nullptr);
    kaAnimationSequence* sequence = makeSequence("s", 0, 10);
    controller->evaluateSequences({sequence}, 5);
    EXPECT_FALSE(sequence->isArmed());
}

TEST_F(EvaluatingSequences, SwitchTheSimulationOffMeanwhile) {
    kaAnimationController::setEnableSimCB([](bool enable) { fired += enable ? "on " : "off "; });
    kaAnimationController::setIsSimEnableCB([] { return true; });
    controller->evaluateSequences({makeSequence("s", 0, 10)}, 5);
    EXPECT_EQ(taken(), "off s on ");
    kaAnimationController::setIsSimEnableCB([] { return false; });
    controller->evaluateSequences({makeSequence("s", 0, 10)}, 5);
    EXPECT_EQ(taken(), "s ");
    kaAnimationController::setIsSimEnableCB(nullptr);
    controller->evaluateSequences({}, 5);
    EXPECT_EQ(taken(), "");
}

TEST_F(EvaluatingSequences, OfAnObjectOnlyWhenItsFrameChanged) {
    kaAnimationStreak* track = makeTrack({makeSequence("s", 0, 10)});
    controller->evaluateObject(track, 5, false);
    EXPECT_EQ(taken(), "s ");
    controller->evaluateObject(track, 5, false);
    EXPECT_EQ(taken(), "");
    controller->evaluateObject(track, 6, false);
    EXPECT_EQ(taken(), "s ");
    controller->evaluateObject(track, NAN, false);
    taken();
    controller->evaluateObject(track, NAN, false);
    EXPECT_EQ(taken(), "") << "no span contains it and nothing is armed";
    controller->evaluateObject(track, 6, false);
    EXPECT_EQ(taken(), "s ") << "a frame that is no number differs from every frame";
}

TEST_F(EvaluatingSequences, AtFrameZeroAFreshObjectHasNotMoved) {
    kaAnimationStreak* track = makeTrack({makeSequence("s", 0, 10)});
    controller->evaluateObject(track, 0, false);
    EXPECT_EQ(taken(), "");
}

class EvaluatingCurves : public Evaluation {};

TEST_F(EvaluatingCurves, ClampsTheFrameToTheirJointRange) {
    kaAnimationCurve2D* a = ramp(10, 20);
    kaAnimationCurve2D* b = ramp(15, 40);
    controller->evaluateCurves({a, b}, 99, false);
    EXPECT_FLOAT_EQ(valueOf(a), 20.0F);
    EXPECT_FLOAT_EQ(valueOf(b), 40.0F);
    controller->evaluateCurves({a, b}, -99, false);
    EXPECT_FLOAT_EQ(valueOf(a), 10.0F);
    EXPECT_FLOAT_EQ(valueOf(b), 15.0F);
    controller->evaluateCurves({a, b}, 17, false);
    EXPECT_FLOAT_EQ(valueOf(a), 17.0F);
    EXPECT_FLOAT_EQ(valueOf(b), 17.0F);
}

TEST_F(EvaluatingCurves, OrToAGivenRange) {
    kaAnimationCurve2D* curve = ramp(0, 100);
    controller->evaluateCurves({curve}, 30, 60, 10, false);
    EXPECT_FLOAT_EQ(valueOf(curve), 30.0F);
    controller->evaluateCurves({curve}, 30, 60, 99, false);
    EXPECT_FLOAT_EQ(valueOf(curve), 60.0F);
    controller->evaluateCurves({curve}, 70, 60, 99, false); // raised to 70 first, then lowered to 60
    EXPECT_FLOAT_EQ(valueOf(curve), 60.0F);
}

TEST_F(EvaluatingCurves, OfAnEmptyListOrInactiveCurvesWritesNothing) {
    kaAnimationCurve2D* curve = ramp(0, 10);
    curve->setActive(false);
    fieldOf(curve)->value = 42.0F;
    controller->evaluateCurves({}, 5, false);
    controller->evaluateCurves({curve}, 5, false);
    controller->evaluateCurves({curve}, 0, 10, 5, false);
    EXPECT_EQ(valueOf(curve), 42.0F);
}

TEST_F(EvaluatingCurves, ForMotionBlurTakesFlaggedCurvesOnly) {
    kaAnimationCurve2D* plain = ramp(0, 10);
    kaAnimationCurve2D* blurred = ramp(0, 10);
    blurred->setMotionBlur(true);
    controller->evaluateCurves({plain, blurred}, 5, true);
    EXPECT_EQ(valueOf(plain), 0.0F);
    EXPECT_FLOAT_EQ(valueOf(blurred), 5.0F);
}

TEST_F(EvaluatingCurves, OnOneFieldWriteUpcomingThenFinishedThenRunning) {
    kaAnimationCurve2D* finished = ramp(0, 10);
    kaAnimationCurve2D* running = ramp(12, 18);
    kaAnimationCurve2D* upcoming = ramp(20, 30);
    running->setField(finished->getField());
    upcoming->setField(finished->getField());
    controller->evaluateCurves({running, finished, upcoming}, 15, false);
    EXPECT_FLOAT_EQ(valueOf(finished), 15.0F);
    controller->evaluateCurves({finished, upcoming}, 15, false);
    EXPECT_FLOAT_EQ(valueOf(finished), 10.0F);
    controller->evaluateCurves({upcoming, ramp(0, 1)}, 15, false);
    EXPECT_FLOAT_EQ(valueOf(upcoming), 20.0F);
}

TEST_F(EvaluatingCurves, OfSeveralRunningOnesTheLatestEndWins) {
    kaAnimationCurve2D* a = makeCurve(Keys{stepKey(0, 1), stepKey(30, 0)});
    kaAnimationCurve2D* b = makeCurve(Keys{stepKey(5, 2), stepKey(20, 0)});
    b->setField(a->getField());
    controller->evaluateCurves({a, b}, 10, false);
    EXPECT_EQ(valueOf(a), 1.0F);
    controller->evaluateCurves({b, a}, 10, false);
    EXPECT_EQ(valueOf(a), 1.0F);
}

TEST_F(Evaluation, UpdatingFieldsCountsThem) {
    EXPECT_EQ(controller->updateAnimationFields({}), 0U);
    EXPECT_EQ(controller->updateAnimationFields({manager->createField(0), manager->createField(0)}), 2U);
}

} // namespace
