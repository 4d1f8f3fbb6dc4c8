#include "kaConnections.h"

#include "kaAnimationController.h"
#include "kaAnimationObject.h"

void kaConnections::add(kaUID id, kaAnimationObject& target, AnimationAction action) {
    if (_objects.emplace(id, std::make_pair(&target, action)).second)
        _byTarget[&target].push_back(id);
}

void kaConnections::disconnect(kaAnimationObject* target) {
    const auto found = _byTarget.find(target);
    if (found == _byTarget.end())
        return;
    for (kaUID id : found->second)
        _objects.at(id).first = nullptr;
    _byTarget.erase(found);
}

void kaConnections::execute(const std::vector<kaUID>& ids) {
    const kaNesting level(_depth);
    if (!level)
        return;
    for (kaUID id : ids) {
        const auto object = _objects.find(id);
        if (object != _objects.end()) {
            if (object->second.first)
                act(*object->second.first, object->second.second);
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
