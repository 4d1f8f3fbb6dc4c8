#include "kaConnections.h"

#include "kaAnimationController.h"
#include "kaAnimationObject.h"

void kaConnections::add(kaUID id, kaAnimationObject& target, AnimationAction action) {
    _objects.emplace(id, std::make_pair(kaWeak<kaAnimationObject>(target), action));
}

kaConnections::ObjectMap kaConnections::objects() const {
    ObjectMap objects;
    for (const auto& [id, connection] : _objects)
        objects.emplace_hint(objects.end(), id, std::make_pair(connection.first.get(), connection.second));
    return objects;
}

void kaConnections::execute(const std::vector<kaUID>& ids) {
    const kaReentryGuard level(_calls);
    if (!level)
        return;
    for (kaUID id : ids) {
        const auto object = _objects.find(id);
        if (object != _objects.end()) {
            if (kaAnimationObject* target = object->second.first.get())
                act(*target, object->second.second);
            continue;
        }
        const auto function = _functions.find(id);
        if (function != _functions.end() && function->second)
            function->second();
    }
}

void kaConnections::act(kaAnimationObject& target, AnimationAction action) {
    kaAnimationController* controller = kaAnimationController::the();
    if (action == ActionPlay && target.isActive())
        controller->addWaitingObject(&target);
    else if (action == ActionStop)
        controller->subRunningObject(target.getId());
}
