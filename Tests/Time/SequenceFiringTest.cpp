#include "TimeFixture.h"

#include <gmock/gmock.h>
#include <limits>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What the simulation was told and which sequence fired in between.
std::vector<std::string> steps;
bool simulating = false;

void enableSimulation(bool enable) {
    simulating = enable;
    steps.emplace_back(enable ? "on" : "off");
}

bool isSimulating() {
    return simulating;
}

class SequenceFiring : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        steps.clear();
        simulating = true;
        sequence = makeSequence("door", 10.0F, 20.0F);
    }

    kaAnimationSequence* sequence = nullptr;
};

struct FireRow {
    const char* name;
    float frame;
    bool armed;
    bool fires;
};

class SequenceFiringAt : public SequenceFiring, public testing::WithParamInterface<FireRow> {};

TEST_P(SequenceFiringAt, GoesBySpanAndArming) {
    const FireRow& row = GetParam();
    sequence->setArmed(row.armed);
    controller->evaluateSequences({sequence}, row.frame);
    EXPECT_EQ(fired.size(), row.fires ? 1U : 0U);
    EXPECT_EQ(sequence->isArmed(), row.armed && !row.fires);
}

INSTANTIATE_TEST_SUITE_P(Frames, SequenceFiringAt,
                         testing::Values(FireRow{"armed_before_the_begin", 9.5F, true, false},
                                         FireRow{"armed_at_the_begin", 10.0F, true, true},
                                         FireRow{"armed_past_the_end", 50.0F, true, true},
                                         FireRow{"unarmed_before", 9.5F, false, false},
                                         FireRow{"unarmed_at_the_begin", 10.0F, false, true},
                                         FireRow{"unarmed_inside", 15.0F, false, true},
                                         FireRow{"unarmed_at_the_end", 20.0F, false, true},
                                         FireRow{"unarmed_past_the_end", 20.5F, false, false},
                                         FireRow{"at_no_number", std::numeric_limits<float>::quiet_NaN(),
                                                 true, false}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SequenceFiring, PassesOverNullsAndInactiveSequences) {
    kaAnimationSequence* inactive = makeSequence("window", 0.0F, 100.0F);
    inactive->setActive(false);
    controller->evaluateSequences({nullptr, inactive, sequence}, 15.0F);
    EXPECT_THAT(fired, ElementsAre("door"));
    EXPECT_TRUE(inactive->isArmed());
}

TEST_F(SequenceFiring, ClearsTheArmingEvenWithoutAHostToTell) {
    Controller::setSeqCB(nullptr);
    controller->evaluateSequences({sequence}, 15.0F);
    EXPECT_FALSE(sequence->isArmed());
    controller->initSequences({nullptr, sequence});
    EXPECT_TRUE(sequence->isArmed());
}

TEST_F(SequenceFiring, SwitchesARunningSimulationOffMeanwhile) {
    Controller::setIsSimEnableCB(&isSimulating);
    Controller::setEnableSimCB(&enableSimulation);
    Controller::setSeqCB([](std::string name) { steps.push_back(std::move(name)); });
    controller->evaluateSequences({sequence}, 15.0F);
    EXPECT_THAT(steps, ElementsAre("off", "door", "on"));
    steps.clear();
    controller->evaluateSequences({sequence}, 0.0F);
    EXPECT_THAT(steps, ElementsAre("off", "on")) << "whether one fires or not";
}

TEST_F(SequenceFiring, LeavesAStoppedSimulationStopped) {
    simulating = false;
    Controller::setIsSimEnableCB(&isSimulating);
    Controller::setEnableSimCB(&enableSimulation);
    controller->evaluateSequences({sequence}, 15.0F);
    EXPECT_THAT(steps, IsEmpty());
}

TEST_F(SequenceFiring, AsksAndSwitchesOnlyWhatTheHostRegistered) {
    Controller::setEnableSimCB(&enableSimulation);
    controller->evaluateSequences({sequence}, 15.0F);
    EXPECT_THAT(steps, IsEmpty()) << "nobody says that it runs";
    Controller::setIsSimEnableCB(&isSimulating);
    Controller::setEnableSimCB(nullptr);
    controller->evaluateSequences({sequence}, 16.0F);
    EXPECT_TRUE(simulating);
    EXPECT_EQ(fired.size(), 2U);
}

TEST_F(SequenceFiring, HappensOncePerEvaluatedFrameThatIsNew) {
    kaAnimationStreak* track = makeTrack({sequence});
    controller->evaluateObject(track, 15.0F, false);
    controller->evaluateObject(track, 15.0F, false);
    EXPECT_EQ(fired.size(), 1U);
    controller->evaluateObject(track, 16.0F, false);
    EXPECT_EQ(fired.size(), 2U);
}

} // namespace
