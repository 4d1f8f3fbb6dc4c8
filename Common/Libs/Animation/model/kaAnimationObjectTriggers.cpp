#include "kaAnimationObject.h"
#include "kaObjectStore.h"
#include "kaWeak.h"

// What an object fires as it is played.

const kaAnimationObject::TriggerMap& kaAnimationObject::getTriggers() const {
    return playback().triggers;
}

void kaAnimationObject::setTriggers(const TriggerMap& triggers) {
    editPlayback().triggers = triggers;
}

void kaAnimationObject::addTrigger(Trigger trigger, kaUID connection) {
    editPlayback().triggers.emplace(trigger, connection);
}

void kaAnimationObject::trigger(Trigger trigger) {
    const auto range = getTriggers().equal_range(trigger);
    std::vector<kaUID> connections;
    for (auto it = range.first; it != range.second; ++it)
        connections.push_back(it->second);
    if (!connections.empty() && kaObjectStore::hooks.fire)
        kaObjectStore::hooks.fire(connections);
}

void kaAnimationObject::fireTriggers(float frame) {
    const float begin = getPlayBegin();
    const float end = getPlayEnd();
    const kaWeak<kaAnimationObject> self(*this);
    if (begin <= frame && !_playing) {
        trigger(kaConnectionTypes::TriggerBegin);
        if (!self)
            return;
        setPlaying(true);
    }
    if (end < frame && _playing) {
        trigger(kaConnectionTypes::TriggerEnd);
        if (self)
            setPlaying(false);
    }
}
