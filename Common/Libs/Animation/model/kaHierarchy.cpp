#include "kaHierarchy.h"

#include "kaObjectClass.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

namespace {

/// Levels below `object` down to a leaf, itself included; counted no further than one too many. Goes down one
/// level at a time, through tracks and clips, each of which is met once and stands in `seen` then.
unsigned int heightOf(const kaAnimationObject& object, std::unordered_set<const kaAnimationObject*>& seen) {
    if (const unsigned int known = kaObjectClass::of(object).height())
        return known;
    unsigned int height = 1;
    std::vector<const kaAnimationObject*> level{&object};
    std::vector<const kaAnimationObject*> below;
    seen.insert(&object);
    for (unsigned int above = 1; !level.empty() && above <= KA_MAX_DEPTH; ++above) {
        height = std::max(height, above);
        for (const kaAnimationObject* container : level)
            for (const kaAnimationObject* child : container->getObjects()) {
                if (const unsigned int known = kaObjectClass::of(*child).height())
                    height = std::max(height, above + known);
                else if (seen.insert(child).second)
                    below.push_back(child);
            }
        level.swap(below);
        below.clear();
    }
    return level.empty() ? height : KA_MAX_DEPTH + 1;
}

} // namespace

unsigned int kaHierarchy::depthOf(const kaAnimationObject* object) {
    return forEachUpwards(object, [](const kaAnimationObject&) { return true; });
}

bool kaHierarchy::isAtOrAbove(const kaAnimationObject& ancestor, const kaAnimationObject& object) {
    bool found = false;
    forEachUpwards(&object, [&ancestor, &found](const kaAnimationObject& level) {
        found = &level == &ancestor;
        return !found;
    });
    return found;
}

bool kaHierarchy::mayAdopt(const kaAnimationObject& parent, const kaAnimationObject& object,
                           unsigned int levelsBetween) {
    bool isAbove = false;
    const unsigned int depth = forEachUpwards(&parent, [&object, &isAbove](const kaAnimationObject& level) {
        isAbove = &level == &object;
        return !isAbove;
    });
    if (isAbove || depth >= KA_MAX_DEPTH)
        return false;
    // A track that stands in two lists has one parent only, so the other lies below it without being above.
    std::unordered_set<const kaAnimationObject*> below;
    const unsigned int height = heightOf(object, below);
    return below.count(&parent) == 0 && depth + levelsBetween + height <= KA_MAX_DEPTH;
}
