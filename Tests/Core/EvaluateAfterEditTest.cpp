#include "RegistryFixture.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <ostream>
#include <random>

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

/// Keys that move without anything else, which leaves what evaluation remembers of all other curves.
class EvaluateWhileDragging : public ka_test::RegistryFixture {
  protected:
    /// Moves the middle key and not its handles, which makes a curve of the step; it is remembered then.
    static void raise(kaAnimationCurve2D* curve, float y) { curve->findPoint(10.0F)->setPosition(10.0F, y); }
    /// The curve at `Frame` then: half way in time is half way in t, of y, 2, 3 and 3.
    static float raised(float y) { return (y + 18.0F) / 8.0F; }

    static float evaluatedAt(const Clip& c, float frame) {
        c.field->value = Untouched;
        kaAnimationController::the()->evaluateObject(c.clip, frame, false);
        return c.field->value;
    }

    /// More curves in the clip's block, like its first one, each with a field of its own.
    static std::vector<kaAnimationCurve2D*> moreCurves(const Clip& c, std::size_t count) {
        std::vector<kaAnimationCurve2D*> curves;
        for (std::size_t i = 0; i < count; ++i) {
            curves.push_back(c.manager->createCurve2D(c.manager->createField(0), "More", 0, false));
            curves.back()->setPoints({c.key(0.0F, 1.0F), c.key(10.0F, 2.0F), c.key(20.0F, 3.0F)});
            c.block->addObject(curves.back());
        }
        return curves;
    }

    static float valueOf(kaAnimationCurve2D* curve) {
        return kaAnimationManager::the()->getField(curve->getField())->value;
    }
};

TEST_F(EvaluateWhileDragging, EachOfManyCurvesShowsItsKey) {
    const Clip c;
    const auto curves = moreCurves(c, 40);
    for (const std::size_t edited : {40U, 1U, 2U, 7U, 8U, 9U, 40U}) {
        for (std::size_t i = 0; i < edited; ++i)
            raise(curves[i], static_cast<float>(100 * edited + i));
        c.evaluated();
        for (std::size_t i = 0; i < edited; ++i)
            EXPECT_NEAR(valueOf(curves[i]), raised(static_cast<float>(100 * edited + i)), 1e-3F) << edited;
    }
}

TEST_F(EvaluateWhileDragging, ACurveThatTwoBlocksNameShowsItsKeyInBoth) {
    const Clip c;
    kaAnimationUnit* block = c.manager->createUnit(0ULL);
    c.track->addObject(block);
    block->setCurveIDs({c.curve->getId()});
    block->setBegin(0.0F);
    block->setEnd(20.0F); // it runs, too, and has the last word
    for (const float y : {7.0F, 8.0F, 9.0F}) {
        raise(c.curve, y);
        EXPECT_NEAR(c.evaluated(), raised(y), 1e-5F);
    }
}

TEST_F(EvaluateWhileDragging, AKeyThatTwoCurvesListMovesInBoth) {
    const Clip c;
    kaAnimationCurve2D* other = moreCurves(c, 1).front();
    other->setChildIDs(c.curve->getChildIDs());
    for (const float y : {7.0F, 8.0F, 9.0F}) {
        raise(c.curve, y);
        EXPECT_NEAR(c.evaluated(), raised(y), 1e-5F);
        EXPECT_NEAR(valueOf(other), raised(y), 1e-5F);
    }
}

TEST_F(EvaluateWhileDragging, ACurveIsHeldAtTheKeysThatItHasNow) {
    const Clip c;
    ASSERT_EQ(evaluatedAt(c, 25.0F), 3.0F);
    ASSERT_EQ(evaluatedAt(c, -5.0F), 1.0F);
    c.curve->findPoint(20.0F)->setPosition(20.0F, 9.0F);
    c.curve->findPoint(0.0F)->setPosition(0.0F, 5.0F);
    c.curve->findPoint(0.0F)->getOutTangent()->setPosition(0.0F, 5.0F);
    EXPECT_EQ(evaluatedAt(c, 25.0F), 9.0F);
    EXPECT_EQ(evaluatedAt(c, -5.0F), 5.0F);
}

TEST_F(EvaluateWhileDragging, ACurveIsHeldWhereItEndsNow) {
    const Clip c;
    raise(c.curve, 7.0F);
    c.curve->findPoint(20.0F)->setSelected(true);
    const auto drag = [&](float frames) {
        c.curve->moveSelectedPoints(osg::Vec2f(frames, 0.0F), false, false, true, false);
    };
    drag(-8.0F);
    ASSERT_EQ(evaluatedAt(c, 20.0F), 3.0F);
    drag(18.0F); // it ends at 30, and 20 is half way
    EXPECT_NEAR(evaluatedAt(c, 20.0F), raised(7.0F), 1e-5F);
}

TEST_F(EvaluateWhileDragging, ClipAndBlockShowTheSameInTurn) {
    const Clip c;
    const auto expectBoth = [&](float y) {
        EXPECT_NEAR(c.evaluated(c.block, false), raised(y), 1e-5F);
        EXPECT_NEAR(c.evaluated(), raised(y), 1e-5F);
    };
    for (const float y : {7.0F, 8.0F}) {
        raise(c.curve, y);
        expectBoth(y);
    }
    raise(c.curve, 9.0F);
    EXPECT_NEAR(c.evaluated(), raised(9.0F), 1e-5F);
    raise(c.curve, 10.0F);
    expectBoth(10.0F);
}

TEST_F(EvaluateWhileDragging, AKeyLeavesTheNumbersAndComesBack) {
    const Clip c;
    kaControlPoint2D* key = middle(c);
    ASSERT_EQ(c.evaluated(), 2.0F);
    key->setPosition(std::nanf(""), 2.0F);
    EXPECT_EQ(c.evaluated(), 1.0F);
    key->setPosition(10.0F, 2.0F);
    EXPECT_EQ(c.evaluated(), 2.0F);
    raise(c.curve, 7.0F);
    EXPECT_NEAR(c.evaluated(), raised(7.0F), 1e-5F);
}

/// Against each curve by itself, which remembers nothing of its place in the clip.
TEST_F(EvaluateWhileDragging, AnyDragsShowAsTheCurvesSay) {
    const Clip c;
    const auto curves = moreCurves(c, 12);
    std::mt19937 random(3);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    for (int step = 0; step < 2000; ++step) {
        for (int drags = upTo(3) == 0 ? upTo(20) : upTo(2); drags > 0; --drags) {
            kaAnimationCurve2D* curve = curves[static_cast<std::size_t>(upTo(11))];
            const auto keys = curve->getPoints();
            kaControlPoint2D* key = std::next(keys.begin(), upTo(static_cast<int>(keys.size()) - 1))->second;
            key = upTo(2) == 0 ? key->getOutTangent() : key;
            key->setPosition(key->getPosition()[0] + static_cast<float>(upTo(2) - 1),
                             static_cast<float>(upTo(50)));
            if (upTo(200) == 0)
                curve->addObject(c.key(static_cast<float>(upTo(30)), 1.0F));
        }
        const auto frame = static_cast<float>(upTo(40) - 10);
        kaAnimationController::the()->evaluateObject(c.clip, frame, false);
        for (kaAnimationCurve2D* curve : curves) {
            float expected = valueOf(curve);
            const float held = std::clamp(frame, curve->getBegin(), curve->getEnd());
            kaAnimationController::the()->computeCurveValue(curve, held, expected);
            ASSERT_EQ(valueOf(curve), expected) << "step " << step << ", frame " << frame;
        }
    }
}

} // namespace
