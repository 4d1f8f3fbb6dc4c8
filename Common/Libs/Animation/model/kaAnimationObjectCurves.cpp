#include "kaAnimationCurve2D.h"
#include "kaAnimationSequence.h"
#include "kaObjectGroup.h"
#include "kaObjectStore.h"

// The curves and sequences below an object. Apart from the base itself, which does not know its classes.

void kaAnimationObject::setRecursiveSequences(const std::vector<kaAnimationSequence*>& sequences) {
    std::set<kaUID> ids;
    for (const kaAnimationSequence* sequence : sequences)
        if (sequence)
            ids.insert(sequence->getId());
    setSequenceIDs(ids);
}

const std::vector<kaAnimationCurve2D*>& kaAnimationObject::resolvedCurves() const {
    static const std::vector<kaAnimationCurve2D*> none;
    if (!_group || _group->curves.empty())
        return none;
    Group& owned = *_group;
    const std::uint64_t epoch = kaObjectRegistry::the().epoch();
    if (owned.resolvedEpoch != epoch || owned.resolvedRevision != owned.curvesRevision) {
        owned.resolved.clear();
        for (kaUID id : owned.curves)
            if (kaAnimationCurve2D* curve = kaObjectStore::find<kaAnimationCurve2D>(id))
                owned.resolved.push_back(curve);
        owned.resolvedEpoch = epoch;
        owned.resolvedRevision = owned.curvesRevision;
    }
    return owned.resolved;
}

std::vector<kaAnimationCurve2D*> kaAnimationObject::getCurves() const {
    return resolvedCurves();
}

std::vector<kaAnimationSequence*> kaAnimationObject::getSequencesRecursive() const {
    std::vector<kaAnimationSequence*> sequences;
    for (kaUID id : getSequenceIDs())
        if (kaAnimationSequence* sequence = kaObjectStore::find<kaAnimationSequence>(id))
            sequences.push_back(sequence);
    return sequences;
}
