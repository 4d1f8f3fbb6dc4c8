#include "TimeFixture.h"

using namespace ka_test;

namespace {

kaAnimationObject* own = nullptr;
kaUID otherID = 0;

kaAnimationController& player() {
    return *kaAnimationController::the();
}

/// What takes an object out of the running ones in the very tick in which it ends.
struct Row {
    const char* name;
    void (*atTheEnd)();
};

/// A block over [0, 100] that plays 10..20 of itself.
class CustomRangeEnds : public TimeFixture, public testing::WithParamInterface<Row> {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        block = makeBlock(0.0F, 100.0F);
        block->setCustomBegin(10.0F);
        block->setCustomEnd(20.0F);
        block->setCustomStart(10.0F);
        block->setUseCustomRange(true);
        own = block;
    }

    kaAnimationUnit* block = nullptr;
};

TEST_P(CustomRangeEnds, ClearsTheFlagOfAnObjectThatHasEnded) {
    manager->createConnection(block, Manager::TriggerEnd, GetParam().atTheEnd);
    start(block);
    loopAt(0.0);
    EXPECT_TRUE(block->isUseCustomRange());
    loopAt(1.0);
    EXPECT_FALSE(isRunning(block));
    EXPECT_FALSE(block->isUseCustomRange());
    EXPECT_EQ(block->getPlayEnd(), 100.0F);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, CustomRangeEnds,
    testing::Values(Row{"nothing", [] {}}, Row{"stop", [] { player().stop(); }},
                    Row{"reset", [] { player().reset(); }}, Row{"reset_object", [] { player().reset(own); }},
                    Row{"goto_end", [] { player().gotoEnd(own); }},
                    Row{"taken_out", [] { player().subRunningObject(own->getId()); }},
                    Row{"another_id", [] { kaAnimationManager::the()->setID(4711, own); }},
                    Row{"timeline", [] { player().playGlobal(own->getId(), false, false, 0, 1, 0); }}),
    [](const auto& row) { return std::string(row.param.name); });

using CustomRange = CustomRangeEnds;

TEST_F(CustomRange, ClearsTheFlagOfOneThatStopsItself) {
    manager->createConnection(block, Manager::TriggerEnd, block, Manager::ActionStop);
    start(block);
    loopAt(0.0);
    loopAt(1.0);
    EXPECT_FALSE(block->isUseCustomRange());
}

TEST_F(CustomRange, ClearsTheFlagOfOneThatAnotherStopsLaterInTheTick) {
    kaAnimationUnit* later = makeBlock(0.0F, 5.0F);
    if (later->getId() < block->getId())
        manager->setID(block->getId() + 1, later);
    manager->createConnection(later, Manager::TriggerEnd, [] { player().stop(); });
    start(block);
    start(later);
    loopAt(0.0);
    loopAt(1.0);
    EXPECT_FALSE(block->isUseCustomRange());
}

TEST_F(CustomRange, StaysWithOneThatIsStoppedBeforeItsEnd) {
    start(block);
    loopAt(0.0);
    loopAt(0.2);
    controller->stop();
    loopAt(1.0);
    EXPECT_TRUE(block->isUseCustomRange());
}

TEST_F(CustomRange, ForgetsWhoIsDestroyedAtItsEnd) {
    otherID = block->getId();
    manager->createConnection(block, Manager::TriggerEnd,
                              [] { kaAnimationManager::the()->destroyObject(own); });
    start(block);
    loopAt(0.0);
    loopAt(1.0);
    EXPECT_EQ(manager->getObject(otherID), nullptr);
    EXPECT_TRUE(controller->getRunningObjects().empty());
}

} // namespace
