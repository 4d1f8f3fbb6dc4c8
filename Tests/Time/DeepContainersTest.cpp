#include "SmallStack.h"
#include "TimeFixture.h"

#include <cmath>

using namespace ka_test;

namespace {

constexpr int Clips = 1000;      ///< inside each other, each on a track of the one around it
constexpr int HostDeep = 100000; ///< levels that a host writes into child lists itself

/// Containers as deep as any scene, worked on with a stack of a quarter of a megabyte.
class DeepContainers : public TimeFixture {
  protected:
    /// `Clips` clips around a block, from the inside out. @return the outermost.
    kaAnimationStrip* wrap(kaAnimationUnit* block) {
        Object* inner = block;
        kaAnimationStrip* clip = nullptr;
        for (int i = 0; i < Clips; ++i) {
            clip = manager->createStrip("clip " + std::to_string(i), 0);
            EXPECT_NE(clip->addObject(inner), nullptr) << "at " << i;
            inner = clip;
        }
        return clip;
    }

    static std::size_t levelsAbove(const Object* object) {
        std::size_t levels = 0;
        for (const Object* above = object; (above = above->getParentObject()) != nullptr;)
            ++levels;
        return levels;
    }
};

TEST_F(DeepContainers, AreBuiltFromTheInsideOutAndFromTheOutsideIn) {
    onSmallStack([this] {
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        kaAnimationStrip* outermost = wrap(block);
        EXPECT_EQ(levelsAbove(block), 2U * Clips);
        EXPECT_EQ(spanOf(outermost), Span(0.0F, 10.0F));
        EXPECT_EQ(outermost->getCurves().size(), 1U);

        kaAnimationStrip* clip = manager->createStrip(0);
        kaAnimationStrip* top = clip;
        for (int i = 1; i < Clips; ++i) {
            kaAnimationStrip* below = manager->createStrip(0);
            ASSERT_NE(clip->insertObject(below), nullptr) << "at " << i;
            clip = below;
        }
        kaAnimationUnit* last = makeBlock(5.0F, 25.0F);
        ASSERT_NE(clip->addObject(last), nullptr);
        EXPECT_EQ(spanOf(top), Span(5.0F, 25.0F)) << "the notice reaches the top";
        last->move(10.0F, true);
        EXPECT_EQ(spanOf(top), Span(15.0F, 35.0F));
    });
}

TEST_F(DeepContainers, AreEditedFlippedAndSwitched) {
    onSmallStack([this] {
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        kaAnimationStrip* outermost = wrap(block);
        outermost->move(5.0F, true);
        EXPECT_EQ(spanOf(block), Span(5.0F, 15.0F));
        outermost->flip();
        EXPECT_TRUE(block->isFlipped());
        EXPECT_EQ(spanOf(block), Span(5.0F, 15.0F));
        outermost->setActive(false);
        EXPECT_FALSE(curveOf(block)->isActive());
        outermost->setActive(true);
        outermost->setRepeating(true);
        outermost->setMotionBlur(true);
        EXPECT_TRUE(block->isRepeating() && curveOf(block)->isRepeating() && block->isMotionBlur());
    });
}

TEST_F(DeepContainers, ArePlayedAndFireTheirTriggers) {
    static int started = 0;
    started = 0;
    onSmallStack([this] {
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        kaAnimationStrip* outermost = wrap(block);
        manager->createConnection(block, Manager::TriggerBegin, [] { ++started; });
        start(outermost);
        loopAt(0.0);
        loopAt(0.2);
        EXPECT_EQ(started, 1);
        EXPECT_TRUE(block->isPlaying());
        EXPECT_NEAR(valueOf(curveOf(block)), 0.5F, 1e-5F);
        controller->playGlobal(outermost->getId(), false, false, 0.0F, 10.0F, 10.0F);
        playLoopAt(0.2);
        EXPECT_EQ(valueOf(curveOf(block)), 1.0F);
        controller->gotoGlobalBegin(outermost);
        EXPECT_EQ(valueOf(curveOf(block)), 0.0F);
    });
}

TEST_F(DeepContainers, AreCopiedAndDestroyed) {
    onSmallStack([this] {
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        kaAnimationStrip* outermost = wrap(block);
        const std::size_t before = manager->getObjects().size();
        kaAnimationStrip* copy = manager->duplicateStrip(outermost);
        constexpr std::size_t HandlesOfTheCopiedKeys = 4; // which are registered
        EXPECT_EQ(manager->getObjects().size(), 2 * before + HandlesOfTheCopiedKeys);
        Object* innermost = copy;
        std::size_t levels = 1;
        for (; innermost->getTypeID() != KA_TYPE_UNIT; ++levels)
            innermost = innermost->getObjects().at(0);
        EXPECT_EQ(levels, 2U * Clips + 1);
        EXPECT_NE(innermost, block);
        EXPECT_EQ(innermost->getName(), block->getName());
        manager->destroyObject(copy);
        EXPECT_EQ(manager->getObjects().size(), before);
        manager->destroyStrip(outermost);
        EXPECT_TRUE(manager->getObjects().empty());
    });
}

TEST_F(DeepContainers, AreSavedLoadedAndSweptAway) {
    onSmallStack([this] {
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        const kaUID id = block->getId();
        wrap(block);
        const std::size_t before = manager->getObjects().size();
        const std::string text = manager->createAnimationXML().toStdString();
        manager->destroyAllObjects(true);
        while (!manager->getObjects().empty())
            manager->destroyObject(manager->getObjects().begin()->second);
        ASSERT_TRUE(manager->loadAnimations(QString::fromStdString(text), false));
        EXPECT_EQ(manager->getObjects().size(), before);
        ASSERT_NE(manager->getObject(id), nullptr);
        EXPECT_EQ(levelsAbove(manager->getObject(id)), 2U * Clips);
        manager->destroyUnreferencedObjectsAndFields();
        manager->destroyAllObjects(true);
        EXPECT_LE(manager->getObjects().size(), 1U);
    });
}

/// Deeper than `addObject` accepts everything still comes to an end, on any stack.
TEST_F(DeepContainers, ThatAHostHasWrittenDeeperAreWalkedWithinBounds) {
    onSmallStack([this] {
        std::vector<Object*> levels;
        for (int i = 0; i < HostDeep; ++i)
            levels.push_back(i % 2 == 0 ? static_cast<Object*>(manager->createStrip(0))
                                        : manager->createStreak(0));
        for (std::size_t i = 1; i < levels.size(); ++i) {
            levels[i - 1]->setChildIDs({levels[i]->getId()});
            levels[i]->setParent(levels[i - 1]->getId());
        }
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        EXPECT_EQ(levels.back()->addObject(block), nullptr);
        levels.back()->setChildIDs({block->getId()});
        const kaUID blockID = block->getId();
        Object* top = levels.front();
        top->move(1.0F, true);
        top->moveBegin(-3.0F, true);
        top->moveEnd(30.0F, true);
        top->flip();
        top->setActive(false);
        top->setActive(true);
        top->setRepeating(true);
        top->setMotionBlur(true);
        top->triggerLoop(5.0F);
        controller->evaluateObject(top, 5.0F, false);
        levels.back()->updateBy(block, Object::ADD_OBJECT, true);
        EXPECT_EQ(manager->createStreak(0)->addObject(top), nullptr);
        manager->destroyObject(manager->duplicateObject(top));
        manager->destroyObject(top);
        EXPECT_EQ(manager->getObject(blockID), nullptr);
    });
}

TEST_F(DeepContainers, EndWhereAddObjectSaysSo) {
    Object* top = makeBlock(0.0F, 10.0F);
    unsigned int levels = 3; // the block, its curve, a key
    for (bool fits = true; fits && levels < 2 * KA_MAX_DEPTH;) {
        kaAnimationStreak* above = manager->createStreak(0);
        fits = above->addObject(top) != nullptr;
        levels += fits ? 1 : 0;
        top = above;
    }
    EXPECT_EQ(levels, KA_MAX_DEPTH);
}

// Stretching.

struct StretchRow {
    const char* name;
    float begin, end;  ///< asked for of the outermost
    float first, last; ///< where the block of 10..20 in 0..40 is then
};

class DeepStretching : public DeepContainers, public testing::WithParamInterface<StretchRow> {
  protected:
    /// A block over 10..20 beside one over 0..40, below `clips` clips.
    kaAnimationStrip* make(int clips) {
        block = makeBlock(10.0F, 20.0F);
        kaAnimationStrip* clip = makeClip({makeTrack({block}), makeTrack({makeBlock(0.0F, 40.0F)})});
        for (int i = 1; i < clips; ++i)
            clip = makeClip({clip});
        return clip;
    }

