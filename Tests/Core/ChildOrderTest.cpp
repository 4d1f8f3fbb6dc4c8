#include <algorithm>
#include <gtest/gtest.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>
#include <map>
#include <random>
#include <string>

namespace {

/// A block with that many curves, most of them beginning at one of a few frames, and the ids in the order
/// that a stable sort of the whole list gives after every move.
struct Block {
    explicit Block(std::size_t count, unsigned int seed) : random(seed) {
        for (std::size_t i = 0; i < count; ++i) {
            kaAnimationCurve2D* curve = manager->createCurve2D(nullptr, "Curve", 0, false);
            // Only a curve with a key has an extent.
            manager->createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
            keys[curve->getId()] = curve->getChildIDs();
            curve->setBegin(anyFrame());
            // Most of them bound the block by their begin alone.
            const auto size = static_cast<float>(i);
            curve->setEnd(100.0F + size);
            curve->setMaximum(size);
            curve->setMinimum(-size);
            unit->addObject(curve);
            ids.push_back(curve->getId());
            sortLiterally();
        }
    }
    ~Block() { manager->destroyUnit(unit); }

    /// One that many share; now and then one before all of them, which takes the block's begin along.
    float anyFrame() {
        const int shared = std::uniform_int_distribution<int>(0, 9)(random);
        const bool isLone = std::uniform_int_distribution<int>(0, 9)(random) == 0;
        return static_cast<float>(isLone ? -std::uniform_int_distribution<int>(1, 1000)(random) : shared);
    }

    void sortLiterally() {
        std::stable_sort(ids.begin(), ids.end(), &kaAnimationObject::compareObjectsByBegin);
    }

    float firstBegin() const { return manager->getObject(ids.front())->getBegin(); }

    kaAnimationObject* any() {
        return manager->getObject(ids[std::uniform_int_distribution<std::size_t>(0, ids.size() - 1)(random)]);
    }

