#pragma once

#include "kaAnimationTypes.h"

#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

/// Which registered curves name which field, whether or not there is such a field. Made for many fields with
/// one curve each, but as sound for one field with all curves. Edits cost O(log n) for the n curves of the
/// field.
class kaFieldUses {
  public:
    /// @throws std::bad_alloc, with nothing changed.
    void insert(kaUID field, kaUID curve);
    void erase(kaUID field, kaUID curve);

    /// The curves that name a field, in ascending id order. Cost: what is found.
    std::vector<kaUID> curvesOf(kaUID field) const;

  private:
    struct Curves {
        kaUID only = 0;
        std::unique_ptr<std::set<kaUID>> several; ///< all of them, once there have been two
    };
    std::unordered_map<kaUID, Curves> _curves;
};
