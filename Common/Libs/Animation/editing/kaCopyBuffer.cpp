#include "kaCopyBuffer.h"

#include <algorithm>
#include <iterator>

void kaCopyBuffer::append(kaAnimationObject& object) {
    if (_places.count(&object) > 0)
        return;
    _objects.push_back(nullptr); // an empty place does no harm should the next line fail
    _places.emplace(&object, _objects.size() - 1);
    _objects.back() = &object;
}

std::vector<kaAnimationObject*> kaCopyBuffer::objects() const {
    std::vector<kaAnimationObject*> present;
    present.reserve(_places.size());
    std::copy_if(_objects.begin(), _objects.end(), std::back_inserter(present),
                 [](const kaAnimationObject* object) { return object != nullptr; });
    return present;
}

void kaCopyBuffer::clear() {
    _objects.clear();
    _places.clear();
}

void kaCopyBuffer::vacate(kaAnimationObject* object) {
    const auto found = _places.find(object);
    if (found == _places.end())
        return;
    _objects[found->second] = nullptr;
    _places.erase(found);
}
