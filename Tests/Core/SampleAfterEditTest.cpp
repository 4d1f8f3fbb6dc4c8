#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaAnimationManager.h"
#include "kaCurveSampling.h"

#include <cmath>
#include <random>

using namespace ka_test;

namespace {

using Keys = std::vector<Key>;

constexpr float Spacing = 10.0F;

/// What a curve gives after edits is what one gives that is made with its keys as they stand then: of a few
/// keys that were edited in their places only the segments beside them are made anew.
class SampleAfterEdit : public RegistryFixture {
  protected:
    /// Bent, so that each segment differs from the next; few keys are searched otherwise than many.
    kaAnimationCurve2D* curveOf(int count) {
        Keys keys;
        for (int i = 0; i < count; ++i) {
            const float x = static_cast<float>(i) * Spacing;
            const float y = static_cast<float>(i * i % 17) - 8.0F;
            keys.push_back({{x, y}, {x - 4.0F, y - 1.0F}, {x + 3.0F, y + 2.0F}});
        }
        kaAnimationCurve2D* curve = makeCurve(keys);
        sample(curve, 0.0F);
        return curve;
    }

    /// NaN where no value is written.
    static float sample(kaAnimationCurve2D* curve, float frame) {
        float value = std::nanf("");
        kaAnimationController::the()->computeCurveValue(curve, frame, value);
        return value;
    }

    static void expectLikeNew(kaAnimationCurve2D* curve) {
        Keys keys;
        for (kaControlPoint2D* key : keysOf(*curve))
            keys.push_back(keyOf(*key));
        kaAnimationCurve2D* fresh = makeCurve(keys);
        const float begin = curve->getBegin() - Spacing;
        const float end = curve->getEnd() + Spacing;
        for (float frame = begin; frame < end; frame += 0.75F) {
            const float value = sample(curve, frame);
            const float expected = sample(fresh, frame);
            if (!std::isnan(expected) || !std::isnan(value)) {
                ASSERT_EQ(value, expected) << "at frame " << frame;
            }
        }
    }

