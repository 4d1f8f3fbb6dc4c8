#include "kaAliveGuard.h"

kaAliveGuard* kaAliveGuard::_newest = nullptr;

kaAliveGuard::kaAliveGuard(kaAnimationObject& object) : _object(&object), _older(_newest) {
    _newest = this;
}

kaAliveGuard::~kaAliveGuard() {
    _newest = _older;
}

void kaAliveGuard::forget(const kaAnimationObject& object) {
    for (kaAliveGuard* guard = _newest; guard; guard = guard->_older)
        if (guard->_object == &object)
            guard->_object = nullptr;
}
