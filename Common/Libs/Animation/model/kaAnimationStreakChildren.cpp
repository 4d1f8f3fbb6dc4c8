#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaObjectClass.h"

// The children of a track by class. Apart from the track itself, which clips know.

template <class Object>
std::vector<Object*> kaAnimationStreak::childrenOf() const {
    std::vector<Object*> found;
    for (kaAnimationObject* child : getObjects())
        if (auto* object = kaObjectCast<Object>(child))
            found.push_back(object);
    return found;
}

std::vector<kaAnimationUnit*> kaAnimationStreak::getUnits() const {
    return childrenOf<kaAnimationUnit>();
}

std::vector<kaAnimationStrip*> kaAnimationStreak::getStrips() const {
    return childrenOf<kaAnimationStrip>();
}

std::vector<kaAnimationSequence*> kaAnimationStreak::getSequences() const {
    return childrenOf<kaAnimationSequence>();
}
