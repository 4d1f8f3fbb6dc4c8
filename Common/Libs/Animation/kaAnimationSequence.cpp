#include "kaAnimationSequence.h"

#include "kaObjectRegistry.h"
#include "kaPlainOutput.h"

#include <array>
#include <cstdio>

namespace {

void printMove(float offset) {
    kaPlainOutput() << "moving sequence by offset " << std::fixed << static_cast<double>(offset) << '\n';
}

/// The address as the C library writes it, which has a word of its own for null.
void printParent(const kaAnimationObject* parent) {
    std::array<char, 32> address{};
    std::snprintf(address.data(), address.size(), "%p", static_cast<const void*>(parent));
    kaPlainOutput() << "telling parent " << address.data() << '\n';
}

} // namespace

kaAnimationSequence::kaAnimationSequence(const std::string& name, kaUID id) {
    _id = id != 0 ? id : kaObjectRegistry::the().createUID();
    setName(name);
    insertSequenceID(_id);
}

kaAnimationSequence::kaAnimationSequence(kaAnimationSequence& source)
    : kaAnimationSequence(source.getName(), 0) {
    _armed = source._armed;
    setBegin(source.getBegin());
    setEnd(source.getEnd());
    setActive(source.isActive());
    setPlaying(source.isPlaying());
    setRepeating(source.isRepeating());
    setParent(source.getParentObject() ? source.getParent() : 0);
}

void kaAnimationSequence::move(float offset, bool tellParent) {
    printMove(offset);
    setBegin(getBegin() + offset);
    setEnd(getEnd() + offset);
    if (tellParent)
        printParent(getParentObject());
    tellParentMoved(tellParent);
}

bool kaAnimationSequence::changeBegin(float begin, bool tellParent) {
    if (!beginsBefore(begin, getEnd()))
        return false;
    setBegin(begin);
    tellParentMoved(tellParent);
    return true;
}

bool kaAnimationSequence::changeEnd(float end, bool tellParent) {
    if (!endsAfter(end, getBegin()))
        return false;
    setEnd(end);
    tellParentMoved(tellParent);
    return true;
}

void kaAnimationSequence::moveBegin(float begin, bool tellParent) {
    changeBegin(begin, tellParent);
}

void kaAnimationSequence::moveEnd(float end, bool tellParent) {
    changeEnd(end, tellParent);
}

void kaAnimationSequence::trimBegin(float begin, bool tellParent) {
    if (changeBegin(begin, tellParent))
        _trimmed = true;
}

void kaAnimationSequence::trimEnd(float end, bool tellParent) {
    if (changeEnd(end, tellParent))
        _trimmed = true;
}

void kaAnimationSequence::triggerLoop(float frame) {
    fireTriggers(frame);
}
