#include "kaAnimationContainer.h"

#include "kaWeak.h"
#include "kaChildList.h"
#include "kaDescent.h"
#include "kaObjectStore.h"
#include "kaSnapshot.h"

#include <algorithm>
#include <cmath>

namespace {

/// Editing never leads out to the host, so all kinds of edits share one path.
kaDescent::Path& editPath() {
    static kaDescent::Path path;
    return path;
}

/// Levels of containers, this one included, that are stretched.
constexpr unsigned int MaxStretchLevels = 12;

/// Levels of containers from `object` down, counted no further than `limit` and so through a ring, too.
unsigned int levelsOf(const kaAnimationObject& object, unsigned int limit) {
    const unsigned int type = object.getTypeID();
    if (type == KA_TYPE_UNIT)
        return 1;
    if (limit == 0 || (type != KA_TYPE_STREAK && type != KA_TYPE_STRIP))
        return 0;
    unsigned int below = 0;
    for (const kaAnimationObject* child : object.getObjects()) {
        below = std::max(below, levelsOf(*child, limit - 1));
        if (below + 1 >= limit)
            break;
    }
    return below + 1;
}

kaDescent::Path& triggerPath() {
    static kaDescent::Path path;
    return path;
}

} // namespace

kaAnimationContainer::kaAnimationContainer(const std::string& name, kaUID id) {
    _id = id != 0 ? id : kaObjectRegistry::the().createUID();
    setName(name);
}

kaAnimationContainer::kaAnimationContainer(const kaAnimationContainer& source)
    : kaAnimationContainer(source.getName(), 0) {
    kaAnimationObject::setBegin(source.getBegin());
    kaAnimationObject::setEnd(source.getEnd());
    setRangeBegin(source.getRangeBegin());
    setRangeEnd(source.getRangeEnd());
    kaAnimationObject::setActive(source.isActive());
    kaAnimationObject::setPlaying(source.isPlaying());
    kaAnimationObject::setRepeating(source.isRepeating());
    kaAnimationObject::setMotionBlur(source.isMotionBlur());
    _flipped = source.isFlipped();
    _trimmed = source.isTrimmed();
    setParent(source.getParentObject() ? source.getParent() : 0);
}

void kaAnimationContainer::addCopies(const kaAnimationContainer& source,
                                     kaAnimationObject* (*copy)(kaAnimationObject& child)) {
    const kaDescent descent(editPath(), source);
    if (!descent)
        return;
    for (kaAnimationObject* child : source.getObjects())
        addObject(copy(*child));
}

// Children.

kaAnimationObject* kaAnimationContainer::adopt(kaAnimationObject& child) {
    if (!mayAdopt(child))
        return nullptr;
    child.setParent(getId());
    children().append(child);
    updateBy(&child, ADD_OBJECT, true);
    return &child;
}

kaAnimationObject* kaAnimationContainer::release(kaAnimationObject& child, bool destroy) {
    if (!hasChildren() || !children().remove(child))
        return nullptr;
    child.setParent(0);
    updateBy(&child, SUB_OBJECT, true);
    if (!destroy)
        return &child;
    kaObjectStore::destroy(&child);
    return nullptr;
}

bool kaAnimationContainer::isLaidOut(const kaAnimationObject& object) {
    const unsigned int type = object.getTypeID();
    return type == KA_TYPE_UNIT || type == KA_TYPE_STRIP || type == KA_TYPE_SEQUENCE;
}

bool kaAnimationContainer::reaches(const kaAnimationObject& /*child*/) const {
    return true;
}

std::vector<kaAnimationObject*> kaAnimationContainer::reachedChildren() const {
    std::vector<kaAnimationObject*> reached = getObjects();
    reached.erase(std::remove_if(reached.begin(), reached.end(),
                                 [this](const kaAnimationObject* child) { return !reaches(*child); }),
                  reached.end());
    return reached;
}

// Flags.

template <class Set>
void kaAnimationContainer::setBelow(Set&& set) {
    const kaDescent descent(editPath(), *this);
    if (!descent)
        return;
    for (kaAnimationObject* child : getObjects())
        set(*child);
}

