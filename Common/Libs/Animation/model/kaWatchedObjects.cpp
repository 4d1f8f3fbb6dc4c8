#include "kaWatchedObjects.h"

#include <utility>

kaWatchedObjects* kaWatchedObjects::_newest = nullptr;

kaWatchedObjects::kaWatchedObjects(std::vector<kaAnimationObject*> objects)
    : _objects(std::move(objects)), _present(_objects.begin(), _objects.end()), _older(_newest) {
    _present.erase(nullptr);
    _newest = this;
}

kaWatchedObjects::~kaWatchedObjects() {
    _newest = _older;
}

void kaWatchedObjects::forget(kaAnimationObject* object) {
    for (kaWatchedObjects* list = _newest; list; list = list->_older)
        list->_present.erase(object);
}
