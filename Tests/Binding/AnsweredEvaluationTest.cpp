#include "RegistryFixture.h"
#include "Rig.h"

#include <functional>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationUnit.h>
#include <ostream>
#include <vector>

namespace {

using namespace binding_test;

constexpr float Sampled = 6.0F; ///< what the second curve gives at the frame of the test
constexpr float Before = 5.0F;  ///< and at the frame before
constexpr float Manual = 77.0F;

/// A block with two straight curves; the first drives a number of one rig, the second the second number of
/// another. It has played up to frame 5.
struct TwoFields {
    TwoFields() {
        for (kaAnimationCurve2D* curve : {first, second}) {
            curve->setPoints(
                {manager->createPoint2D(0.0F, 0.0F, 0), manager->createPoint2D(10.0F, 10.0F, 0)});
            block->addObject(curve);
        }
        watch() = Watch();
        for (float frame : {3.0F, 4.0F, Before})
            evaluate(frame);
    }
    ~TwoFields() { watch() = Watch(); }

    void evaluate(float frame) { kaAnimationController::the()->evaluateObject(block, frame, false); }

    float stored(unsigned int component) const { return rig->vec3f.getValue()[component]; }

    RigPtr firstRig = Rig::create();
    RigPtr rig = Rig::create();
    RigPtr other = Rig::create();
    Kept keptFirst{firstRig};
    Kept kept{rig};
    Kept keptOther{other};
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationField* firstField = makeField(firstRig, "real32");
    kaAnimationField* field = makeField(rig, "vec3f", 1);
    kaAnimationCurve2D* first = manager->createCurve2D(firstField, "First", 0, false);
    kaAnimationCurve2D* second = manager->createCurve2D(field, "Second", 0, false);
    kaAnimationUnit* block = manager->createUnit(0ULL);
    std::vector<kaAnimationUnit*> blocks;
};

void prepareManyOthers(TwoFields& two) {
    for (int i = 0; i < 100; ++i)
        two.blocks.push_back(two.manager->createUnit(0ULL));
}

/// What the host does when it is told of the first store, and what the scene holds at the end.
struct Answer {
    const char* name;
    std::function<void(TwoFields&)> prepare;
    std::function<void(TwoFields&)> apply;
    std::function<float(TwoFields&)> number;
    float expected;
};

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
    return out << answer.name;
}

class EvaluationAnswered : public ka_test::RegistryFixture, public testing::WithParamInterface<Answer> {};

TEST_P(EvaluationAnswered, WritesTheSecondFieldAsItIsThen) {
    TwoFields two;
    ASSERT_EQ(two.stored(1), Before);
    if (GetParam().prepare)
        GetParam().prepare(two);
    watch().answer = [&two] { GetParam().apply(two); };
    two.evaluate(Sampled);
    EXPECT_EQ(two.firstRig->real32.getValue(), two.firstField->value);
    EXPECT_EQ(GetParam().number(two), GetParam().expected);
}

std::function<float(TwoFields&)> component(unsigned int index) {
    return [index](TwoFields& two) { return two.stored(index); };
}

const Answer Answers[] = {
    {"Nothing", nullptr, [](TwoFields&) {}, component(1), Sampled},
    {"Position", nullptr, [](TwoFields& two) { two.field->valuePos = 2; }, component(2), Sampled},
    {"OldPosition", nullptr, [](TwoFields& two) { two.field->valuePos = 2; }, component(1), Before},
    {"Name", nullptr, [](TwoFields& two) { two.field->name = "pnt3f"; },
     [](TwoFields& two) { return two.rig->pnt3f.getValue()[1]; }, Sampled},
    {"OldName", nullptr, [](TwoFields& two) { two.field->name = "pnt3f"; }, component(1), Before},
    {"Value", nullptr, [](TwoFields& two) { two.field->value = Manual; }, component(1), Manual},
    {"SceneNumber", nullptr, [](TwoFields& two) { two.rig->vec3f.getValue()[1] = Manual; }, component(1),
     Sampled},
    {"OtherContainer", nullptr, [](TwoFields& two) { two.field->fcID = two.other.getFieldContainerId(); },
     [](TwoFields& two) { return two.other->vec3f.getValue()[1]; }, Sampled},
    {"ContainerGone", nullptr, [](TwoFields& two) { two.kept.release(); },
     [](TwoFields& two) { return two.field->value; }, Sampled},
    {"FieldGone", nullptr, [](TwoFields& two) { two.manager->destroyField(two.field); }, component(1),
     Before},
    {"CurveGone", nullptr, [](TwoFields& two) { two.manager->destroyObject(two.second); }, component(1),
     Sampled},
    {"BlockGone", nullptr, [](TwoFields& two) { two.manager->destroyObject(two.block); }, component(1),
     Sampled},
    {"CurveEdited", nullptr,
     [](TwoFields& two) { two.second->addObject(two.manager->createPoint2D(20.0F, 40.0F, 0)); }, component(1),
     Sampled},
    {"EvaluatedAtAnotherFrame", nullptr, [](TwoFields& two) { two.evaluate(8.0F); }, component(1), 8.0F},
    {"OthersEvaluated", prepareManyOthers,
     [](TwoFields& two) {
         for (kaAnimationUnit* unit : two.blocks)
             kaAnimationController::the()->evaluateObject(unit, 1.0F, false);
     },
     component(1), Sampled},
};

INSTANTIATE_TEST_SUITE_P(Binding, EvaluationAnswered, testing::ValuesIn(Answers),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
