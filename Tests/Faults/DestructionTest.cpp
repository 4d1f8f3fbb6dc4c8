#include "Builders.h"
#include "FailingAllocation.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace ka_test;

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

/// A situation, and what is destroyed in it.
struct Doomed {
    const char* name;
    std::function<std::function<void()>(TestScene&)> make; ///< @return the destruction
};

void PrintTo(const Doomed& row, std::ostream* out) {
    *out << row.name;
}

class Destroying : public RegistryFixture, public testing::WithParamInterface<Doomed> {};

/// Destroying must work where memory has run out: it is what gives memory back.
TEST_P(Destroying, AsksForNoMemory) {
    TestScene scene;
    const std::function<void()> destroy = GetParam().make(scene);
    {
        const FailingAllocation failure(0);
        destroy();
    }
    EXPECT_FALSE(FailingAllocation::hasFailed());
}

using DestroyingFromAnOddList = Destroying;

/// A list with unknown, shared or repeated ids is sorted anew with a copy, when a child leaves it. Without
/// memory for the copy it stays as it is, and destroying goes on.
TEST_P(DestroyingFromAnOddList, LeavesTheSameBehindWhereverMemoryRunsOut) {
    std::set<kaUID> expected;
    bool failed = true;
    for (std::size_t point = 1000; failed; point = point == 1000 ? 0 : point + 1) {
        emptyModule();
        TestScene scene;
        const std::function<void()> destroy = GetParam().make(scene);
        {
            const FailingAllocation failure(point);
            destroy();
        }
        failed = FailingAllocation::hasFailed() || point == 1000;
        std::set<kaUID> left;
        for (const auto& entry : manager().getObjects())
            left.insert(entry.first);
        if (point == 1000)
            expected = left;
        ASSERT_EQ(left, expected) << "allocation " << point;
    }
}

std::vector<Spot> spots(int count) {
    std::vector<Spot> result;
    for (int i = 0; i < count; ++i)
        result.push_back({static_cast<float>(i), static_cast<float>(i % 3)});
    return result;
}

/// A registered key whose handles are registered, too, as those of copies are.
kaControlPoint2D* keyWithRegisteredHandles(float x) {
    kaControlPoint2D* source = manager().createPoint2D(x, 1.0F, 0);
    kaControlPoint2D* copy = manager().duplicatePoint2D(source);
    manager().destroyPoint2D(source);
    EXPECT_NE(manager().getPoint2D(copy->getInTangent()->getId()), nullptr);
    return copy;
}

/// A curve that lists its own keys and, as a host can write it, others.
kaAnimationCurve2D* listing(const std::vector<kaAnimationObject*>& more, int keys = 300) {
    kaAnimationCurve2D* curve = makeCurve(spots(keys));
    std::vector<kaUID> ids = curve->getChildIDs();
    for (const kaAnimationObject* object : more)
        ids.push_back(object->getId());
    curve->setChildIDs(ids);
    return curve;
}

std::vector<Doomed> plainSituations() {
    return {
        {"a_key",
         [](TestScene&) {
             kaControlPoint2D* key = keysOf(*makeCurve(spots(300))).front();
             return [key] { manager().destroyPoint2D(key); };
         }},
        {"a_curve_on_a_node",
         [](TestScene& scene) {
             kaAnimationCurve2D* curve = manager().createCurve2D(scene.addTransform("node"), "rotationX");
             for (const Spot& spot : spots(300))
                 manager().createCurvePoint(curve, spot.x, spot.y, false, false, false);
             return [curve] { manager().destroyCurve2D(curve); };
         }},
        {"a_clip_that_waits_plays_and_is_copied",
         [](TestScene&) {
             kaAnimationStrip* clip =
                 makeClip({makeTrack({makeBlock(0.0F, 10.0F), makeBlock(20.0F, 30.0F)})});
             kaAnimationController::the()->addWaitingObject(clip);
             kaAnimationController::the()->loop();
             kaAnimationController::the()->addWaitingObject(clip);
             manager().createConnection(clip, kaAnimationManager::TriggerEnd, clip,
                                        kaAnimationManager::ActionPlay);
             manager().copy(clip);
             return [clip] { manager().destroyStrip(clip); };
         }},
        {"a_field",
         [](TestScene&) {
             kaAnimationField* field = manager().createField(0);
             return [field] { manager().destroyField(field); };
         }},
    };
}

