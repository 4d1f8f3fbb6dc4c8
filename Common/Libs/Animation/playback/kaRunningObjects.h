#pragma once

#include "kaAnimationTypes.h"
#include "kaWeak.h"

#include <cstdint>
#include <map>
#include <vector>

class kaAnimationObject;

/// The objects that play one by one, each under the id it had when it started. An object that has been freed
/// is in it no more.
class kaRunningObjects {
  public:
    using Map = std::map<kaUID, kaAnimationObject*>;

    /// Cost: a compare while nothing that had a weak reference has gone, else one for each object.
    const Map& map() const;
    std::vector<kaUID> ids() const;
    kaAnimationObject* find(kaUID id) const; ///< Null when none plays under that id.

    /// Enters an object under its id; an id that has an object keeps it.
    void insert(kaAnimationObject& object);
    void erase(kaUID id);
    void clear();

  private:
    mutable Map _objects;
    mutable std::map<kaUID, kaWeak<kaAnimationObject>> _references; ///< under the same ids
    mutable std::uint64_t _departures = 0; ///< at the last look for what has been freed
};
