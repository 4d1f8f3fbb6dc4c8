#include "Builders.h"
#include "CapturedOutput.h"
#include "FailingAllocation.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationController.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"

#include <functional>
#include <memory>
#include <new>

namespace {

using namespace ka_test;

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

kaAnimationController& controller() {
    return *kaAnimationController::the();
}

/// What the operations work on: a clip with two blocks on one track, one of them listed on a scene node.
struct Stage {
    TestScene scene;
    osg::NodePtr node;
    osg::NodePtr other;
    kaAnimationCurve2D* curve = nullptr;
    kaAnimationUnit* block = nullptr;
    kaAnimationUnit* second = nullptr;
    kaAnimationStreak* track = nullptr;
    kaAnimationStrip* clip = nullptr;

    Stage() {
        manager().addAnimationAttributes("translation,scale");
        kaAnimationManager::setSceneRootNode(scene.root());
        node = scene.addTransform("node");
        other = scene.addTransform("other");
        manager().createAnimationFields(node);
        curve = manager().createCurve2D(node, "rotationX");
        for (int i = 0; i < 5; ++i)
            manager().createCurvePoint(curve, static_cast<float>(i) * 10.0F, static_cast<float>(i % 2), false,
                                       false, false);
        block = makeBlock(std::vector<kaAnimationCurve2D*>{curve});
        list(block);
        second = makeBlock(100.0F, 120.0F);
        track = makeTrack({block, second});
        clip = makeClip({track});
    }

    void list(kaAnimationUnit* unit) {
        unit->setNodeID(node.getFieldContainerId());
        kaAnimationUtils::addAnimationObject(node, unit);
    }
};

struct Operation {
    const char* name;
    std::function<void(Stage&)> run;
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

/// Every entry stands under its object's id, and what a container lists and names it as parent is found
/// there.
void expectSound() {
    for (const auto& entry : manager().getObjects()) {
        ASSERT_EQ(entry.first, entry.second->getId());
        for (const kaAnimationObject* child : entry.second->getObjects())
            ASSERT_EQ(manager().getObject(child->getId()), child);
    }
}

class AllocationFailure : public RegistryFixture, public testing::WithParamInterface<Operation> {};

/// Wherever the memory runs out, the operation throws, nothing is freed twice or lost, and what is there is
/// sound and can be used and destroyed.
TEST_P(AllocationFailure, LeavesTheModuleSound) {
    constexpr std::size_t Points = 500;
    bool failed = true;
    for (std::size_t point = 0; point < Points && failed; ++point) {
        auto stage = std::make_unique<Stage>();
        {
            const CapturedOutput quiet;
            const FailingAllocation failure(point);
            try {
                GetParam().run(*stage);
            } catch (const std::bad_alloc&) {
            }
            FailingAllocation::disarm();
        }
        failed = FailingAllocation::hasFailed();
        expectSound();
        controller().evaluate(12.0F, true, true, true, false);
        stage.reset();
        emptyModule();
    }
}

/// Loading is not among them: the XML reader underneath does not survive a failed allocation itself.
using Freeing = RegistryFixture;

/// Lists keep the room they once had, so there are more here than anywhere else in this program.
TEST_F(Freeing, ObjectsThatWaitAsksForNoMemory) {
    std::vector<kaAnimationSequence*> waiting;
    for (int i = 0; i < 500; ++i) {
        waiting.push_back(manager().createSequence("waits", 0));
        controller().addWaitingObject(waiting.back());
    }
    for (kaAnimationSequence* sequence : waiting) {
        const FailingAllocation failure(0);
        manager().destroySequence(sequence);
        FailingAllocation::disarm();
        ASSERT_FALSE(FailingAllocation::hasFailed());
    }
    EXPECT_TRUE(controller().getWaitingObjects().empty());
}

std::vector<Operation> operations() {
    return {
        {"create_a_key", [](Stage&) { manager().createPoint2D(1.0F, 2.0F, 0); }},
        {"create_a_curve", [](Stage&) { manager().createCurve2D(0ULL); }},
        {"add_a_key", [](Stage& s) { manager().createCurvePoint(s.curve, 5.0F, 1.0F, false, false, false); }},
        {"replace_the_keys",
         [](Stage& s) {
             s.curve->setPoints(
                 {manager().createPoint2D(1.0F, 1.0F, 0), manager().createPoint2D(2.0F, 1.0F, 0)});
         }},
        {"drag_keys",
         [](Stage& s) {
             s.curve->setSelected(true);
             s.curve->moveSelectedPoints(osg::Vec2f(1.0F, 1.0F), true, false, true, false);
         }},
        {"delete_keys",
         [](Stage& s) {
             s.curve->setSelected(true);
             s.curve->deleteSelectedPoints(true, true);
         }},
        {"flip_the_clip", [](Stage& s) { s.clip->flip(); }},
        {"duplicate_a_block", [](Stage& s) { manager().duplicateUnit(s.block, true); }},
        {"duplicate_a_clip", [](Stage& s) { manager().duplicateStrip(s.clip); }},
        {"insert_into_the_clip", [](Stage& s) { s.clip->insertObject(makeBlock(0.0F, 500.0F)); }},
        {"discover_fields", [](Stage& s) { manager().createAnimationFields(s.other); }},
        {"attach_a_curve", [](Stage& s) { manager().createCurve2D(s.other, "rotationZ"); }},
        {"change_an_id", [](Stage& s) { manager().setID(4242, s.block); }},
        {"connect",
         [](Stage& s) {
             manager().createConnection(s.block, kaAnimationManager::TriggerEnd, s.second,
                                        kaAnimationManager::ActionPlay);
         }},
        {"evaluate", [](Stage& s) { controller().evaluateObject(s.clip, 12.0F, false); }},
        {"sample_a_curve_between_edits",
         [](Stage& s) {
             float value = 0.0F;
             kaControlPoint2D* key = s.curve->findPoint(10.0F);
             for (const float x : {12.0F, 35.0F, 14.0F}) { // between its neighbours, over them, and back
                 key->setPosition(x, 1.0F);
                 controller().computeCurveValue(s.curve, 5.0F, value);
             }
             manager().createCurvePoint(s.curve, 5.0F, 1.0F, false, false, false);
             controller().computeCurveValue(s.curve, 5.0F, value);
         }},
        {"play_an_object",
         [](Stage& s) {
             controller().addWaitingObject(s.clip);
             controller().loop();
             controller().loop();
         }},
        {"destroy_what_waits_and_was_jumped_to",
         [](Stage& s) {
             controller().addWaitingObject(s.clip);
             controller().gotoGlobalEnd(s.clip);
             manager().destroyStrip(s.clip);
         }},
        {"play_globally",
         [](Stage& s) {
             controller().playGlobal(s.clip->getId(), false, true, 0.0F, 50.0F, 0.0F);
             controller().playLoop();
         }},
        {"copy_and_paste",
         [](Stage& s) {
             manager().copy(s.node);
             manager().paste(s.other, true);
         }},
        {"save", [](Stage&) { manager().createAnimationXML(); }},
        {"sweep_the_scene", [](Stage&) { manager().destroyUnreferencedObjectsAndFields(); }},
        {"destroy_the_clip", [](Stage& s) { manager().destroyStrip(s.clip); }},
    };
}

INSTANTIATE_TEST_SUITE_P(Operations, AllocationFailure, testing::ValuesIn(operations()),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