void kaAnimationContainer::setActive(bool active) {
    setBelow([active](kaAnimationObject& child) { child.setActive(active); });
    kaAnimationObject::setActive(active);
}

void kaAnimationContainer::setRepeating(bool repeating) {
    setBelow([repeating](kaAnimationObject& child) { child.setRepeating(repeating); });
    kaAnimationObject::setRepeating(repeating);
}

void kaAnimationContainer::setMotionBlur(bool motionBlur) {
    setBelow([motionBlur](kaAnimationObject& child) { child.setMotionBlur(motionBlur); });
    kaAnimationObject::setMotionBlur(motionBlur);
}

// Editing in time.

template <class Edit>
void kaAnimationContainer::editChildren(Edit&& edit) {
    for (kaAnimationObject* child : reachedChildren())
        edit(*child);
    children().settle();
}

void kaAnimationContainer::move(float offset, bool tellParent) {
    const kaDescent descent(editPath(), *this);
    if (!hasChildren() || !descent)
        return;
    editChildren([offset](kaAnimationObject& child) { child.move(offset, false); });
    updateBy(this, MOVE_OBJECT, tellParent);
}

/// Asked once, of the container that the host stretches.
bool kaAnimationContainer::isTooDeepToStretch() const {
    const bool isOutermost = editPath().size() == 1;
    return isOutermost && levelsOf(*this, MaxStretchLevels + 1) > MaxStretchLevels;
}

/// A factor that is no number, as a span of zero gives, would leave none to the children either.
void kaAnimationContainer::moveBegin(float begin, bool tellParent) {
    const kaDescent descent(editPath(), *this);
    if (!hasChildren() || !descent || isTooDeepToStretch())
        return;
    const float end = getEnd();
    const float factor = (end - begin) / (end - getBegin());
    setBegin(begin);
    if (std::isfinite(factor)) {
        editChildren([end, factor](kaAnimationObject& child) {
            const float childBegin = child.getBegin();
            const float childEnd = child.getEnd();
            child.moveBegin(end - (end - childBegin) * factor, false);
            child.moveEnd(end - (end - childEnd) * factor, false);
        });
    }
    tellParentMoved(tellParent);
}

void kaAnimationContainer::moveEnd(float end, bool tellParent) {
    const kaDescent descent(editPath(), *this);
    if (!hasChildren() || !descent || isTooDeepToStretch())
        return;
    const float begin = getBegin();
    const float factor = (end - begin) / (getEnd() - begin);
    setEnd(end);
    if (std::isfinite(factor)) {
        editChildren([begin, factor](kaAnimationObject& child) {
            const float childBegin = child.getBegin();
            const float childEnd = child.getEnd();
            child.moveEnd((childEnd - begin) * factor + begin, false);
            child.moveBegin((childBegin - begin) * factor + begin, false);
        });
    }
    tellParentMoved(tellParent);
}

void kaAnimationContainer::trimBegin(float /*begin*/, bool /*tellParent*/) {}

void kaAnimationContainer::trimEnd(float /*end*/, bool /*tellParent*/) {}

void kaAnimationContainer::flip() {
    const kaDescent descent(editPath(), *this);
    if (!hasChildren() || !descent)
        return;
    const float begin = getBegin();
    const float end = getEnd();
    editChildren([begin, end](kaAnimationObject& child) {
        child.flip();
        child.move((end - child.getEnd()) + begin - child.getBegin(), false);
    });
    _flipped = !_flipped;
    updateBy(this, MOVE_OBJECT, false);
}

// Triggers.

void kaAnimationContainer::triggerLoop(float frame) {
    const kaDescent descent(triggerPath(), *this);
    if (!hasChildren() || !descent)
        return;
    const kaWeak<kaAnimationObject> self(*this);
    fireTriggers(frame);
    if (self)
        kaSnapshot<kaAnimationObject>(reachedChildren()).visit([frame](kaAnimationObject& child) {
            child.triggerLoop(frame);
        });
}