std::vector<Doomed> oddSituations() {
    return {
        {"a_listed_key_whose_parent_id_was_cleared",
         [](TestScene&) {
             kaControlPoint2D* key = keysOf(*listing({}))[7];
             key->setParent(0);
             return [key] { manager().destroyPoint2D(key); };
         }},
        {"two_listed_keys_whose_parent_ids_were_cleared",
         [](TestScene&) {
             const auto keys = keysOf(*listing({}));
             keys[7]->setParent(0);
             keys[150]->setParent(0);
             return [keys] {
                 manager().destroyPoint2D(keys[7]);
                 manager().destroyPoint2D(keys[150]);
             };
         }},
        {"a_key_whose_handle_is_listed_elsewhere",
         [](TestScene&) {
             kaControlPoint2D* key = keyWithRegisteredHandles(1.0F);
             listing({key->getInTangent()});
             return [key] { manager().destroyPoint2D(key); };
         }},
        {"a_curve_whose_keys_handle_is_listed_elsewhere",
         [](TestScene&) {
             kaAnimationCurve2D* copy = manager().duplicateCurve2D(makeCurve(spots(3)));
             listing({keysOf(*copy)[1]->getInTangent(), keysOf(*copy)[2]->getOutTangent()});
             return [copy] { manager().destroyCurve2D(copy); };
         }},
        {"a_track_whose_parent_id_was_cleared",
         [](TestScene&) {
             kaAnimationStreak* track = makeTrack({makeBlock(0.0F, 10.0F)});
             makeClip({track, makeTrack({makeBlock(0.0F, 20.0F)})});
             track->setParent(0);
             return [track] { manager().destroyStreak(track); };
         }},
        {"a_curve_that_lists_an_unknown_id",
         [](TestScene&) {
             kaAnimationCurve2D* curve = makeCurve(spots(300));
             std::vector<kaUID> ids = curve->getChildIDs();
             ids.push_back(4711);
             curve->setChildIDs(ids);
             return [curve] { manager().destroyCurve2D(curve); };
         }},
        {"containers_deeper_than_any_accepts",
         [](TestScene&) {
             std::vector<kaAnimationStreak*> tracks;
             for (int i = 0; i < 3000; ++i)
                 tracks.push_back(manager().createStreak(0));
             for (std::size_t i = 1; i < tracks.size(); ++i) {
                 tracks[i - 1]->setChildIDs({tracks[i]->getId(), makeSequence("event", 0.0F, 1.0F)->getId()});
                 tracks[i]->setParent(tracks[i - 1]->getId());
             }
             return [tracks] { manager().destroyStreak(tracks.front()); };
         }},
    };
}

std::vector<Doomed> oddLists() {
    return {
        {"a_key_and_then_one_that_its_curve_knows",
         [](TestScene&) {
             const auto keys = keysOf(*listing({}));
             keys[7]->setParent(0);
             return [keys] {
                 manager().destroyPoint2D(keys[7]);
                 manager().destroyPoint2D(keys[8]);
             };
         }},
        {"a_curve_whose_key_two_list",
         [](TestScene&) {
             kaAnimationCurve2D* curve = makeCurve(spots(300));
             kaAnimationCurve2D* other = makeCurve(spots(300));
             other->setPoints(keysOf(*curve));
             return [curve] { manager().destroyCurve2D(curve); };
         }},
        {"a_key_that_its_curve_lists_twice",
         [](TestScene&) {
             kaAnimationCurve2D* curve = makeCurve(spots(300));
             kaControlPoint2D* key = keysOf(*curve)[7];
             std::vector<kaUID> ids = curve->getChildIDs();
             ids.push_back(key->getId());
             curve->setChildIDs(ids);
             return [key] { manager().destroyPoint2D(key); };
         }},
    };
}

std::string nameOf(const testing::TestParamInfo<Doomed>& row) {
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(Plain, Destroying, testing::ValuesIn(plainSituations()), nameOf);
INSTANTIATE_TEST_SUITE_P(Odd, Destroying, testing::ValuesIn(oddSituations()), nameOf);
INSTANTIATE_TEST_SUITE_P(Lists, DestroyingFromAnOddList, testing::ValuesIn(oddLists()), nameOf);

} // namespace
