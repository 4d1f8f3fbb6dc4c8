#include "Builders.h"
#include "RegistryFixture.h"

#include <functional>
#include <kaAnimationController.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <limits>
#include <random>

namespace {

using namespace ka_test;

constexpr float Untouched = -12345.0F;
constexpr float Always = 1e6F;

/// Clips that are evaluated again and again while anything is edited. What an evaluation gives is compared
/// with that of the loose curves, which remembers nothing of objects.
class PlanFollowsEdits : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();
    std::mt19937 random{20260229};

    std::size_t below(std::size_t count) { return random() % count; }
    float frame(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(random); }

    kaAnimationCurve2D* newCurve() {
        kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{
            {frame(0, 5), frame(-9, 9)}, {frame(6, 10), frame(-9, 9)}, {frame(12, 20), frame(-9, 9)}});
        curve->setAnimationField(manager->createField(0));
        return curve;
    }

    kaAnimationUnit* newBlock() {
        return makeBlock(std::vector<kaAnimationCurve2D*>{newCurve(), newCurve(), newCurve()});
    }

    template <class Object>
    Object* any(unsigned int type) {
        std::vector<Object*> found;
        for (const auto& [id, object] : manager->getObjects())
            if (object->getTypeID() == type && (type != KA_TYPE_POINT || object->getParent() != 0))
                found.push_back(static_cast<Object*>(object));
        return found.empty() ? nullptr : found[below(found.size())];
    }
    kaAnimationCurve2D* anyCurve() { return any<kaAnimationCurve2D>(KA_TYPE_CURVE); }
    kaAnimationUnit* anyBlock() { return any<kaAnimationUnit>(KA_TYPE_UNIT); }
    kaAnimationStreak* anyTrack() { return any<kaAnimationStreak>(KA_TYPE_STREAK); }

    void edit();

    std::vector<float> valuesAfter(const std::function<void()>& evaluate) {
        const auto fields = manager->getFields();
        for (const auto& entry : fields)
            entry.second->value = Untouched;
        evaluate();
        std::vector<float> values;
        for (const auto& entry : fields)
            values.push_back(entry.second->value);
        return values;
    }
};

/// What a host does, to whatever is there.
void PlanFollowsEdits::edit() {
    kaAnimationCurve2D* curve = anyCurve();
    kaAnimationUnit* block = anyBlock();
    kaAnimationStreak* track = anyTrack();
    if (!curve || !block) {
        track->addObject(newBlock());
        return;
    }
    const auto keys = keysOf(*curve);
    switch (below(17)) {
    case 0:
        curve->setSelected(below(2) == 0);
        break;
    case 1:
        block->setActive(below(2) == 0);
        break;
    case 2:
        curve->setActive(below(2) == 0);
        break;
    case 3:
        block->move(frame(-3, 3), true);
        break;
    case 4:
        manager->createCurvePoint(curve, frame(0, 20), frame(-9, 9), false, false, true);
        break;
    case 5:
        curve->subObject(keys.empty() ? nullptr : keys[below(keys.size())], true);
        break;
    case 6:
        if (!keys.empty())
            keys[below(keys.size())]->setPosition(frame(0, 20), frame(-9, 9));
        break;
    case 7:
        curve->setAnimationField(manager->createField(0));
        break;
    case 8:
        block->addObject(newCurve());
        break;
    case 9:
        manager->destroyCurve2D(curve);
        break;
    case 10:
        track->addObject(newBlock());
        break;
    case 11:
        if (below(3) == 0)
            manager->destroyUnit(block);
        break;
    case 12:
        manager->setID(0, below(2) == 0 ? static_cast<kaAnimationObject*>(curve) : block);
        break;
    case 13: {
        const auto fields = manager->getFields();
        const auto at = std::next(fields.begin(), static_cast<std::ptrdiff_t>(below(fields.size())));
        const kaUID id = at->first;
        manager->destroyField(at->second);
        if (below(2) == 0)
            manager->createField(id);
        break;
    }
    case 14:
        if (below(4) == 0)
            block->setCurveIDs({curve->getId(), manager->createUID()});
        break;
    case 15:
        curve->flip();
        break;
    default:
        if (!keys.empty() && keys.front()->getOutTangent())
            keys.front()->getOutTangent()->setPosition(frame(0, 20), frame(-9, 9));
    }
}

TEST_F(PlanFollowsEdits, OfEveryKindInAnyOrder) {
    kaAnimationStrip* clip = makeClip({makeTrack({newBlock(), newBlock()}), makeTrack({newBlock()})});
    kaAnimationStrip* other = makeClip({makeTrack({newBlock()})}); // whose edits do not concern the first
    for (int step = 0; step < 1500; ++step) {
        edit();
        const float at = frame(-5, 30);
        for (kaAnimationObject* object : std::vector<kaAnimationObject*>{clip, other}) {
            std::vector<kaAnimationCurve2D*> curves; // those that the blocks say are below them
            for (kaAnimationObject* track : object->getObjects())
                for (kaAnimationObject* block : track->getObjects())
                    for (kaAnimationCurve2D* curve : block->getCurves())
                        curves.push_back(curve);
            const auto evaluated = valuesAfter([&] { controller->evaluateObject(object, at, false); });
            const auto loose =
                valuesAfter([&] { controller->evaluateCurves(curves, -Always, Always, at, false); });
            ASSERT_EQ(evaluated, loose) << "step " << step << ", frame " << at;
        }
    }
}

} // namespace
