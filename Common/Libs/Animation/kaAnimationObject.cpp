#include "kaAnimationObject.h"

#include "kaChange.h"
#include "kaObjectRegistry.h"
#include "kaTreeWalk.h"

// What an object is by itself. What it has below it and whom it tells of changes stands in
// kaAnimationObjectChildren.cpp, the curves and sequences below it in kaAnimationObjectCurves.cpp, what it
// fires in kaAnimationObjectTriggers.cpp.

// Plain state.

void kaAnimationObject::setBegin(float begin) {
    _begin = begin;
    noteChange(kaChange::Span);
}

void kaAnimationObject::setEnd(float end) {
    _end = end;
    noteChange(kaChange::Span);
}

void kaAnimationObject::setMaximum(float maximum) {
    _maximum = maximum;
    noteChange(kaChange::Values);
}

void kaAnimationObject::setMinimum(float minimum) {
    _minimum = minimum;
    noteChange(kaChange::Values);
}

/// Curves that a host has made name each other are switched once on the way down, and no further down than
/// curves ever name each other.
void kaAnimationObject::setActive(bool active) {
    constexpr std::size_t MostNamings = 24;
    static kaWalkPath path;
    const kaWalkLevel step(path, *this);
    if (step && path.size() <= MostNamings) {
        std::vector<kaUID> below(getCurveIDs().begin(), getCurveIDs().end());
        below.insert(below.end(), getSequenceIDs().begin(), getSequenceIDs().end());
        for (kaUID id : below) {
            kaAnimationObject* object = kaObjectRegistry::the().find(id);
            if (object && object != this)
                object->setActive(active);
        }
    }
    _active = active;
    noteChange(kaChange::Flags);
}

void kaAnimationObject::setPlaying(bool playing) {
    _playing = playing;
}

void kaAnimationObject::setReversePlay(bool reversePlay) {
    _reversePlay = reversePlay;
}

void kaAnimationObject::setRepeating(bool repeating) {
    _repeating = repeating;
    noteChange(kaChange::Flags);
}

void kaAnimationObject::setPausing(bool pausing) {
    _pausing = pausing;
}

void kaAnimationObject::setSelected(bool selected) {
    _selected = selected;
    noteChange(kaChange::Selection);
}

void kaAnimationObject::setLocked(bool locked) {
    _locked = locked;
}

void kaAnimationObject::setMotionBlur(bool motionBlur) {
    _motionBlur = motionBlur;
    noteChange(kaChange::Flags);
}

unsigned int kaAnimationObject::getTypeID() const {
    return _typeID;
}

float kaAnimationObject::getBegin() const {
    return _begin;
}

float kaAnimationObject::getEnd() const {
    return _end;
}

float kaAnimationObject::getMaximum() const {
    return _maximum;
}

float kaAnimationObject::getMinimum() const {
    return _minimum;
}

// Editing in time and containment: nothing here.

kaAnimationObject* kaAnimationObject::addObject(kaAnimationObject* object) {
    return object;
}

kaAnimationObject* kaAnimationObject::subObject(kaAnimationObject* object, bool /*destroy*/) {
    return object;
}

void kaAnimationObject::move(float /*offset*/, bool /*tellParent*/) {}
void kaAnimationObject::moveBegin(float /*begin*/, bool /*tellParent*/) {}
void kaAnimationObject::moveEnd(float /*end*/, bool /*tellParent*/) {}
void kaAnimationObject::trimBegin(float /*begin*/, bool /*tellParent*/) {}
void kaAnimationObject::trimEnd(float /*end*/, bool /*tellParent*/) {}
void kaAnimationObject::flip() {}
void kaAnimationObject::triggerLoop(float /*frame*/) {}
