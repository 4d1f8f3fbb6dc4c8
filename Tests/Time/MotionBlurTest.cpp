#include "CapturedOutput.h"
#include "TimeFixture.h"

#include <OpenSG/OSGPerspectiveCamera2.h>
#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

osg::PerspectiveCamera2Ptr camera;
std::vector<int> navigated;

void giveCamera(osg::PerspectiveCamera2Ptr& active) {
    active = camera;
}

/// At frame 10, with 25 frames a second and a shutter of 1/50 s: sample 0.5 is a quarter frame later.
class MotionBlur : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        camera = osg::PerspectiveCamera2::create();
        osg::addRefCP(camera);
        camera->setShutterSpeed(50.0F);
        navigated.clear();
        Controller::setCameraCB(&giveCamera);
        Controller::setUpdateNavCB([](int argument) { navigated.push_back(argument); });
        blurred = rising();
        sharp = rising();
        blurred->setMotionBlur(true);
        block = makeBlock({blurred, sharp});
        controller->setObjectID(block->getId());
        controller->setCurrentFrame(10.0F, Controller::WidgetHost);
        controller->evaluate(10.0F, false);
    }

    void TearDown() override {
        osg::subRefCP(camera);
        camera = osg::NullFC;
        TimeFixture::TearDown();
    }

    /// Has the value of the frame, over [0, 100].
    static kaAnimationCurve2D* rising() {
        return makeCurve(std::vector<Spot>{{0.0F, 0.0F}, {100.0F, 100.0F}});
    }

    void expectValues(float ofBlurred, float ofSharp) {
        EXPECT_NEAR(valueOf(blurred), ofBlurred, 1e-3F);
        EXPECT_NEAR(valueOf(sharp), ofSharp, 1e-3F);
    }

    kaAnimationCurve2D* blurred = nullptr;
    kaAnimationCurve2D* sharp = nullptr;
    kaAnimationUnit* block = nullptr;
};

TEST_F(MotionBlur, MovesFlaggedCurvesToTheSamplesTimeAndBack) {
    controller->executeMotionBlur(0.5F);
    expectValues(10.25F, 10.0F);
    EXPECT_THAT(navigated, ElementsAre(0));
    controller->executeMotionBlur(-1.0F);
    expectValues(9.5F, 10.0F);
    controller->resetMotionBlur();
    expectValues(10.0F, 10.0F);
    EXPECT_EQ(Controller::getCurrentFrame(), 10.0F);
}

TEST_F(MotionBlur, ReachesAsFarAsTheShutterIsOpen) {
    camera->setShutterSpeed(25.0F);
    controller->executeMotionBlur(1.0F);
    expectValues(11.0F, 10.0F);
    Controller::setFps(50.0F);
    controller->executeMotionBlur(1.0F);
    expectValues(12.0F, 10.0F);
}

TEST_F(MotionBlur, OfOneObjectMovesItsCurvesAndTellsNoNavigation) {
    controller->setObjectID(0);
    controller->executeMotionBlur(0.5F, block);
    expectValues(10.25F, 10.0F);
    EXPECT_THAT(navigated, IsEmpty());
    controller->executeMotionBlur(0.5F, nullptr);
}

TEST_F(MotionBlur, OfAnObjectNoneOfWhoseFlaggedCurvesIsRunningMovesNothing) {
    controller->setCurrentFrame(100.0F, Controller::WidgetHost);
    controller->executeMotionBlur(0.5F, block);
    expectValues(10.0F, 10.0F);
    controller->setCurrentFrame(50.0F, Controller::WidgetHost);
    blurred->setActive(false);
    controller->executeMotionBlur(0.5F, block);
    expectValues(10.0F, 10.0F);
}

TEST_F(MotionBlur, OfTheActiveBlocksTakesThoseThatAreRunning) {
    kaAnimationCurve2D* early = makeCurve(std::vector<Spot>{{0.0F, 0.0F}, {5.0F, 5.0F}});
    early->setMotionBlur(true);
    makeBlock({early});
    kaAnimationUnit* inactive = makeBlock({rising()});
    inactive->setMotionBlur(true);
    inactive->kaAnimationObject::setActive(false);
    curveOf(inactive)->setActive(true);
    controller->executeMotionBlurOnActiveUnits(0.5F);
    expectValues(10.25F, 10.0F);
    EXPECT_EQ(valueOf(early), 0.0F);
    EXPECT_EQ(valueOf(curveOf(inactive)), 0.0F);
    EXPECT_THAT(navigated, IsEmpty());
}

TEST_F(MotionBlur, OfTheActiveBlocksWithoutAnyDoesNothing) {
    manager->destroyUnit(block);
    controller->executeMotionBlurOnActiveUnits(0.5F);
    EXPECT_THAT(navigated, IsEmpty());
}

struct NoCameraRow {
    const char* name;
    bool callback; ///< that gives no camera
};

class NoCamera : public MotionBlur, public testing::WithParamInterface<NoCameraRow> {};

TEST_P(NoCamera, SaysSoAndMovesNothing) {
    const osg::PerspectiveCamera2Ptr kept = camera;
    camera = osg::NullFC;
    Controller::setCameraCB(GetParam().callback ? &giveCamera : nullptr);
    const std::string line = "ERROR: kaAnimationController::executeMotionBlur: Can't get active camera!\n";
    const auto said = [](const std::function<void()>& operation) {
        const CapturedOutput output;
        operation();
        return output.text();
    };
    EXPECT_EQ(said([&] { controller->executeMotionBlur(0.5F); }), line);
    EXPECT_EQ(said([&] { controller->executeMotionBlur(0.5F, block); }), line);
    EXPECT_EQ(said([&] { controller->executeMotionBlur(0.5F, nullptr); }), "");
    EXPECT_EQ(said([&] { controller->executeMotionBlurOnActiveUnits(0.5F); }),
              "ERROR: kaAnimationController::executeMotionBlurOnActiveUnits: Can't get active camera!\n");
    expectValues(10.0F, 10.0F);
    EXPECT_THAT(navigated, IsEmpty());
    camera = kept;
}

INSTANTIATE_TEST_SUITE_P(Causes, NoCamera,
                         testing::Values(NoCameraRow{"no_callback", false}, NoCameraRow{"null_camera", true}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
