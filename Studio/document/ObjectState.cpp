#include "ObjectState.h"

#include <cstring>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaControlPoint2D.h>
#include <tuple>

namespace ka::studio {

namespace {

/// A flag of an object and the bit that stands for it. Setters of the base class are called as such: they
/// reach no child, which has a state of its own.
struct Flag {
    bool (kaAnimationObject::*get)() const;
    void (*set)(kaAnimationObject& object, bool on);
};

const Flag Flags[] = {
    {&kaAnimationObject::isActive, [](kaAnimationObject& o, bool on) { o.kaAnimationObject::setActive(on); }},
    {&kaAnimationObject::isReversePlay,
     [](kaAnimationObject& o, bool on) { o.kaAnimationObject::setReversePlay(on); }},
    {&kaAnimationObject::isRepeating,
     [](kaAnimationObject& o, bool on) { o.kaAnimationObject::setRepeating(on); }},
    {&kaAnimationObject::isPausing,
     [](kaAnimationObject& o, bool on) { o.kaAnimationObject::setPausing(on); }},
    {&kaAnimationObject::isFlipped, [](kaAnimationObject& o, bool on) { o.setFlipped(on); }},
    {&kaAnimationObject::isTrimmed, [](kaAnimationObject& o, bool on) { o.setTrimmed(on); }},
    {&kaAnimationObject::isLocked, [](kaAnimationObject& o, bool on) { o.kaAnimationObject::setLocked(on); }},
    {&kaAnimationObject::isInternal, [](kaAnimationObject& o, bool on) { o.setInternal(on); }},
    {&kaAnimationObject::isMotionBlur,
     [](kaAnimationObject& o, bool on) { o.kaAnimationObject::setMotionBlur(on); }},
    {&kaAnimationObject::isUseCustomRange, [](kaAnimationObject& o, bool on) { o.setUseCustomRange(on); }},
};

std::uint16_t flagsOf(const kaAnimationObject& object) {
    std::uint16_t bits = 0, bit = 1;
    for (const Flag& flag : Flags) {
        bits = static_cast<std::uint16_t>(bits | ((object.*flag.get)() ? bit : 0));
        bit = static_cast<std::uint16_t>(bit << 1);
    }
    return bits;
}

void applyFlags(std::uint16_t bits, kaAnimationObject& object) {
    std::uint16_t bit = 1;
    for (const Flag& flag : Flags) {
        if ((object.*flag.get)() != ((bits & bit) != 0))
            flag.set(object, (bits & bit) != 0);
        bit = static_cast<std::uint16_t>(bit << 1);
    }
}

/// The same bits: values that are no numbers are equal to themselves, and the two zeros differ.
bool same(float a, float b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool same(const osg::Pnt2f& a, const osg::Pnt2f& b) {
    return same(a[0], b[0]) && same(a[1], b[1]);
}

bool same(const osg::Color3f& a, const osg::Color3f& b) {
    return same(a[0], b[0]) && same(a[1], b[1]) && same(a[2], b[2]);
}

HandleState handleState(const kaControlPoint2D* handle) {
    HandleState state;
    if (handle == nullptr)
        return state;
    state.id = handle->getId();
    state.parent = handle->getParent();
    state.position = handle->getPosition();
    state.isThere = true;
    state.isRegistered = kaAnimationManager::the()->getPoint2D(state.id) == handle;
    state.isTangent = handle->isTangent();
    return state;
}

void applyHandle(const HandleState& state, kaControlPoint2D* handle) {
    if (handle == nullptr || !state.isThere)
        return;
    if (state.isRegistered && kaAnimationManager::the()->getPoint2D(state.id) != handle)
        kaAnimationManager::the()->setID(state.id, handle);
    else if (!state.isRegistered)
        handle->setId(state.id);
    handle->setParent(state.parent);
    handle->setTangent(state.isTangent);
    handle->setPosition(state.position);
}

void applyCustomRange(const ObjectState& state, kaAnimationObject& object) {
    if (!same(object.getCustomBegin(), state.customBegin))
        object.setCustomBegin(state.customBegin);
    if (!same(object.getCustomEnd(), state.customEnd))
        object.setCustomEnd(state.customEnd);
    if (!same(object.getCustomStart(), state.customStart))
        object.setCustomStart(state.customStart);
}

void applyClass(const ObjectState& state, kaAnimationObject& object) {
    kaAnimationManager* manager = kaAnimationManager::the();
    if (kaAnimationCurve2D* curve = manager->getCurve2D(object.getId())) {
        curve->setField(state.field);
        curve->setColor(state.color);
    } else if (kaAnimationUnit* block = manager->getUnit(object.getId())) {
        block->setNodeID(state.number);
    } else if (kaAnimationStreak* track = manager->getStreak(object.getId())) {
        track->setIndex(state.number);
    } else if (kaAnimationSequence* sequence = manager->getSequence(object.getId())) {
        sequence->setArmed(state.armed);
    }
}

} // namespace

bool HandleState::operator==(const HandleState& o) const {
    return std::tie(id, parent, isThere, isRegistered, isTangent) ==
               std::tie(o.id, o.parent, o.isThere, o.isRegistered, o.isTangent) &&
           same(position, o.position);
}

bool KeyState::operator==(const KeyState& o) const {
    return std::tie(id, parent, in, out, tangentType, lengthMode, flags) ==
               std::tie(o.id, o.parent, o.in, o.out, o.tangentType, o.lengthMode, o.flags) &&
           same(position, o.position);
}

bool ObjectState::operator==(const ObjectState& o) const {
    return std::tie(id, parent, type, name, flags, children, curves, sequences, triggers, field, number,
                    armed) == std::tie(o.id, o.parent, o.type, o.name, o.flags, o.children, o.curves,
                                       o.sequences, o.triggers, o.field, o.number, o.armed) &&
           same(begin, o.begin) && same(end, o.end) && same(minimum, o.minimum) && same(maximum, o.maximum) &&
           same(customBegin, o.customBegin) && same(customEnd, o.customEnd) &&
           same(customStart, o.customStart) && same(color, o.color);
}

bool FieldState::operator==(const FieldState& o) const {
    return std::tie(id, fcID, nodeID, name, attribute, valuePos, dirty) ==
           std::tie(o.id, o.fcID, o.nodeID, o.name, o.attribute, o.valuePos, o.dirty);
}

KeyState stateOf(const kaControlPoint2D& key) {
    KeyState state;
    state.id = key.getId();
    state.parent = key.getParent();
    state.position = key.getPosition();
    state.in = handleState(key.getInTangent());
    state.out = handleState(key.getOutTangent());
    state.tangentType = key.getTangentType();
    state.lengthMode = key.getTangentLengthMode();
    state.flags = flagsOf(key);
    return state;
}

ObjectState stateOf(const kaAnimationObject& object) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    ObjectState state;
    state.id = object.getId();
    state.parent = object.getParent();
    state.type = object.getTypeID();
    state.name = object.getName();
    state.begin = object.getBegin();
    state.end = object.getEnd();
    state.minimum = object.getMinimum();
    state.maximum = object.getMaximum();
    state.customBegin = object.getCustomBegin();
    state.customEnd = object.getCustomEnd();
    state.customStart = object.getCustomStart();
    state.flags = flagsOf(object);
    state.children = object.getChildIDs();
    state.curves = object.getCurveIDs();
    state.sequences = object.getSequenceIDs();
    state.triggers = object.getTriggers();
    if (const kaAnimationCurve2D* curve = manager->getCurve2D(state.id)) {
        state.field = curve->getField();
        state.color = curve->getColor();
    } else if (const kaAnimationUnit* block = manager->getUnit(state.id)) {
        state.number = block->getNodeID();
    } else if (const kaAnimationStreak* track = manager->getStreak(state.id)) {
        state.number = track->getIndex();
    } else if (const kaAnimationSequence* sequence = manager->getSequence(state.id)) {
        state.armed = sequence->isArmed();
    }
    return state;
}

FieldState stateOf(const kaAnimationField& field) {
    return {field.getId(),   field.fcID,     field.nodeID, field.name,
            field.attribute, field.valuePos, field.dirty,  field.value};
}

void create(const KeyState& state) {
    kaAnimationManager* manager = kaAnimationManager::the();
    if (!state.in.isRegistered && !state.out.isRegistered) {
        manager->createPoint2D(state.position[0], state.position[1], state.id);
        return;
    }
    // Only a copy's handles are registered, and they keep that when they are given other ids.
    kaControlPoint2D* original = manager->createPoint2D(state.position[0], state.position[1], 0);
    manager->setID(state.id, manager->duplicatePoint2D(original));
    manager->destroyPoint2D(original);
}

void create(const ObjectState& state) {
    kaAnimationManager* manager = kaAnimationManager::the();
    switch (state.type) {
    case KA_TYPE_CURVE:
        manager->createCurve2D(manager->getField(state.field), state.name, state.id, false);
        break;
    case KA_TYPE_UNIT:
        manager->createUnit(state.name, state.id);
        break;
    case KA_TYPE_STREAK:
        manager->createStreak(state.name, state.id);
        break;
    case KA_TYPE_STRIP:
        manager->createStrip(state.name, state.id);
        break;
    default:
        manager->createSequence(state.name, state.id);
        break;
    }
}

void create(const FieldState& state) {
    kaAnimationManager::the()->createField(state.id)->value = state.value;
}

void apply(const KeyState& state, kaControlPoint2D& key) {
    key.setParent(state.parent);
    key.setPosition(state.position);
    applyHandle(state.in, key.getInTangent());
    applyHandle(state.out, key.getOutTangent());
    key.setTangentType(state.tangentType);
    key.setTangentLengthMode(state.lengthMode);
    applyFlags(state.flags, key);
}

void apply(const ObjectState& state, kaAnimationObject& object) {
    // Without curves and sequences no flag reaches anybody else.
    object.setCurveIDs({});
    object.setSequenceIDs({});
    applyFlags(state.flags, object);
    object.setName(state.name);
    object.setParent(state.parent);
    if (object.getChildIDs() != state.children)
        object.setChildIDs(state.children);
    object.setCurveIDs(state.curves);
    object.setSequenceIDs(state.sequences);
    object.setTriggers(state.triggers);
    applyCustomRange(state, object);
    applyClass(state, object);
    object.kaAnimationObject::setBegin(state.begin);
    object.kaAnimationObject::setEnd(state.end);
    object.kaAnimationObject::setMinimum(state.minimum);
    object.kaAnimationObject::setMaximum(state.maximum);
}

void apply(const FieldState& state, kaAnimationField& field) {
    field.fcID = state.fcID;
    field.nodeID = state.nodeID;
    field.name = state.name;
    field.attribute = state.attribute;
    field.valuePos = state.valuePos;
    field.dirty = state.dirty;
}

} // namespace ka::studio