    kaAnimationUnit* block = nullptr;
};

TEST_P(DeepStretching, ReachesTheInnermostOfAnyDepth) {
    onSmallStack([this] {
        for (int clips : {1, 2, 3, 4, 6, 20, 100, 900}) {
            kaAnimationStrip* clip = make(clips);
            clip->moveBegin(GetParam().begin, true);
            clip->moveEnd(GetParam().end, true);
            EXPECT_EQ(spanOf(clip), Span(GetParam().begin, GetParam().end)) << clips;
            EXPECT_NEAR(block->getBegin(), GetParam().first, 1e-4F) << clips;
            EXPECT_NEAR(block->getEnd(), GetParam().last, 1e-4F) << clips;
            EXPECT_NEAR(curveOf(block)->getBegin(), GetParam().first, 1e-4F) << clips;
            EXPECT_NEAR(curveOf(block)->getEnd(), GetParam().last, 1e-4F) << clips;
            manager->destroyStrip(clip);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Spans, DeepStretching,
                         testing::Values(StretchRow{"as_it_is", 0.0F, 40.0F, 10.0F, 20.0F},
                                         StretchRow{"longer", 0.0F, 80.0F, 20.0F, 40.0F},
                                         StretchRow{"shorter", 0.0F, 30.0F, 7.5F, 15.0F},
                                         StretchRow{"both_ends", -40.0F, 120.0F, 0.0F, 40.0F},
                                         StretchRow{"sixths", 10.0F, 35.0F, 16.25F, 22.5F}),
                         [](const auto& row) { return std::string(row.param.name); });

/// The rule for each level as it stands, by a slow one of its own on plain spans.
struct Spanned {
    float begin, end;
    std::vector<Spanned> below;
};

void literalEnd(Spanned& object, float end);

void literalBegin(Spanned& object, float begin) {
    const float b = object.begin, e = object.end;
    const float f = (e - begin) / (e - b);
    object.begin = begin;
    for (Spanned& child : object.below) {
        const float cb = child.begin, ce = child.end;
        literalBegin(child, e - (e - cb) * f);
        literalEnd(child, e - (e - ce) * f);
    }
}

void literalEnd(Spanned& object, float end) {
    const float b = object.begin, e = object.end;
    const float f = (end - b) / (e - b);
    object.end = end;
    for (Spanned& child : object.below) {
        const float cb = child.begin, ce = child.end;
        literalEnd(child, (ce - b) * f + b);
        literalBegin(child, (cb - b) * f + b);
    }
}

TEST_F(DeepStretching, IsTheRuleLevelByLevel) {
    for (int clips : {1, 2, 5}) {
        kaAnimationStrip* clip = make(clips);
        Spanned literal{10.0F, 20.0F, {}};
        for (int i = 0; i < 2 * clips; ++i) { // the innermost clip and its tracks hold 0..40, too
            literal = {literal.begin, literal.end, {literal}};
            if (i >= 1)
                literal.begin = 0.0F, literal.end = 40.0F;
        }
        literal.begin = 0.0F, literal.end = 40.0F;
        clip->moveEnd(77.3F, false);
        clip->moveBegin(-13.9F, false);
        literalEnd(literal, 77.3F);
        literalBegin(literal, -13.9F);
        const Spanned* innermost = &literal;
        while (!innermost->below.empty())
            innermost = &innermost->below.front();
        const float tolerance = clips <= 2 ? 0.0F : 1e-4F;
        EXPECT_NEAR(block->getBegin(), innermost->begin, tolerance) << clips;
        EXPECT_NEAR(block->getEnd(), innermost->end, tolerance) << clips;
    }
}

} // namespace
