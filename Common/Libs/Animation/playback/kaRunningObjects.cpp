#include "kaRunningObjects.h"

#include "kaAnimationObject.h"

const kaRunningObjects::Map& kaRunningObjects::map() const {
    if (_departures == kaWeakSlots::departures())
        return _objects;
    for (auto entry = _references.begin(); entry != _references.end();) {
        const auto current = entry++;
        if (!current->second) {
            _objects.erase(current->first);
            _references.erase(current);
            _order.reset();
        }
    }
    _departures = kaWeakSlots::departures();
    return _objects;
}

std::shared_ptr<const kaRunningObjects::Order> kaRunningObjects::order() const {
    map(); // takes out what has been freed
    if (!_order) {
        auto order = std::make_shared<Order>();
        order->reserve(_references.size());
        for (const auto& [id, object] : _references)
            order->push_back({id, object.get(), object});
        _order = std::move(order);
    }
    return _order;
}

/// Looks at one entry only: asked for each object of a tick in which others are freed.
kaAnimationObject* kaRunningObjects::find(kaUID id) const {
    const auto found = _references.find(id);
    return found != _references.end() ? found->second.get() : nullptr;
}

void kaRunningObjects::insert(kaAnimationObject& object) {
    const kaUID id = object.getId();
    if (find(id))
        return;
    erase(id); // what stood there has been freed
    _order.reset();
    const auto entry = _objects.emplace(id, &object).first;
    try {
        _references.emplace(id, object);
    } catch (...) {
        _objects.erase(entry);
        throw;
    }
}

void kaRunningObjects::erase(kaUID id) {
    if (_references.count(id) == 0)
        return;
    _order.reset();
    _objects.erase(id);
    _references.erase(id);
}

void kaRunningObjects::clear() {
    _order.reset();
    _objects.clear();
    _references.clear();
}
