#include "TimeFixture.h"

using namespace ka_test;

namespace {

constexpr int Deep = 64;        ///< levels that a host may count on
constexpr int MostCalls = 1000; ///< of one that calls itself for ever

int calls = 0;
std::vector<kaAnimationObject*> chain;
std::vector<kaAnimationSequence*> both;

/// Callbacks that call in again, each from within the one before.
class NestedCallback : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        calls = 0;
        chain.clear();
        both.clear();
    }
    void TearDown() override {
        Controller::setCurrentFrameTimeLineCB(nullptr);
        TimeFixture::TearDown();
    }

    /// Where the next callback goes on; null at the end of the chain.
    static Object* next() {
        ++calls;
        return static_cast<std::size_t>(calls) < chain.size() ? chain[static_cast<std::size_t>(calls)]
                                                              : nullptr;
    }
};

TEST_F(NestedCallback, OfTriggersReachesSixtyFourLevels) {
    for (int i = 0; i < Deep; ++i) {
        chain.push_back(makeBlock(0.0F, 10.0F));
        manager->createConnection(chain.back(), Manager::TriggerBegin, [] {
            if (Object* object = next())
                object->triggerLoop(0.0F);
        });
    }
    chain.front()->triggerLoop(0.0F);
    EXPECT_EQ(calls, Deep);
    for (const Object* object : chain)
        EXPECT_TRUE(object->isPlaying());
}

TEST_F(NestedCallback, OfSequencesReachesSixtyFourLevels) {
    for (int i = 0; i < Deep; ++i)
        chain.push_back(makeTrack({makeSequence("s" + std::to_string(i), 0.0F, 10.0F)}));
    Controller::setSeqCB([](std::string name) {
        fired.push_back(std::move(name));
        if (Object* object = next())
            Controller::the()->evaluateObject(object, 5.0F, false);
    });
    controller->evaluateObject(chain.front(), 5.0F, false);
    ASSERT_EQ(fired.size(), static_cast<std::size_t>(Deep));
    EXPECT_EQ(fired.back(), "s63");
}

TEST_F(NestedCallback, OfEditorsThatJumpReachesSixtyFourLevels) {
    for (int i = 0; i < Deep; ++i)
        chain.push_back(makeBlock(0.0F, 10.0F));
    Controller::setCurrentFrameTimeLineCB([](float) {
        if (Object* object = next())
            Controller::the()->gotoGlobalBegin(object);
    });
    controller->gotoGlobalBegin(chain.front());
    EXPECT_EQ(calls, Deep);
}

TEST_F(NestedCallback, ThatCallsItselfForEverComesToAnEnd) {
    static Object* self = nullptr;
    self = makeBlock(0.0F, 10.0F);
    both = {makeSequence("only", 0.0F, 10.0F)};
    manager->createConnection(self, Manager::TriggerBegin, [] {
        ++calls;
        self->triggerLoop(0.0F);
    });
    Controller::setSeqCB([](std::string) {
        ++calls;
        Controller::the()->evaluateSequences(both, 5.0F);
    });
    Controller::setCurrentFrameTimeLineCB([](float) {
        ++calls;
        Controller::the()->gotoGlobalBegin(self);
    });
    const std::vector<std::function<void()>> ways{[] { self->triggerLoop(0.0F); },
                                                  [this] { controller->evaluateSequences(both, 5.0F); },
                                                  [this] { controller->gotoGlobalEnd(self); }};
    for (const auto& way : ways) {
        calls = 0;
        way();
        EXPECT_GE(calls, Deep);
        EXPECT_LT(calls, MostCalls);
    }
}

/// Two calls from each call: a hundred levels would be more calls than can be made.
TEST_F(NestedCallback, ThatMultipliesComesToAnEnd) {
    both = {makeSequence("a", 0.0F, 10.0F), makeSequence("b", 0.0F, 10.0F)};
    Controller::setSeqCB([](std::string) {
        ++calls;
        Controller::the()->evaluateSequences(both, 5.0F);
    });
    for (int again = 0; again < 2; ++again) {
        calls = 0;
        controller->evaluateSequences(both, 5.0F);
        EXPECT_GT(calls, 60000) << "the second time as the first";
        EXPECT_LT(calls, 300000);
    }
}

} // namespace
