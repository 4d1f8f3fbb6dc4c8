#include "kaAnimationUnit.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaFieldStore.h"
#include "kaObjectStore.h"

namespace {

bool isCurve(const kaAnimationObject* object) {
    return kaObjectCast<const kaAnimationCurve2D>(object) != nullptr;
}

} // namespace

kaAnimationUnit::kaAnimationUnit(const std::string& name, kaUID id) : kaAnimationContainer(name, id) {}

kaAnimationUnit::kaAnimationUnit(kaAnimationUnit& source)
    : kaAnimationContainer(source), _nodeID(source._nodeID) {
    addCopies(source);
}

kaAnimationObject* kaAnimationUnit::copyOf(kaAnimationObject& child) const {
    return isCurve(&child) ? kaObjectStore::duplicate(static_cast<kaAnimationCurve2D*>(&child)) : nullptr;
}

kaAnimationObject* kaAnimationUnit::addObject(kaAnimationObject* object) {
    if (!isCurve(object) || !adopt(*object))
        return nullptr;
    const kaUID fieldID = static_cast<kaAnimationCurve2D*>(object)->getField();
    const kaAnimationField* field = kaFieldStore::find(fieldID);
    if (_nodeID == 0 && field)
        _nodeID = static_cast<unsigned int>(field->nodeID);
    return object;
}

kaAnimationObject* kaAnimationUnit::subObject(kaAnimationObject* object, bool destroy) {
    return isCurve(object) ? release(*object, destroy) : nullptr;
}

void kaAnimationUnit::moveBegin(float begin, bool tellParent) {
    if (hasChildren() && !beginsBefore(begin, getEnd()))
        setBegin(begin);
    else
        kaAnimationContainer::moveBegin(begin, tellParent);
}

void kaAnimationUnit::moveEnd(float end, bool tellParent) {
    if (hasChildren() && !endsAfter(end, getBegin()))
        setEnd(end);
    else
        kaAnimationContainer::moveEnd(end, tellParent);
}

void kaAnimationUnit::trimBegin(float begin, bool tellParent) {
    if (!hasChildren() || !beginsBefore(begin, getEnd()))
        return;
    setBegin(begin);
    _trimmed = true;
    tellParentMoved(tellParent);
}

void kaAnimationUnit::trimEnd(float end, bool tellParent) {
    if (!hasChildren() || !endsAfter(end, getBegin()))
        return;
    setEnd(end);
    _trimmed = true;
    tellParentMoved(tellParent);
}

void kaAnimationUnit::triggerLoop(float frame) {
    if (hasChildren())
        fireTriggers(frame);
}
