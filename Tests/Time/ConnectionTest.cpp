#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

std::vector<int> called;

template <int Mark>
void call() {
    called.push_back(Mark);
}

class Connection : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        called.clear();
        source = makeBlock(0.0F, 10.0F);
        target = makeBlock(20.0F, 30.0F);
    }

    kaUID lastConnection() const { return source->getTriggers().rbegin()->second; }

    kaAnimationUnit* source = nullptr;
    kaAnimationUnit* target = nullptr;
};

TEST_F(Connection, IsRefusedWithoutSourceOrTarget) {
    EXPECT_FALSE(manager->createConnection(nullptr, Manager::TriggerBegin, target, Manager::ActionPlay));
    EXPECT_FALSE(manager->createConnection(source, Manager::TriggerBegin, nullptr, Manager::ActionPlay));
    EXPECT_FALSE(manager->createConnection(nullptr, Manager::TriggerBegin, &call<1>));
    EXPECT_FALSE(manager->createConnection(source, Manager::TriggerBegin, nullptr));
    EXPECT_THAT(source->getTriggers(), IsEmpty());
}

TEST_F(Connection, DrawsItsIdFromTheOneGenerator) {
    const unsigned long long drawn = manager->createUID();
    EXPECT_TRUE(manager->createConnection(source, Manager::TriggerEnd, target, Manager::ActionStop));
    const kaUID id = lastConnection();
    EXPECT_EQ(id, drawn * 1664525ULL + 1013904223ULL);
    EXPECT_THAT(source->getTriggers(), ElementsAre(Pair(Manager::TriggerEnd, id)));
    EXPECT_EQ(manager->getObjectConnections().at(id),
              std::make_pair(static_cast<Object*>(target), Manager::ActionStop));

    EXPECT_TRUE(manager->createConnection(source, Manager::TriggerBegin, &call<1>));
    const kaUID second = source->getTriggers().begin()->second;
    EXPECT_EQ(second, id * 1664525ULL + 1013904223ULL);
    EXPECT_EQ(manager->getCallbackConnections().at(second), &call<1>);
}

TEST_F(Connection, TakesNoIdThatAnObjectAFieldOrAConnectionHas) {
    constexpr unsigned long long Seed = 99;
    IdSequence ids(Seed);
    manager->createUnit(ids.next());
    manager->createField(ids.next());
    const unsigned long long free = ids.next();
    Manager::random(Seed);
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionPlay);
    EXPECT_EQ(lastConnection(), free);
    const unsigned long long next = ids.next();
    Manager::random(Seed);
    manager->createConnection(source, Manager::TriggerBegin, &call<1>);
    EXPECT_EQ(lastConnection(), next);
}

TEST_F(Connection, StartsAnActiveTargetAtTheEndOfTheNextTick) {
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionPlay);
    source->triggerLoop(0.0F);
    EXPECT_THAT(controller->getWaitingObjects(), ElementsAre(target));
    EXPECT_FALSE(isRunning(target));
    loopAt(0.0);
    EXPECT_THAT(controller->getWaitingObjects(), IsEmpty());
    EXPECT_TRUE(isRunning(target));
}

TEST_F(Connection, StartsNoInactiveTarget) {
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionPlay);
    target->setActive(false);
    source->triggerLoop(0.0F);
    EXPECT_THAT(controller->getWaitingObjects(), IsEmpty());
}

TEST_F(Connection, StopsARunningTargetAtOnceAndLeavesItsFlags) {
    start(target);
    target->setPlaying(true);
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionStop);
    source->triggerLoop(0.0F);
    EXPECT_FALSE(isRunning(target));
    EXPECT_TRUE(target->isPlaying());
    source->setPlaying(false);
    source->triggerLoop(0.0F); // it does not run any more
    EXPECT_FALSE(isRunning(target));
}

TEST_F(Connection, DoesNothingForAnyOtherAction) {
    start(target);
    manager->createConnection(source, Manager::TriggerBegin, target,
                              static_cast<Manager::AnimationAction>(7));
    source->triggerLoop(0.0F);
    EXPECT_TRUE(isRunning(target));
    EXPECT_THAT(controller->getWaitingObjects(), IsEmpty());
}

TEST_F(Connection, RunsThoseOfOneTriggerInTheOrderTheyWereMade) {
    manager->createConnection(source, Manager::TriggerBegin, &call<3>);
    manager->createConnection(source, Manager::TriggerEnd, &call<9>);
    manager->createConnection(source, Manager::TriggerBegin, &call<1>);
    manager->createConnection(source, Manager::TriggerBegin, &call<2>);
    source->trigger(Manager::TriggerBegin);
    EXPECT_THAT(called, ElementsAre(3, 1, 2));
}

TEST_F(Connection, IdsAreCarriedOutInTheOrderGivenAndUnknownOnesPassedOver) {
    manager->createConnection(source, Manager::TriggerBegin, &call<1>);
    const kaUID one = lastConnection();
    manager->createConnection(source, Manager::TriggerBegin, &call<2>);
    const kaUID two = lastConnection();
    manager->executeTriggers({two, 4711, one, two});
    EXPECT_THAT(called, ElementsAre(2, 1, 2));
    manager->executeTriggers({});
    EXPECT_EQ(called.size(), 3U);
}

TEST_F(Connection, StaysWithoutTargetWhenTheTargetIsDestroyed) {
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionPlay);
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionStop);
    manager->createConnection(source, Manager::TriggerBegin, &call<1>);
    const std::size_t entries = manager->getObjectConnections().size();
    manager->destroyUnit(target);
    EXPECT_EQ(manager->getObjectConnections().size(), entries);
    for (const auto& trigger : source->getTriggers()) {
        const auto connections = manager->getObjectConnections();
        const auto found = connections.find(trigger.second);
        EXPECT_TRUE(found == connections.end() || !found->second.first);
    }
    source->trigger(Manager::TriggerBegin);
    EXPECT_THAT(controller->getWaitingObjects(), IsEmpty());
    EXPECT_THAT(called, ElementsAre(1));
}

TEST_F(Connection, OfADestroyedSourceStays) {
    manager->createConnection(source, Manager::TriggerBegin, target, Manager::ActionPlay);
    const kaUID id = lastConnection();
    manager->destroyUnit(source);
    manager->executeTriggers({id});
    EXPECT_THAT(controller->getWaitingObjects(), ElementsAre(target));
}

TEST_F(Connection, MayLeadBackToItsSource) {
    manager->createConnection(source, Manager::TriggerEnd, source, Manager::ActionPlay);
    start(source);
    loopAt(0.0);
    EXPECT_TRUE(source->isPlaying());
    loopAt(0.5); // frame 12.5: over, and queued again
    EXPECT_TRUE(isRunning(source));
    EXPECT_FALSE(source->isPlaying());
    loopAt(1.0);
    EXPECT_EQ(source->getStartTime(), 1.0F) << "timed anew";
}

} // namespace
