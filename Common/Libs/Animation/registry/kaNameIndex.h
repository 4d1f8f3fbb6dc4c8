#pragma once

#include "kaAnimationTypes.h"
#include "kaObjectName.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>

/// The ids of registered objects by name. Objects that have the same name stand in ascending id order.
///
/// Keys are too many for an entry each, and nearly all have one of the module's default names: of these only the
/// number and the smallest id are kept. After the key with that id has gone, the next look-up of the name takes a
/// walk over all objects.
///
/// Keeps a pointer to the text of each name until the name is erased.
class kaNameIndex {
  public:
    /// @throws std::bad_alloc, with nothing changed.
    void insert(const kaObjectName& name, bool isKey, kaUID id);
    void erase(const kaObjectName& name, bool isKey, kaUID id);
    /// The same for an object of which nobody can say any more whether it is a key.
    void eraseOfAnyType(const kaObjectName& name, kaUID id);

    /// Whether any object has the name. Cost: O(log n).
    bool contains(const std::string& name) const;

    /// The smallest id of an object with the name. Cost: O(log n), and that of `walk` where it is called.
    /// @param walk  answers with the smallest id of a key with one of the module's own names, which it is
    /// given; none when none is found.
    template <class Walk>
    std::optional<kaUID> smallest(const std::string& name, Walk&& walk) {
        const std::optional<kaUID> listed = smallestListed(name);
        Keys* keys = keysOf(name);
        if (!keys || keys->count == 0)
            return listed;
        if (!keys->smallest)
            keys->smallest = walk(name);
        return listed && keys->smallest ? std::min(listed, keys->smallest) : listed ? listed : keys->smallest;
    }

  private:
    using Entry = std::pair<const std::string*, kaUID>;
    struct Before {
        bool operator()(const Entry& a, const Entry& b) const;
    };
    /// The keys with one of the module's own names.
    struct Keys {
        std::size_t count = 0;
        std::optional<kaUID> smallest; ///< none while it is not known
    };

    std::optional<kaUID> smallestListed(const std::string& name) const;
    Keys* keysOf(const std::string& name);
    void eraseKey(const kaObjectName& name, kaUID id);

    std::set<Entry, Before> _listed; ///< all objects but the counted keys
    std::array<Keys, kaObjectName::OwnNames> _keys;
};
