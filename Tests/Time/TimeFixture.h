#pragma once

#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaOpenSGUtils.h"

#include <functional>
#include <string>
#include <vector>

namespace ka_test {

/// A message as a host gets it.
struct Sent {
    std::string name;
    kaMessage message;
};

/// An empty module with a clock that the test sets and a host that notes every message and fired sequence.
class TimeFixture : public RegistryFixture {
  public:
    /// The clock, in seconds.
    static double seconds;
    /// What the next fired sequence, connection function or message does besides being noted; may be empty.
    static std::function<void()> inCallback;
    /// Names of the sequences that fired, in order.
    static std::vector<std::string> fired;
    static std::vector<Sent> sent;

    /// For `setSeqCB` and `createConnection`.
    static void onSequence(std::string name);
    static void onTrigger();

  protected:
    using Object = kaAnimationObject;
    using Manager = kaAnimationManager;
    using Controller = kaAnimationController;

    void SetUp() override;
    void TearDown() override;

    /// Has an object play by itself from the next tick on.
    void start(Object* object);
    /// Sets the clock and ticks.
    void loopAt(double time);
    void playLoopAt(double time);

    bool isRunning(const Object* object) const;
    static std::size_t count(const std::string& name);
    /// The values of the messages of that name, by key, in order.
    template <class Value>
    static std::vector<Value> values(const std::string& name, const std::string& key) {
        std::vector<Value> found;
        for (const Sent& message : sent)
            if (message.name == name)
                if (const Value* value = message.message.get<Value>(key))
                    found.push_back(*value);
        return found;
    }

    /// What evaluation stored last in the curve's field.
    static float valueOf(const kaAnimationCurve2D* curve);
    /// The only curve of a block.
    static kaAnimationCurve2D* curveOf(const Object* block);
    static std::pair<float, float> spanOf(const Object* object);

    Manager* manager = Manager::the();
    Controller* controller = Controller::the();

  private:
    kaMessageListener _listener;
};

using Span = std::pair<float, float>;

} // namespace ka_test
