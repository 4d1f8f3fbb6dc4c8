#include "RegistryFixture.h"

#include <functional>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <ostream>

namespace {

constexpr float Frame = 15.0F;
constexpr float Untouched = -1.0F;

/// A clip of one track, one block and one curve that steps from 1 to 2 at frame 10 and to 3 at frame 20.
struct Clip {
    Clip() {
        curve->setPoints({key(0.0F, 1.0F), key(10.0F, 2.0F), key(20.0F, 3.0F)});
        block->addObject(curve);
        track->addObject(block);
        clip->addObject(track);
    }

    /// Its handles stand on it, so what follows is a step.
    kaControlPoint2D* key(float x, float y) const {
        kaControlPoint2D* made = manager->createPoint2D(x, y, 0);
        made->setTangentType(kaControlPoint2D::TANGENT_USER);
        return made;
    }

    float evaluated() const { return evaluated(clip, false); }
    float evaluated(kaAnimationObject* object, bool motionBlurOnly) const {
        field->value = Untouched;
        kaAnimationController::the()->evaluateObject(object, Frame, motionBlurOnly);
        return field->value;
    }

    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationField* field = manager->createField(0);
    kaAnimationCurve2D* curve = manager->createCurve2D(field, "Curve", 0, false);
    kaAnimationUnit* block = manager->createUnit(0ULL);
    kaAnimationStreak* track = manager->createStreak(0ULL);
    kaAnimationStrip* clip = manager->createStrip(0ULL);
};

struct Edit {
    const char* name;
    std::function<void(const Clip&)> apply;
    float expected;
};

std::ostream& operator<<(std::ostream& out, const Edit& edit) {
    return out << edit.name;
}

class EvaluateAfterEdit : public ka_test::RegistryFixture, public testing::WithParamInterface<Edit> {};

TEST_P(EvaluateAfterEdit, ShowsTheEditInTheNextFrame) {
    const Clip clip;
    ASSERT_EQ(clip.evaluated(), 2.0F);
    ASSERT_EQ(clip.evaluated(), 2.0F);
    GetParam().apply(clip);
    EXPECT_NEAR(clip.evaluated(), GetParam().expected, 1e-5F);
}

kaControlPoint2D* middle(const Clip& clip) {
    return clip.curve->findPoint(10.0F);
}

void playToEight(const Clip& clip) {
    clip.block->setUseCustomRange(true);
    clip.block->setCustomBegin(0.0F);
    clip.block->setCustomEnd(8.0F);
}

INSTANTIATE_TEST_SUITE_P(
    Edits, EvaluateAfterEdit,
    testing::Values(
        Edit{"NothingChanged", [](const Clip&) {}, 2.0F},
        // Its handle stays, so this is no step any more: half way 7/8 + 3*2/8 + 3*3/8 + 3/8.
        Edit{"KeyMoved", [](const Clip& c) { middle(c)->setPosition(10.0F, 7.0F); }, 3.125F},
        // Half way in time is half way in t: 2/8 + 3*5/8 + 3*3/8 + 3/8.
        Edit{"HandleMoved", [](const Clip& c) { middle(c)->getOutTangent()->setPosition(10.0F, 5.0F); },
             3.625F},
        Edit{"KeyAdded", [](const Clip& c) { c.curve->addObject(c.key(12.0F, 9.0F)); }, 9.0F},
        Edit{"KeyRemoved", [](const Clip& c) { c.curve->subObject(middle(c), false); }, 1.0F},
        Edit{"KeyDestroyed", [](const Clip& c) { c.manager->destroyPoint2D(middle(c)); }, 1.0F},
        Edit{"KeysListedAnew",
             [](const Clip& c) {
                 const auto ids = c.curve->getChildIDs();
                 c.curve->setChildIDs({ids.front(), ids.back()});
             },
             1.0F},
        Edit{"CurveSwitchedOff", [](const Clip& c) { c.curve->setActive(false); }, Untouched},
        Edit{"CurveBoundToAnotherField",
             [](const Clip& c) { c.curve->setField(c.manager->createField(0)->getId()); }, Untouched},
        Edit{"CurveUnbound", [](const Clip& c) { c.curve->setField(0); }, Untouched},
        Edit{"CurveEndsEarlier", [](const Clip& c) { c.curve->setEnd(5.0F); }, 1.0F},
        Edit{"CurveRemoved", [](const Clip& c) { c.block->subObject(c.curve, false); }, Untouched},
        Edit{"CurveDestroyed", [](const Clip& c) { c.manager->destroyCurve2D(c.curve); }, Untouched},
        Edit{"CurvesOfTheBlockListedAnew", [](const Clip& c) { c.block->setCurveIDs({}); }, Untouched},
        Edit{"BlockRemoved", [](const Clip& c) { c.track->subObject(c.block, false); }, Untouched},
        Edit{"BlocksOfTheTrackListedAnew", [](const Clip& c) { c.track->setChildIDs({}); }, Untouched},
        Edit{"BlockRepeatsInACustomRange",
             [](const Clip& c) {
                 playToEight(c);
                 c.block->setRepeating(true);
             },
             1.0F},
        Edit{"RepeatingBlockGetsACustomRange",
             [](const Clip& c) {
                 c.block->setRepeating(true);
                 c.evaluated();
                 playToEight(c);
             },
             1.0F},
        Edit{"AnotherCurveDrivesTheField",
             [](const Clip& c) {
                 kaAnimationCurve2D* other = c.manager->createCurve2D(c.field, "Other", ~0ULL, false);
                 other->setPoints({c.key(0.0F, 8.0F), c.key(20.0F, 8.0F)});
                 c.block->addObject(other);
             },
             8.0F}),
    [](const auto& edit) { return std::string(edit.param.name); });

class EvaluateAfterLoneEdit : public ka_test::RegistryFixture {};

TEST_F(EvaluateAfterLoneEdit, ACurveThatStandsInNoListEndsEarlier) {
    const Clip c;
    c.block->subObject(c.curve, false);
    ASSERT_EQ(c.evaluated(c.curve, false), 2.0F);
    c.curve->setEnd(5.0F);
    EXPECT_EQ(c.evaluated(c.curve, false), 1.0F);
}

TEST_F(EvaluateAfterLoneEdit, ACurveComesToMotionBlurAndGoes) {
    const Clip c;
    ASSERT_EQ(c.evaluated(c.clip, true), Untouched);
    c.curve->setMotionBlur(true);
    ASSERT_EQ(c.evaluated(c.clip, true), 2.0F);
    c.curve->setMotionBlur(false);
    EXPECT_EQ(c.evaluated(c.clip, true), Untouched);
}

TEST_F(EvaluateAfterLoneEdit, ACurveThatTheBlockOnlyNamesIsDestroyed) {
    const Clip c;
    const kaUID id = c.curve->getId();
    c.block->subObject(c.curve, false);
    c.block->setCurveIDs({id});
    ASSERT_EQ(c.evaluated(c.block, false), 2.0F);
    c.manager->destroyCurve2D(c.curve);
    EXPECT_EQ(c.evaluated(c.block, false), Untouched);
}

TEST_F(EvaluateAfterLoneEdit, TheFieldOfACurveComesAndGoes) {
    const Clip c;
    c.curve->setField(4711);
    ASSERT_EQ(c.evaluated(), Untouched);
    kaAnimationField* late = c.manager->createField(4711);
    ASSERT_EQ(c.evaluated(), Untouched);
    EXPECT_EQ(late->value, 2.0F);
    c.manager->destroyField(late);
    EXPECT_EQ(c.evaluated(), Untouched);
}

TEST_F(EvaluateAfterLoneEdit, OfTwoTracksTheOneListedLastHasTheLastWord) {
    const Clip c;
    kaAnimationCurve2D* other = c.manager->createCurve2D(c.field, "Other", 0, false);
    other->setPoints({c.key(0.0F, 8.0F), c.key(20.0F, 8.0F)});
    kaAnimationUnit* block = c.manager->createUnit(0ULL);
    block->addObject(other);
    kaAnimationStreak* track = c.manager->createStreak(0ULL);
    track->addObject(block);
    c.clip->addObject(track);
    c.clip->setChildIDs({c.track->getId(), track->getId()});
    ASSERT_EQ(c.evaluated(), 8.0F);
    c.clip->setChildIDs({track->getId(), c.track->getId()});
    EXPECT_EQ(c.evaluated(), 2.0F);
}

} // namespace
