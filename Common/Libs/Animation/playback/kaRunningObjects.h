#pragma once

#include "kaAnimationTypes.h"
#include "kaWeak.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class kaAnimationObject;

/// The objects that play one by one, each under the id it had when it started. An object that has been freed
/// is in it no more.
class kaRunningObjects {
  public:
    using Map = std::map<kaUID, kaAnimationObject*>;

    /// Cost: a compare while nothing that had a weak reference has gone, else one for each object.
    const Map& map() const;
    kaAnimationObject* find(kaUID id) const; ///< Null when none plays under that id.

    /// What plays, to be gone through while objects come and go.
    struct Entry {
        kaUID id;
        const void* address; ///< of the object when it started: to be fetched, not to be read
        kaWeak<kaAnimationObject> object;
    };
    using Order = std::vector<Entry>;
    /// In ascending order of ids. Cost: none while nothing has been entered or taken out.
    std::shared_ptr<const Order> order() const;
    /// What plays under the id of an entry of that order now; null when nothing does. Cost: a few compares
    /// while nothing has been entered or taken out since.
    kaAnimationObject* find(const Order& order, std::size_t place) const {
        return &order == _order.get() ? order[place].object.get() : find(order[place].id);
    }

    /// Enters an object under its id; an id that has an object keeps it.
    void insert(kaAnimationObject& object);
    void erase(kaUID id);
    void clear();

  private:
    mutable Map _objects;
    mutable std::map<kaUID, kaWeak<kaAnimationObject>> _references; ///< under the same ids
    mutable std::uint64_t _departures = 0;       ///< at the last look for what has been freed
    mutable std::shared_ptr<const Order> _order; ///< null where it is to be made anew
};
