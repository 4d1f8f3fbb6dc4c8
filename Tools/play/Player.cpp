#include "play/Player.h"

#include <kaAnimationController.h>
#include <kaAnimationObject.h>
#include <kaMotion/Text.h>
#include <kaOpenSGUtils.h>

namespace ka::tools {

using namespace motion;

Player* Player::_current = nullptr;

Player::Player(const PlayPlan& plan, PlayEvents events) : _events(std::move(events)) {
    _current = this;
    _listener = kaOpenSGUtils::addListener("", [this](std::string_view name, const kaMessage& message, int) {
        ++_counts[std::string(name)];
        if (_events.message)
            _events.message(std::string(name), message);
    });
    kaAnimationController::setSeqCB(&onSequence);
    if (plan.onTimeline || plan.objects.empty())
        startTogether(plan);
    else
        startAlone(*plan.objects.front(), plan);
}

Player::~Player() {
    kaAnimationController::the()->stopGlobal();
    kaAnimationController::the()->stop();
    kaAnimationController::setSeqCB(nullptr);
    _current = nullptr;
}

void Player::startTogether(const PlayPlan& plan) {
    std::vector<unsigned long long> ids;
    for (const kaAnimationObject* object : plan.objects)
        ids.push_back(object->getId());
    const float start = plan.reverse ? plan.end : plan.begin;
    kaAnimationController::the()->playGlobal(ids, plan.reverse, plan.repeat, plan.begin, plan.end, start);
}

void Player::startAlone(kaAnimationObject& object, const PlayPlan& plan) {
    _alone = object.getId();
    object.setReversePlay(plan.reverse);
    if (plan.repeat)
        object.setRepeating(true);
    object.setCustomBegin(plan.begin);
    object.setCustomEnd(plan.end);
    object.setCustomStart(plan.reverse ? plan.end : plan.begin);
    object.setUseCustomRange(true);
    kaAnimationController::the()->addWaitingObject(&object);
    // At once, so that the first tick already plays.
    kaAnimationController::the()->enqueueWaitingObjects();
}

bool Player::tick() {
    ++_ticks;
    if (_alone == 0) {
        kaAnimationController::the()->playLoop();
        return kaAnimationController::isPlaying();
    }
    kaAnimationController::the()->loop();
    return !kaAnimationController::the()->getRunningObjects().empty();
}

float Player::frame() {
    return kaAnimationController::getCurrentFrame();
}

void Player::onSequence(std::string name) {
    if (_current != nullptr && _current->_events.sequence)
        _current->_events.sequence(utf8FromLatin1(name));
}

} // namespace ka::tools
