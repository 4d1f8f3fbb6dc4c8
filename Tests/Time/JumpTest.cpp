#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

std::vector<std::pair<std::string, float>> told;

/// Jumps of the global timeline, and the editors that are told the frame.
class Jump : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        told.clear();
        Controller::setCurrentFrameClipMakerCB([](float frame) { told.emplace_back("clip maker", frame); });
        Controller::setCurrentFrameTimeLineCB([](float frame) { told.emplace_back("time line", frame); });
        Controller::setCurrentFrameCurveEditorCB(
            [](float frame) { told.emplace_back("curve editor", frame); });
    }

    static void expectAllTold(float frame) {
        EXPECT_THAT(told, ElementsAre(Pair("time line", frame), Pair("curve editor", frame),
                                      Pair("clip maker", frame)));
    }
};

TEST_F(Jump, ToAnObjectsBeginStopsPlaybackAndTellsTheEditorsInOrder) {
    kaAnimationSequence* sequence = makeSequence("door", 5.0F, 8.0F);
    kaAnimationUnit* block = makeBlock(10.0F, 20.0F);
    kaAnimationStreak* track = makeTrack({block, sequence});
    controller->playGlobal(block->getId(), false, false, 0.0F, 100.0F, 0.0F);
    controller->gotoGlobalBegin(track);
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_THAT(Controller::getCurves(), ElementsAre(curveOf(block)));
    EXPECT_THAT(Controller::getSeqs(), ElementsAre(sequence));
    EXPECT_EQ(track->getLastFrame(), 5.0F);
    EXPECT_THAT(fired, ElementsAre("door"));
    expectAllTold(5.0F);
    EXPECT_THAT(sent, IsEmpty());
}

TEST_F(Jump, ToAnObjectsEndEvaluatesItThere) {
    kaAnimationUnit* block = makeBlock(10.0F, 20.0F);
    block->setCustomEnd(15.0F);
    block->setUseCustomRange(true);
    controller->gotoGlobalEnd(block);
    EXPECT_EQ(block->getLastFrame(), 20.0F) << "whatever the custom range";
    EXPECT_EQ(valueOf(curveOf(block)), 1.0F);
    expectAllTold(20.0F);
}

TEST_F(Jump, WithoutAnObjectOnlyStopsPlayback) {
    kaAnimationUnit* block = makeBlock(10.0F, 20.0F);
    controller->gotoGlobalEnd(block);
    told.clear();
    controller->playGlobal(block->getId(), false, false, 0.0F, 100.0F, 0.0F);
    controller->gotoGlobalBegin(static_cast<Object*>(nullptr));
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_THAT(Controller::getCurves(), ElementsAre(curveOf(block))) << "those of the jump before";
    controller->playGlobal(block->getId(), false, false, 0.0F, 100.0F, 0.0F);
    controller->gotoGlobalEnd(std::vector<kaAnimationCurve2D*>{});
    EXPECT_FALSE(Controller::isPlaying());
    EXPECT_THAT(told, IsEmpty());
}

struct CurveJumpRow {
    const char* name;
    Span first;
    Span second;
    float begin;
    float end;
};

class CurveJump : public Jump, public testing::WithParamInterface<CurveJumpRow> {};

TEST_P(CurveJump, GoesNoLaterThanFrameZeroForTheBeginAndNoEarlierForTheEnd) {
    const auto curve = [](const Span& span) {
        return makeCurve(std::vector<Spot>{{span.first, 3.0F}, {span.second, 3.0F}});
    };
    kaAnimationCurve2D* first = curve(GetParam().first);
    kaAnimationCurve2D* second = curve(GetParam().second);
    controller->gotoGlobalBegin({first, nullptr, second});
    expectAllTold(GetParam().begin);
    EXPECT_THAT(Controller::getCurves(), ElementsAre(first, nullptr, second));
    EXPECT_NEAR(valueOf(first), 3.0F, 1e-5F) << "evaluated";
    told.clear();
    controller->gotoGlobalEnd({nullptr, first, second});
    expectAllTold(GetParam().end);
}

INSTANTIATE_TEST_SUITE_P(
    Spans, CurveJump,
    testing::Values(CurveJumpRow{"after_zero", {10.0F, 20.0F}, {15.0F, 30.0F}, 0.0F, 30.0F},
                    CurveJumpRow{"before_zero", {-30.0F, -20.0F}, {-15.0F, -10.0F}, -30.0F, 0.0F},
                    CurveJumpRow{"around_zero", {-5.0F, 5.0F}, {-2.0F, 8.0F}, -5.0F, 8.0F}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Jump, OfCurvesForgetsTheSequencesOfTheJumpBefore) {
    kaAnimationUnit* block = makeBlock(10.0F, 20.0F);
    kaAnimationStreak* track = makeTrack({block, makeSequence("door", 5.0F, 8.0F)});
    controller->gotoGlobalBegin(track);
    controller->gotoGlobalBegin(std::vector<kaAnimationCurve2D*>{curveOf(block)});
    EXPECT_THAT(Controller::getSeqs(), IsEmpty());
}

TEST_F(Jump, MayBeGivenTheCurvesOfTheLastJump) {
    kaAnimationUnit* block = makeBlock(10.0F, 20.0F);
    controller->gotoGlobalBegin(block);
    controller->gotoGlobalEnd(Controller::getCurves());
    EXPECT_THAT(Controller::getCurves(), ElementsAre(curveOf(block)));
    EXPECT_EQ(valueOf(curveOf(block)), 1.0F);
}

TEST_F(Jump, TellsOnlyTheEditorsThatListen) {
    Controller::setCurrentFrameTimeLineCB(nullptr);
    Controller::setCurrentFrameClipMakerCB(nullptr);
    controller->gotoGlobalBegin(makeBlock(10.0F, 20.0F));
    EXPECT_THAT(told, ElementsAre(Pair("curve editor", 10.0F)));
}

TEST_F(Jump, SettingTheFrameTellsAllListenersAndEvaluatesNothing) {
    kaAnimationUnit* block = makeBlock(10.0F, 20.0F);
    controller->setObjectID(block->getId());
    controller->setCurrentFrame(15.0F, Controller::WidgetTimeLine);
    EXPECT_EQ(Controller::getCurrentFrame(), 15.0F);
    EXPECT_THAT(values<float>("currentFrameChanged", "frame"), ElementsAre(15.0F));
    EXPECT_THAT(values<Controller::AnimationWidget>("currentFrameChanged", "sender"),
                ElementsAre(Controller::WidgetTimeLine));
    EXPECT_EQ(block->getLastFrame(), 0.0F);
    EXPECT_THAT(told, IsEmpty());
}

} // namespace
