#include <algorithm>
#include <gtest/gtest.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>
#include <random>

namespace {

/// A block with that many curves, most of them beginning at one of a few frames, and the ids in the order
/// that a stable sort of the whole list gives after every move.
struct Block {
    explicit Block(std::size_t count, unsigned int seed) : random(seed) {
        for (std::size_t i = 0; i < count; ++i) {
            kaAnimationCurve2D* curve = manager->createCurve2D(nullptr, "Curve", 0, false);
            // Only a curve with a key has an extent.
            manager->createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
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

    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationUnit* unit = manager->createUnit(0ULL);
    std::vector<kaUID> ids;
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

INSTANTIATE_TEST_SUITE_P(Sizes, ChildOrder, testing::Values(2, 3, 129, 400));

} // namespace