    /// Moves a key and its handles, as dragging does.
    static void drag(kaControlPoint2D& key, float dx, float dy) {
        for (kaControlPoint2D* part : {&key, key.getInTangent(), key.getOutTangent()})
            part->setPosition(part->getPosition()[0] + dx, part->getPosition()[1] + dy);
    }
};

struct Edit {
    const char* name;
    void (*make)(kaAnimationCurve2D& curve, const std::vector<kaControlPoint2D*>& keys);
};

using KeyList = std::vector<kaControlPoint2D*>;

TEST_F(SampleAfterEdit, IsThatOfACurveMadeWithTheKeysAsTheyStand) {
    static void (*const dragKey)(kaControlPoint2D&, float, float) = &SampleAfterEdit::drag;
    const Edit edits[] = {
        {"a key's value", [](auto&, const KeyList& keys) { keys[2]->setMaximum(40.0F); }},
        {"the first key's value", [](auto&, const KeyList& keys) { keys.front()->setMaximum(40.0F); }},
        {"the last key's value", [](auto&, const KeyList& keys) { keys.back()->setMaximum(40.0F); }},
        {"a little in time", [](auto&, const KeyList& keys) { dragKey(*keys[2], 0.25F, 1.0F); }},
        {"far in time", [](auto&, const KeyList& keys) { dragKey(*keys[2], -9.5F, 1.0F); }},
        {"the first key to earlier", [](auto&, const KeyList& keys) { dragKey(*keys[0], -95.0F, 1.0F); }},
        {"the first key to later", [](auto&, const KeyList& keys) { dragKey(*keys[0], 6.0F, 0.0F); }},
        {"the last key to later", [](auto&, const KeyList& keys) { dragKey(*keys.back(), 200.0F, 0.0F); }},
        {"the last key to earlier", [](auto&, const KeyList& keys) { dragKey(*keys.back(), -7.0F, 0.0F); }},
        {"the first two to earlier",
         [](auto&, const KeyList& keys) {
             dragKey(*keys[0], -100.0F, 0.0F);
             dragKey(*keys[1], -60.0F, 0.0F);
         }},
        {"the second where the first has left",
         [](auto&, const KeyList& keys) {
             dragKey(*keys[0], -100.0F, 0.0F);
             dragKey(*keys[1], -10.0F, 0.0F);
         }},
        {"over a neighbour", [](auto&, const KeyList& keys) { dragKey(*keys[2], 15.0F, 1.0F); }},
        {"over a neighbour and back",
         [](auto& curve, const KeyList& keys) {
             dragKey(*keys[2], 15.0F, 1.0F);
             expectLikeNew(&curve);
             dragKey(*keys[2], -15.0F, 1.0F);
         }},
        {"onto a neighbour", [](auto&, const KeyList& keys) { dragKey(*keys[2], Spacing, 1.0F); }},
        {"onto a neighbour and back",
         [](auto& curve, const KeyList& keys) {
             dragKey(*keys[2], Spacing, 1.0F);
             expectLikeNew(&curve);
             dragKey(*keys[2], -Spacing, 1.0F);
         }},
        {"all past each other and back",
         [](auto& curve, const KeyList& keys) {
             for (kaControlPoint2D* key : keys)
                 dragKey(*key, -2.0F * key->getPosition()[0], 0.0F);
             expectLikeNew(&curve);
             for (kaControlPoint2D* key : keys)
                 dragKey(*key, -2.0F * key->getPosition()[0], 0.0F);
         }},
        {"nowhere", [](auto&, const KeyList& keys) { keys[2]->setPosition(std::nanf(""), 3.0F); }},
        {"a handle", [](auto&, const KeyList& keys) { keys[2]->getInTangent()->setPosition(12.0F, 30.0F); }},
        {"a handle gone",
         [](auto&, const KeyList& keys) {
             kaAnimationManager::the()->destroyPoint2D(keys[2]->getOutTangent());
         }},
        {"computed handles",
         [](auto& curve, const KeyList& keys) {
             keys[1]->setSelected(true);
             keys[3]->setSelected(true);
             curve.changeTangentsOfSelectedPoints(kaControlPoint2D::TANGENT_SMOOTH);
         }},
        {"dragged with those beside it",
         [](kaAnimationCurve2D& curve, const KeyList& keys) {
             for (kaControlPoint2D* key : {keys[1], keys[2], keys[3]})
                 key->setTangentType(kaControlPoint2D::TANGENT_SMOOTH);
             keys[2]->setSelected(true);
             curve.moveSelectedPoints(osg::Vec2f(1.5F, 4.0F), false, false, true, false);
         }},
        {"every key a little",
         [](auto&, const KeyList& keys) {
             for (kaControlPoint2D* key : keys)
                 dragKey(*key, 0.5F, 1.0F);
         }},
        {"one moved, one added",
         [](kaAnimationCurve2D& curve, const KeyList& keys) {
             dragKey(*keys[1], 1.0F, 1.0F);
             curve.addObject(makeKey(stepKey(25.0F, 6.0F)));
             dragKey(*keys[3], 1.0F, 1.0F);
         }},
        {"one moved, one removed",
         [](kaAnimationCurve2D& curve, const KeyList& keys) {
             dragKey(*keys[1], 1.0F, 1.0F);
             curve.subObject(keys[2], true);
             dragKey(*keys[3], 1.0F, 1.0F);
         }},
        {"one moved and destroyed",
         [](auto&, const KeyList& keys) {
             dragKey(*keys[2], 1.0F, 1.0F);
             kaAnimationManager::the()->destroyPoint2D(keys[2]);
         }},
        {"one of a kind that is no key",
         [](kaAnimationCurve2D& curve, const KeyList& keys) {
             std::vector<kaUID> ids = curve.getChildIDs();
             ids.push_back(makeBlock(0.0F, 1000.0F)->getId());
             curve.setChildIDs(ids);
             sample(&curve, 5.0F);
             dragKey(*keys[2], 1.0F, 1.0F);
         }},
    };
    for (const int count : {4, 7, 9, 40}) {
        for (const Edit& edit : edits) {
            SCOPED_TRACE(std::string(edit.name) + ", " + std::to_string(count) + " keys");
            kaAnimationCurve2D* curve = curveOf(count);
            edit.make(*curve, keysOf(*curve));
            expectLikeNew(curve);
            drag(*keysOf(*curve).front(), -1.0F, 2.0F);
            expectLikeNew(curve);
        }
    }
}

/// More keys at once than a list remembers, and any number of edits of each.
TEST_F(SampleAfterEdit, HoldsForAnyNumberOfEditedKeys) {
    for (int edited = 1; edited <= 20; ++edited) {
        SCOPED_TRACE(edited);
        kaAnimationCurve2D* curve = curveOf(30);
        const KeyList keys = keysOf(*curve);
        for (int turn = 0; turn < 3; ++turn) {
            for (int i = 0; i < edited; ++i)
                drag(*keys[static_cast<std::size_t>(i * 7 % 30)], 0.5F, 1.0F);
            if (turn > 0)
                expectLikeNew(curve);
        }
    }
}

/// Between edits now a few frames, now so many that the keys are packed again.
TEST_F(SampleAfterEdit, HoldsWhileManyKeysComeGoAndMove) {
    std::mt19937 random(17);
    const auto below = [&random](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    kaAnimationCurve2D* curve = curveOf(150);
    for (int step = 0; step < 60; ++step) {
        for (int i = below(4); i >= 0; --i) {
            const auto x = static_cast<float>(below(18000)) / 10.0F - 100.0F;
            curve->addObject(
                kaAnimationManager::the()->createPoint2D(x, static_cast<float>(below(9)) - 4.0F, 0));
        }
        const KeyList keys = keysOf(*curve); // one that came may have taken another's place
        for (std::size_t i = 0; i < 12; ++i)
            drag(*keys[(i * 11 + static_cast<std::size_t>(step)) % keys.size()], 0.125F, 0.5F);
        if (step % 3 == 0)
            curve->subObject(keysOf(*curve)[static_cast<std::size_t>(below(80))], true);
        Keys now;
        for (kaControlPoint2D* key : keysOf(*curve))
            now.push_back(keyOf(*key));
        kaAnimationCurve2D* fresh = makeCurve(now);
        const int samples = step % 4 == 0 ? 200 : 12;
        for (int i = 0; i < samples; ++i) {
            const float frame = i % 5 == 0
                                    ? now[static_cast<std::size_t>(below(static_cast<int>(now.size())))].key.x
                                    : static_cast<float>(below(20000)) / 10.0F - 200.0F;
            const float value = sample(curve, frame);
            const float expected = sample(fresh, frame);
            if (!std::isnan(expected) || !std::isnan(value)) {
                ASSERT_EQ(value, expected) << "step " << step << ", frame " << frame;
            }
        }
        std::vector<float> frames;
        for (int i = 0; i < 30; ++i)
            frames.push_back(static_cast<float>(below(20000)) / 10.0F - 200.0F);
        float many[30] = {};
        float expected[30] = {};
        kaCurveSampling::sample(curve, frames.data(), frames.size(), many);
        kaCurveSampling::sample(fresh, frames.data(), frames.size(), expected);
        for (std::size_t i = 0; i < frames.size(); ++i)
            ASSERT_EQ(many[i], expected[i]) << "step " << step << ", frame " << frames[i];
    }
}

/// Several keys at one frame, where the first of them counts, and all of them there.
TEST_F(SampleAfterEdit, HoldsForManyKeysThatShareFrames) {
    kaAnimationCurve2D* curve = curveOf(100);
    const KeyList keys = keysOf(*curve);
    for (std::size_t i = 0; i < 99; ++i)
        if (i % 3 == 0)
            for (kaControlPoint2D* part :
                 {keys[i + 1], keys[i + 1]->getInTangent(), keys[i + 1]->getOutTangent()})
                part->setPosition(keys[i]->getPosition()[0], part->getPosition()[1]);
    EXPECT_NO_FATAL_FAILURE(expectLikeNew(curve));
    for (kaControlPoint2D* key : keys)
        key->setPosition(7.0F, key->getPosition()[1]);
    EXPECT_NO_FATAL_FAILURE(expectLikeNew(curve));
}

} // namespace