    std::vector<kaUID> keysOf(const kaAnimationObject& curve) const { return keys.at(curve.getId()); }

    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationUnit* unit = manager->createUnit(0ULL);
    std::vector<kaUID> ids;
    std::map<kaUID, std::vector<kaUID>> keys; ///< of each curve
    std::mt19937 random;
};

class ChildOrder : public testing::TestWithParam<std::size_t> {};

TEST_P(ChildOrder, OneChildMovedAmongEqualsStandsWhereAStableSortLeavesIt) {
    Block block(GetParam(), 5);
    ASSERT_EQ(block.unit->getChildIDs(), block.ids);
    for (int i = 0; i < 500; ++i) {
        block.any()->setBegin(block.anyFrame());
        block.unit->updateBy(block.any(), kaAnimationObject::MOVE_OBJECT, false);
        block.sortLiterally();
        ASSERT_EQ(block.unit->getChildIDs(), block.ids) << "after move " << i;
        ASSERT_EQ(block.unit->getBegin(), block.firstBegin()) << "after move " << i;
    }
}

TEST_P(ChildOrder, SeveralChildrenMovedBetweenTwoNoticesStandWhereAStableSortLeavesThem) {
    Block block(GetParam(), 6);
    for (int i = 0; i < 200; ++i) {
        for (int moves = i % 4; moves >= 0; --moves)
            block.any()->setBegin(block.anyFrame());
        block.unit->updateBy(block.any(), kaAnimationObject::MOVE_OBJECT, false);
        block.sortLiterally();
        ASSERT_EQ(block.unit->getChildIDs(), block.ids) << "after round " << i;
        ASSERT_EQ(block.unit->getBegin(), block.firstBegin()) << "after round " << i;
    }
}

TEST_P(ChildOrder, AChildThatLeavesWhileItStandsOutOfOrderLeavesTheRestInOrder) {
    Block block(GetParam(), 7);
    while (block.ids.size() > 1) {
        kaAnimationObject* moved = block.any();
        moved->setBegin(block.anyFrame());
        kaAnimationObject* gone = block.ids.size() % 2 == 0 ? moved : block.any();
        block.ids.erase(std::find(block.ids.begin(), block.ids.end(), gone->getId()));
        block.unit->subObject(gone, true);
        block.sortLiterally();
        ASSERT_EQ(block.unit->getChildIDs(), block.ids);
        ASSERT_EQ(block.unit->getBegin(), block.firstBegin());
    }
}

/// What the children with children of their own span, each of them looked at.
kaExtent spanOfChildren(const kaAnimationObject& parent) {
    kaExtent span;
    for (const kaAnimationObject* child : parent.getObjects()) {
        if (!child->hasChildren())
            continue;
        span.begin = std::min(span.begin, child->getBegin());
        span.end = std::max(span.end, child->getEnd());
        span.maximum = std::max(span.maximum, child->getMaximum());
        span.minimum = std::min(span.minimum, child->getMinimum());
    }
    return span;
}

void expectToSpanItsChildren(const kaAnimationObject& parent) {
    const kaExtent span = spanOfChildren(parent);
    ASSERT_EQ(parent.getBegin(), span.begin);
    ASSERT_EQ(parent.getEnd(), span.end);
    ASSERT_EQ(parent.getMaximum(), span.maximum);
    ASSERT_EQ(parent.getMinimum(), span.minimum);
}

TEST_P(ChildOrder, WhicheverSideOfAChildMovesItsParentSpansAllChildren) {
    Block block(GetParam(), 8);
    std::uniform_real_distribution<float> anywhere(-2000.0F, 2000.0F);
    std::uniform_int_distribution<int> oneInFive(0, 4);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE("after move " + std::to_string(i));
        kaAnimationObject* child = block.any();
        const int what = oneInFive(block.random);
        if (what == 0)
            child->setBegin(anywhere(block.random));
        else if (what == 1)
            child->setEnd(anywhere(block.random));
        else if (what == 2)
            child->setMaximum(anywhere(block.random));
        else if (what == 3)
            child->setMinimum(anywhere(block.random));
        else // a curve without keys has no extent; one that gets its key back has the former
            child->setChildIDs(child->hasChildren() ? std::vector<kaUID>() : block.keysOf(*child));
        block.unit->updateBy(child, kaAnimationObject::MOVE_OBJECT, false);
        ASSERT_NO_FATAL_FAILURE(expectToSpanItsChildren(*block.unit));
    }
}

TEST_P(ChildOrder, WhereverAKeyMovesItsCurveSpansAllKeys) {
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = manager->createCurve2D(nullptr, "Curve", 0, false);
    std::vector<kaControlPoint2D*> keys;
    for (std::size_t i = 0; i < GetParam(); ++i)
        keys.push_back(manager->createPoint2D(static_cast<float>(i), static_cast<float>(i % 7), 0));
    curve->setPoints(keys);
    std::mt19937 random(9);
    std::uniform_int_distribution<std::size_t> any(0, keys.size() - 1);
    // Few places, so that keys that bound the curve do so together with others, or leave and come back.
    std::uniform_int_distribution<int> place(-20, 20);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE("after move " + std::to_string(i));
        kaControlPoint2D* key = keys[any(random)];
        key->setPosition(static_cast<float>(place(random)), static_cast<float>(place(random)));
        key->setSelected(i % 3 == 0);
        curve->updateBy(key, kaAnimationObject::MOVE_OBJECT, false);
        ASSERT_NO_FATAL_FAILURE(expectToSpanItsChildren(*curve));
        const auto objects = curve->getObjects();
        ASSERT_EQ(objects.size(), keys.size());
        const auto first =
            std::find_if(objects.begin(), objects.end(), [key](const kaAnimationObject* object) {
                return object->getBegin() == key->getBegin();
            });
        ASSERT_EQ(curve->findPoint(key->getBegin()), *first);
        ASSERT_TRUE(std::is_sorted(objects.begin(), objects.end(), [](const auto* a, const auto* b) {
            return a->getBegin() < b->getBegin();
        }));
    }
    manager->destroyCurve2D(curve);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ChildOrder, testing::Values(2, 3, 129, 400));

} // namespace
