#include "TimeFixture.h"

#include <algorithm>

namespace ka_test {

double TimeFixture::seconds = 0.0;
std::function<void()> TimeFixture::inCallback;
std::vector<std::string> TimeFixture::fired;
std::vector<Sent> TimeFixture::sent;

namespace {

double clockNow() {
    return TimeFixture::seconds;
}

/// Once: what a callback brings about may lead back into it.
void runInCallback() {
    const std::function<void()> action = std::exchange(TimeFixture::inCallback, nullptr);
    if (action)
        action();
}

} // namespace

void TimeFixture::onSequence(std::string name) {
    fired.push_back(std::move(name));
    runInCallback();
}

void TimeFixture::onTrigger() {
    runInCallback();
}

void TimeFixture::SetUp() {
    RegistryFixture::SetUp();
    seconds = 0.0;
    inCallback = nullptr;
    fired.clear();
    sent.clear();
    Controller::setTimeCB(&clockNow);
    Controller::setSeqCB(&onSequence);
    _listener =
        kaOpenSGUtils::addListener("", [](std::string_view name, const kaMessage& message, int /*flags*/) {
            sent.push_back({std::string(name), message});
        });
}

void TimeFixture::TearDown() {
    _listener.remove();
    inCallback = nullptr;
    RegistryFixture::TearDown();
}

void TimeFixture::start(Object* object) {
    controller->addWaitingObject(object);
    controller->enqueueWaitingObjects();
}

void TimeFixture::loopAt(double time) {
    seconds = time;
    controller->loop();
}

void TimeFixture::playLoopAt(double time) {
    seconds = time;
    controller->playLoop();
}

bool TimeFixture::isRunning(const Object* object) const {
    const auto& running = controller->getRunningObjects();
    return std::any_of(running.begin(), running.end(),
                       [object](const auto& entry) { return entry.second == object; });
}

std::size_t TimeFixture::count(const std::string& name) {
    return static_cast<std::size_t>(std::count_if(
        sent.begin(), sent.end(), [&name](const Sent& message) { return message.name == name; }));
}

float TimeFixture::valueOf(const kaAnimationCurve2D* curve) {
    return Manager::the()->getField(curve->getField())->value;
}

kaAnimationCurve2D* TimeFixture::curveOf(const Object* block) {
    return block->getCurves().at(0);
}

std::pair<float, float> TimeFixture::spanOf(const Object* object) {
    return {object->getBegin(), object->getEnd()};
}

} // namespace ka_test
