#include "AllocationCount.h"
#include "kaOpenSGUtils.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class MessageBus : public testing::Test {
  protected:
    // A listener that writes `mark` into the log.
    kaMessageListener mark(std::string_view name, const std::string& mark) {
        return kaOpenSGUtils::addListener(name, [this, mark](auto&&...) { _log += mark; });
    }
    void send(std::string_view name) { kaOpenSGUtils::call(name, _message, 0); }

    std::string _log;
    kaMessage _message;
};

} // namespace

TEST_F(MessageBus, HandsOnNameMessageAndFlags) {
    std::string seen;
    const auto listener = kaOpenSGUtils::addListener("moved", [&](std::string_view name,
                                                                  const kaMessage& message, int flags) {
        seen = std::string(name) + ' ' + std::to_string(*message.get<int>("x")) + ' ' + std::to_string(flags);
    });
    _message.set("x", 7, true);
    kaOpenSGUtils::call("moved", _message, -3);
    EXPECT_EQ(seen, "moved 7 -3");
}

TEST_F(MessageBus, SendsAMessageUnderItsOwnName) {
    const auto listener = mark("moved", "a");
    kaOpenSGUtils::call(kaMessage("moved"), 0);
    kaOpenSGUtils::call(kaMessage("other"), 0);
    EXPECT_EQ(_log, "a");
}

TEST_F(MessageBus, CallsNamedListenersInOrderThenThoseOfEveryMessage) {
    const auto all = mark("", "*");
    const auto first = mark("moved", "1");
    const auto other = mark("turned", "t");
    const auto second = mark("moved", "2");
    send("moved");
    EXPECT_EQ(_log, "12*");
    send("unheard");
    EXPECT_EQ(_log, "12**");
    send("");
    EXPECT_EQ(_log, "12***");
}

TEST_F(MessageBus, ForgetsAListenerWithItsHandle) {
    auto kept = mark("moved", "k");
    {
        const auto scoped = mark("moved", "s");
        EXPECT_TRUE(scoped);
    }
    send("moved");
    EXPECT_EQ(_log, "k");
    kept.remove();
    EXPECT_FALSE(kept);
    kept.remove();
    send("moved");
    EXPECT_EQ(_log, "k");
    EXPECT_FALSE(kaOpenSGUtils::hasListeners("moved"));
}

TEST_F(MessageBus, MovesARegistrationWithItsHandle) {
    auto a = mark("moved", "a");
    auto b = mark("moved", "b");
    kaMessageListener moved = std::move(a);
    EXPECT_TRUE(moved);
    b = std::move(moved); // ends b's own
    send("moved");
    EXPECT_EQ(_log, "a");
    auto& self = b;
    b = std::move(self);
    send("moved");
    EXPECT_EQ(_log, "aa");
}

TEST_F(MessageBus, RegistersNothingForAnEmptyCallback) {
    const auto listener = kaOpenSGUtils::addListener("moved", nullptr);
    EXPECT_FALSE(listener);
    EXPECT_FALSE(kaOpenSGUtils::hasListeners("moved"));
    send("moved");
}

TEST_F(MessageBus, KnowsWhetherAnyoneListens) {
    EXPECT_FALSE(kaOpenSGUtils::hasListeners("moved"));
    const auto named = mark("moved", "n");
    EXPECT_TRUE(kaOpenSGUtils::hasListeners("moved"));
    EXPECT_FALSE(kaOpenSGUtils::hasListeners("turned"));
    const auto all = mark("", "*");
    EXPECT_TRUE(kaOpenSGUtils::hasListeners("turned"));
}

TEST_F(MessageBus, SparesAListenerRemovedEarlierInTheSameDelivery) {
    kaMessageListener second;
    kaMessageListener everything;
    const auto first = kaOpenSGUtils::addListener("moved", [&](auto&&...) {
        _log += '1';
        second.remove();
        everything.remove();
    });
    second = mark("moved", "2");
    everything = mark("", "*");
    const auto third = mark("moved", "3");
    send("moved");
    EXPECT_EQ(_log, "13");
}

TEST_F(MessageBus, SurvivesAListenerThatRemovesItselfAndWhatItHolds) {
    auto held = std::make_shared<int>(5);
    const std::weak_ptr<int> watched = held;
    kaMessageListener self;
    self = kaOpenSGUtils::addListener("moved", [&self, &log = _log, held](auto&&...) mutable {
        self.remove();
        log += std::to_string(*held); // still there: the callback runs on
        held.reset();
        log += 'x';
    });
    send("moved");
    send("moved");
    EXPECT_EQ(_log, "5x");
    EXPECT_EQ(watched.use_count(), 1); // this test's own
}

TEST_F(MessageBus, FreesARemovedCallbackAtOnce) {
    auto held = std::make_shared<int>(5);
    const std::weak_ptr<int> watched = held;
    auto listener = kaOpenSGUtils::addListener("moved", [held = std::move(held)](auto&&...) {});
    EXPECT_FALSE(watched.expired());
    listener.remove();
    EXPECT_TRUE(watched.expired());
}

TEST_F(MessageBus, LetsACallbackOwnAnotherRegistration) {
    auto inner = std::make_shared<kaMessageListener>(mark("moved", "i"));
    auto outer = kaOpenSGUtils::addListener("moved", [inner](auto&&...) {});
    inner.reset();
    send("moved");
    outer.remove(); // frees the callback, and with it the inner registration
    send("moved");
    EXPECT_EQ(_log, "i");
}

