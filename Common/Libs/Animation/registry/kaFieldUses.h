#pragma once

#include "kaAnimationTypes.h"

#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

/// The registered curves by the id of the field that they drive, whether or not that field exists. Optimised for
/// one curve a field; edits cost O(log n) for n curves of one field.
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
