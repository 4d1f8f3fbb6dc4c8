#include "TimeFixture.h"

#include <OpenSG/OSGPerspectiveCamera2.h>

using namespace ka_test;

namespace {

osg::PerspectiveCamera2Ptr camera;

/// The sample is taken at frame 10.25; a field that nobody writes keeps `Untouched`.
constexpr float Sample = 10.25F;
constexpr float Untouched = -7.0F;

struct SpanRow {
    const char* name;
    Span span;
    float value; ///< what the curve's field holds then
};

/// Values go evenly from 1 at the begin to 2 at the end.
const SpanRow rows[] = {
    {"BeginsAtTheSample", {Sample, 20.0F}, 1.0F},      {"EndsAtTheSample", {0.0F, Sample}, 2.0F},
    {"HoldsTheSample", {8.25F, 12.25F}, 1.5F},         {"BeginsAfterTheSample", {10.5F, 20.0F}, Untouched},
    {"EndsBeforeTheSample", {0.0F, 10.0F}, Untouched},
};

class MotionBlurSpan : public TimeFixture, public testing::WithParamInterface<SpanRow> {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        camera = osg::PerspectiveCamera2::create();
        osg::addRefCP(camera);
        camera->setShutterSpeed(50.0F);
        Controller::setCameraCB([](osg::PerspectiveCamera2Ptr& active) { active = camera; });
        controller->setCurrentFrame(10.0F, Controller::WidgetHost);
    }

    void TearDown() override {
        osg::subRefCP(camera);
        camera = osg::NullFC;
        TimeFixture::TearDown();
    }

    kaAnimationCurve2D* makeBlurred(const Span& span) {
        kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{span.first, 1.0F}, {span.second, 2.0F}});
        curve->setMotionBlur(true);
        manager->getField(curve->getField())->value = Untouched;
        return curve;
    }
};

TEST_P(MotionBlurSpan, DecidesWhichCurvesOfAnObjectMove) {
    kaAnimationCurve2D* curve = makeBlurred(GetParam().span);
    kaAnimationUnit* block = makeBlock({curve, makeBlurred({0.0F, 100.0F})});
    controller->executeMotionBlur(0.5F, block);
    EXPECT_NEAR(valueOf(curve), GetParam().value, 1e-3F);
}

TEST_P(MotionBlurSpan, DecidesWhichCurvesOfTheActiveBlocksMove) {
    kaAnimationCurve2D* curve = makeBlurred(GetParam().span);
    makeBlock({curve, makeBlurred({0.0F, 100.0F})});
    controller->executeMotionBlurOnActiveUnits(0.5F);
    EXPECT_NEAR(valueOf(curve), GetParam().value, 1e-3F);
}

/// The block's own span as the host has stored it; its curve holds the sample.
TEST_P(MotionBlurSpan, DecidesWhichActiveBlocksMove) {
    kaAnimationCurve2D* curve = makeBlurred({8.25F, 12.25F});
    kaAnimationUnit* block = makeBlock({curve});
    block->setBegin(GetParam().span.first);
    block->setEnd(GetParam().span.second);
    controller->executeMotionBlurOnActiveUnits(0.5F);
    EXPECT_NEAR(valueOf(curve), GetParam().value == Untouched ? Untouched : 1.5F, 1e-3F);
}

INSTANTIATE_TEST_SUITE_P(Rows, MotionBlurSpan, testing::ValuesIn(rows),
                         [](const auto& row) { return row.param.name; });

using MotionBlurOfOneObject = MotionBlurSpan;

TEST_F(MotionBlurOfOneObject, HoldsTheSampleWithinTheObjectsSpan) {
    kaAnimationCurve2D* curve = makeBlurred({8.25F, 12.25F});
    kaAnimationUnit* block = makeBlock({curve});
    block->setBegin(11.25F);
    controller->executeMotionBlur(0.5F, block);
    EXPECT_NEAR(valueOf(curve), 1.75F, 1e-3F) << "as at 11.25";
}

} // namespace