TEST_F(MessageBus, TellsANewListenerOfTheNextMessageOnly) {
    std::vector<kaMessageListener> added;
    const auto listener = kaOpenSGUtils::addListener("moved", [&](auto&&...) {
        _log += '|';
        for (int i = 0; i < 100; ++i) { // enough to make the list move
            added.push_back(mark(i % 2 == 0 ? "moved" : "", i < 2 ? "+" : ""));
        }
    });
    send("moved");
    EXPECT_EQ(_log, "|");
    _log.clear();
    send("moved");
    EXPECT_EQ(_log, "|++");
}

TEST_F(MessageBus, DeliversAMessageSentByAListenerInsideTheFirst) {
    const auto asker = kaOpenSGUtils::addListener("moved", [&](auto&&...) {
        _log += "(";
        send("turned");
        _log += ")";
    });
    const auto answerer = mark("turned", "t");
    const auto later = mark("moved", "m");
    send("moved");
    EXPECT_EQ(_log, "(t)m");
}

TEST_F(MessageBus, LetsAListenerSendTheMessageItHears) {
    int left = 3;
    const auto listener = kaOpenSGUtils::addListener("moved", [&](auto&&...) {
        _log += std::to_string(left);
        if (left-- > 0) {
            send("moved");
        }
    });
    send("moved");
    EXPECT_EQ(_log, "3210");
}

TEST_F(MessageBus, EndsListenersThatAnswerEachOtherForEver) {
    int calls = 0;
    const auto ping = kaOpenSGUtils::addListener("ping", [&](auto&&...) { ++calls, send("pong"); });
    const auto pong = kaOpenSGUtils::addListener("pong", [&](auto&&...) { ++calls, send("ping"); });
    send("ping");
    EXPECT_EQ(calls, 64);
    calls = 0;
    send("pong");
    EXPECT_EQ(calls, 64);
}

TEST_F(MessageBus, StaysWholeWhenAListenerThrows) {
    const auto thrower =
        kaOpenSGUtils::addListener("moved", [](auto&&...) { throw std::runtime_error("listener"); });
    const auto later = mark("moved", "l");
    const auto other = mark("turned", "t");
    for (int i = 0; i < 100; ++i) { // more often than messages may nest
        EXPECT_THROW(send("moved"), std::runtime_error);
    }
    send("turned");
    EXPECT_EQ(_log, "t");
}

TEST_F(MessageBus, DoesNotGrowWithListenersThatReplaceThemselves) {
    kaMessageListener listener;
    int calls = 0;
    kaMessageCallback replace = [&](auto&&...) {
        ++calls;
        listener = kaOpenSGUtils::addListener("moved", [&](auto&&... arguments) { replace(arguments...); });
    };
    replace({}, _message, 0);
    const auto allocationsOf = [&](int messages) {
        const std::size_t before = allocationCount();
        for (int i = 0; i < messages; ++i) {
            send("moved");
        }
        return allocationCount() - before;
    };
    allocationsOf(10);
    const std::size_t each = allocationsOf(1);
    EXPECT_EQ(allocationsOf(1000), 1000 * each); // a list that kept growing would have to move now and then
    EXPECT_EQ(calls, 1012);
}

/// Listeners come, go and hear as in a list that is looked through each time, however the bus tidies its
/// lists.
TEST_F(MessageBus, CallsWhoeverListensAfterManyHaveComeAndGone) {
    struct Listening {
        std::string name;
        std::string mark;
        kaMessageListener handle;
    };
    const std::string names[] = {"", "moved", "turned", "hidden"};
    std::vector<Listening> listening; // in order of registration
    std::mt19937 random(5);
    const auto expected = [&](const std::string& sent) {
        std::string log;
        for (const Listening& one : listening)
            log += one.name == sent ? one.mark : "";
        for (const Listening& one : listening)
            log += one.name.empty() ? one.mark : "";
        return log;
    };
    for (int step = 0; step < 3000; ++step) {
        const std::string& name = names[random() % 4];
        // Long spells in which more come than go, and the other way round.
        const bool comes = random() % 10 < (step / 500 % 2 == 0 ? 8U : 2U);
        if (comes || listening.empty()) {
            const std::string text = std::to_string(step) + ' ';
            listening.push_back({name, text, mark(name, text)});
        } else {
            listening.erase(listening.begin() + static_cast<std::ptrdiff_t>(random() % listening.size()));
        }
        if (step % 7 != 0 || name.empty())
            continue;
        _log.clear();
        send(name);
        ASSERT_EQ(_log, expected(name)) << "step " << step;
        ASSERT_EQ(kaOpenSGUtils::hasListeners(name), !_log.empty());
    }
}

TEST_F(MessageBus, AllocatesNothingToDeliver) {
    const auto busy = mark("something else", "");
    const std::size_t before = allocationCount();
    for (int i = 0; i < 100; ++i) {
        send("a name too long for a string to keep within itself");
    }
    EXPECT_EQ(allocationCount(), before);

    int calls = 0;
    const auto listener = kaOpenSGUtils::addListener("currentFrameChanged", [&calls](auto&&...) { ++calls; });
    const std::size_t listening = allocationCount();
    for (int i = 0; i < 100; ++i) {
        send("currentFrameChanged");
    }
    EXPECT_EQ(allocationCount(), listening);
    EXPECT_EQ(calls, 100);
}
