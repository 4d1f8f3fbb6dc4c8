#include "RegistryFixture.h"
#include "Rig.h"

#include <functional>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationUnit.h>
#include <ostream>

namespace {

using namespace binding_test;

constexpr float Held = 5.0F;
using Numbers = std::vector<float>;

/// A block with one curve that is held at 5 behind its end and drives the second number of a rig.
struct HeldField {
    HeldField() {
        curve->setPoints({manager->createPoint2D(0.0F, 1.0F, 0), manager->createPoint2D(10.0F, Held, 0)});
        block->addObject(curve);
    }

    void evaluate() { kaAnimationController::the()->evaluateObject(block, ++frame, false); }

    RigPtr rig = Rig::create();
    RigPtr other = Rig::create();
    Kept kept{rig};
    Kept keptOther{other};
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationField* field = makeField(rig, "tintColor", 1);
    kaAnimationCurve2D* curve = manager->createCurve2D(field, "Curve", 0, false);
    kaAnimationUnit* block = manager->createUnit(0ULL);
    float frame = 20.0F;
};

/// What changes behind the back of an evaluation, and which number it stores at the next frame.
struct Change {
    const char* name;
    std::function<void(HeldField&)> apply;
    std::function<float(HeldField&)> stored; ///< null: none
};

std::ostream& operator<<(std::ostream& out, const Change& change) {
    return out << change.name;
}

class HeldFieldAfter : public ka_test::RegistryFixture, public testing::WithParamInterface<Change> {};

TEST_P(HeldFieldAfter, IsStoredWhereTheSceneDiffers) {
    HeldField held;
    for (int i = 0; i < 3; ++i)
        held.evaluate();
    ASSERT_EQ(held.rig->tintColor.getValue()[1], Held);
    GetParam().apply(held);
    Recorder recorder;
    held.evaluate();
    EXPECT_EQ(recorder.take().size(), GetParam().stored ? 1U : 0U);
    if (GetParam().stored) {
        EXPECT_EQ(GetParam().stored(held), Held);
    }
    EXPECT_EQ(held.field->value, Held);
    held.evaluate();
    EXPECT_TRUE(recorder.take().empty()) << "the scene holds the value now";
}

float tintOf(const RigPtr& rig, unsigned int component) {
    return rig->tintColor.getValue()[component];
}

const Change Changes[] = {
    {"Nothing", [](HeldField&) {}, nullptr},
    {"TheSceneNumber", [](HeldField& held) { held.rig->tintColor.getValue()[1] = 7.0F; },
     [](HeldField& held) { return tintOf(held.rig, 1); }},
    {"AnotherSceneNumber", [](HeldField& held) { held.rig->tintColor.getValue()[2] = 7.0F; }, nullptr},
    {"TheRecordsValue", [](HeldField& held) { held.field->value = 7.0F; }, nullptr},
    {"ThePosition", [](HeldField& held) { held.field->valuePos = 3; },
     [](HeldField& held) { return tintOf(held.rig, 3); }},
    {"APositionBeyondTheEnd", [](HeldField& held) { held.field->valuePos = 4; }, nullptr},
    {"TheFirstLetterOfTheName", [](HeldField& held) { held.field->name[0] = 'T'; }, nullptr},
    {"TheLastLetterOfTheName", [](HeldField& held) { held.field->name.back() = 'R'; }, nullptr},
    {"TheName", [](HeldField& held) { held.field->name = "vec4f"; },
     [](HeldField& held) { return held.rig->vec4f.getValue()[1]; }},
    {"TheContainer", [](HeldField& held) { held.field->fcID = held.other.getFieldContainerId(); },
     [](HeldField& held) { return tintOf(held.other, 1); }},
    {"TheContainerIsGone", [](HeldField& held) { held.kept.release(); }, nullptr},
};

INSTANTIATE_TEST_SUITE_P(Binding, HeldFieldAfter, testing::ValuesIn(Changes),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
