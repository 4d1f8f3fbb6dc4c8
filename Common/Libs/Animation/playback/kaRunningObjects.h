#pragma once

#include "kaAnimationTypes.h"

#include <map>
#include <unordered_map>
#include <vector>

class kaAnimationObject;

/// The objects that play one by one, each under the id it had when it started. Objects that are freed leave.
class kaRunningObjects {
  public:
    using Map = std::map<kaUID, kaAnimationObject*>;

    const Map& map() const { return _byID; }
    std::vector<kaUID> ids() const;
    kaAnimationObject* find(kaUID id) const;

    /// Enters an object under its id; an id that has an entry keeps it.
    void insert(kaAnimationObject& object);
    void erase(kaUID id);
    void clear();

    /// Called for every object that is about to be freed. Cost: nothing while none runs, else one look-up.
    void forget(const kaAnimationObject* object) {
        if (!_entries.empty())
            drop(object);
    }

  private:
    void drop(const kaAnimationObject* object);

    Map _byID;
    /// Under which ids each object runs: mostly its own, but also one that it had when it started.
    using Entries = std::unordered_multimap<const kaAnimationObject*, kaUID>;
    Entries _entries;
};
