#include "kaWatchedObjects.h"

#include <algorithm>
#include <iterator>
#include <utility>

kaWatchedObjects* kaWatchedObjects::_newest = nullptr;

kaWatchedObjects::kaWatchedObjects(const std::vector<kaAnimationObject*>& objects) : _older(_newest) {
    std::vector<kaAnimationObject*> present;
    std::copy_if(objects.begin(), objects.end(), std::back_inserter(present),
                 [](const kaAnimationObject* object) { return object != nullptr; });
    _objects.assign(std::move(present));
    _newest = this;
}

kaWatchedObjects::~kaWatchedObjects() {
    _newest = _older;
}

void kaWatchedObjects::forget(const kaAnimationObject& object) {
    for (kaWatchedObjects* list = _newest; list; list = list->_older)
        list->_objects.forget(&object);
}
