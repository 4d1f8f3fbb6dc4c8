#include "ContainerEdits.h"

#include <QCoreApplication>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>

namespace ka::studio {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Edits", text);
}

kaAnimationManager* manager() {
    return kaAnimationManager::the();
}

kaAnimationObject* find(kaUID id) {
    return manager()->getObject(id);
}

kaAnimationStreak* trackOf(const kaAnimationObject& object) {
    return manager()->getStreak(object.getParent());
}

bool isLaidOut(const kaAnimationObject& object) {
    const unsigned int type = object.getTypeID();
    return type == KA_TYPE_UNIT || type == KA_TYPE_STRIP || type == KA_TYPE_SEQUENCE;
}

/// A copy of what tracks lay out, under ids of its own.
kaAnimationObject* copyOf(kaAnimationObject& object) {
    return object.getTypeID() == KA_TYPE_SEQUENCE
               ? manager()->duplicateSequence(manager()->getSequence(object.getId()))
               : manager()->duplicateObject(&object);
}

/// Moves an object in time; a sequence by its ends, for it has no keys that move.
void shift(kaAnimationObject& object, float frames) {
    if (object.getTypeID() != KA_TYPE_SEQUENCE) {
        object.move(frames, true);
        return;
    }
    const float end = object.getEnd() + frames;
    object.setBegin(object.getBegin() + frames);
    object.setEnd(end);
    if (kaAnimationObject* parent = object.getParentObject())
        parent->updateBy(&object, kaAnimationObject::MOVE_OBJECT, true);
}

/// A step that makes one object. @return its id; 0 where none was made.
template <class Make>
kaUID make(Document& document, const QString& name, const Scope& scope, Make&& makeObject) {
    Gesture gesture(document, scope);
    const kaAnimationObject* made = makeObject();
    const kaUID id = made != nullptr ? made->getId() : 0;
    gesture.includeNew(id);
    return gesture.commit(name) ? id : 0;
}

/// A change of one object's span, refused where it would leave nothing or lie over a neighbour.
template <class Change>
bool changeSpan(Document& document, const QString& name, kaUID id, float begin, float end, Change&& change) {
    kaAnimationObject* object = find(id);
    if (object == nullptr || !std::isfinite(begin) || !std::isfinite(end) || !beginsBefore(begin, end))
        return false;
    if (const kaAnimationStreak* track = trackOf(*object))
        if (!hasRoom(track->getId(), id, begin, end))
            return false;
    return document.edit(name, {{id}, {}}, [&] { change(*object); });
}

} // namespace

std::vector<kaUID> blocksOfNode(unsigned int node) {
    std::vector<kaUID> blocks;
    for (const kaAnimationObject* object : manager()->getObjects(KA_TYPE_UNIT))
        if (node != 0 && static_cast<const kaAnimationUnit*>(object)->getNodeID() == node)
            blocks.push_back(object->getId());
    return blocks;
}

bool rename(Document& document, kaUID id, const std::string& name) {
    kaAnimationObject* object = find(id);
    return object != nullptr && document.edit(tr("Rename"), {{id}, {}}, [&] { object->setName(name); });
}

bool isFlagged(const kaAnimationObject& object, ObjectFlag flag) {
    switch (flag) {
    case ObjectFlag::Active:
        return object.isActive();
    case ObjectFlag::Repeating:
        return object.isRepeating();
    case ObjectFlag::MotionBlur:
        return object.isMotionBlur();
    default:
        return object.isUseCustomRange();
    }
}

bool setFlag(Document& document, kaUID id, ObjectFlag flag, bool on) {
    kaAnimationObject* object = find(id);
    if (object == nullptr)
        return false;
    const char* name = flag == ObjectFlag::Active       ? "Active"
                       : flag == ObjectFlag::Repeating  ? "Repeating"
                       : flag == ObjectFlag::MotionBlur ? "Motion blur"
                                                        : "Custom range";
    return document.edit(tr(name), {{id}, {}}, [&] {
        if (flag == ObjectFlag::Active)
            object->setActive(on);
        else if (flag == ObjectFlag::Repeating)
            object->setRepeating(on);
        else if (flag == ObjectFlag::MotionBlur)
            object->setMotionBlur(on);
        else
            object->setUseCustomRange(on);
    });
}

bool setCustomRange(Document& document, kaUID id, float begin, float end) {
    kaAnimationObject* object = find(id);
    if (object == nullptr || !std::isfinite(begin) || !std::isfinite(end))
        return false;
    return document.edit(tr("Custom range"), {{id}, {}}, [&] {
        object->setCustomBegin(begin);
        object->setCustomEnd(end);
    });
}

bool setCurveColor(Document& document, kaUID id, const osg::Color3f& color) {
    kaAnimationCurve2D* curve = manager()->getCurve2D(id);
    return curve != nullptr && document.edit(tr("Curve colour"), {{id}, {}}, [&] { curve->setColor(color); });
}

bool hasRoom(kaUID trackId, kaUID object, float begin, float end) {
    const kaAnimationStreak* track = manager()->getStreak(trackId);
    if (track == nullptr)
        return false;
    for (const kaAnimationObject* other : track->getObjects())
        if (other->getId() != object && begin < other->getEnd() && other->getBegin() < end)
            return false;
    return true;
}

bool moveObject(Document& document, kaUID id, float frames, kaUID trackId) {
    kaAnimationObject* object = find(id);
    if (object == nullptr || !std::isfinite(frames))
        return false;
    kaAnimationStreak* from = trackOf(*object);
    kaAnimationStreak* to = trackId != 0 ? manager()->getStreak(trackId) : from;
    if (trackId != 0 && (to == nullptr || from == nullptr || !isLaidOut(*object)))
        return false;
    if (to != nullptr && !hasRoom(to->getId(), id, object->getBegin() + frames, object->getEnd() + frames))
        return false;
    if (to != nullptr && to != from && !to->mayAdopt(*object))
        return false;
    return document.edit(tr("Move"), {{id, trackId}, {}}, [&] {
        if (frames != 0.0F)
            shift(*object, frames);
        if (to != from)
            manager()->moveObjectToStreak(object, to);
    });
}

bool stretchBegin(Document& document, kaUID id, float begin) {
    const kaAnimationObject* object = find(id);
    return object != nullptr && changeSpan(document, tr("Stretch"), id, begin, object->getEnd(),
                                           [=](kaAnimationObject& o) { o.moveBegin(begin, true); });
}

bool stretchEnd(Document& document, kaUID id, float end) {
    const kaAnimationObject* object = find(id);
    return object != nullptr && changeSpan(document, tr("Stretch"), id, object->getBegin(), end,
                                           [=](kaAnimationObject& o) { o.moveEnd(end, true); });
}

bool trimBegin(Document& document, kaUID id, float begin) {
    const kaAnimationObject* object = find(id);
    return object != nullptr && changeSpan(document, tr("Trim"), id, begin, object->getEnd(),
                                           [=](kaAnimationObject& o) { o.trimBegin(begin, true); });
}

bool trimEnd(Document& document, kaUID id, float end) {
    const kaAnimationObject* object = find(id);
    return object != nullptr && changeSpan(document, tr("Trim"), id, object->getBegin(), end,
                                           [=](kaAnimationObject& o) { o.trimEnd(end, true); });
}

bool flip(Document& document, kaUID id) {
    kaAnimationObject* object = find(id);
    return object != nullptr && document.edit(tr("Flip"), {{id}, {}}, [&] { object->flip(); });
}

kaUID duplicate(Document& document, kaUID id) {
    kaAnimationObject* object = find(id);
    if (object == nullptr || !isLaidOut(*object))
        return 0;
    kaAnimationStreak* track = trackOf(*object);
    const float length = object->getEnd() - object->getBegin();
    if (track != nullptr && !hasRoom(track->getId(), 0, object->getEnd(), object->getEnd() + length))
        return 0;
    return make(document, tr("Duplicate"), {{id}, {}}, [&]() -> kaAnimationObject* {
        kaAnimationObject* copy = copyOf(*object);
        if (copy == nullptr)
            return nullptr;
        copy->setParent(0);
        shift(*copy, length);
        if (track != nullptr)
            track->addObject(copy);
        return copy;
    });
}

bool remove(Document& document, kaUID id) {
    kaAnimationObject* object = find(id);
    return object != nullptr &&
           document.edit(tr("Delete"), {{id}, {}}, [&] { manager()->destroyObject(object); });
}

kaUID addClip(Document& document, const std::string& name) {
    return make(document, tr("New clip"), {}, [&] { return manager()->createStrip(name, 0); });
}

kaUID addTrack(Document& document, kaUID clipId) {
    kaAnimationStrip* clip = manager()->getStrip(clipId);
    if (clip == nullptr)
        return 0;
    return make(document, tr("New track"), {{clipId}, {}},
                [&] { return clip->addObject(manager()->createStreak("Track", 0)); });
}

kaUID addSequence(Document& document, kaUID trackId, const std::string& name, float begin, float end) {
    kaAnimationStreak* track = manager()->getStreak(trackId);
    if (track == nullptr || !std::isfinite(begin) || !std::isfinite(end) || !beginsBefore(begin, end) ||
        !hasRoom(trackId, 0, begin, end))
        return 0;
    return make(document, tr("New marker"), {{trackId}, {}}, [&] {
        kaAnimationSequence* sequence = manager()->createSequence(name, 0);
        sequence->setBegin(begin);
        sequence->setEnd(end);
        return track->addObject(sequence);
    });
}

kaUID placeOnTrack(Document& document, kaUID id, kaUID trackId, float begin) {
    kaAnimationObject* object = find(id);
    kaAnimationStreak* track = manager()->getStreak(trackId);
    if (object == nullptr || track == nullptr || !isLaidOut(*object) || !std::isfinite(begin) ||
        !track->mayAdopt(*object) ||
        !hasRoom(trackId, 0, begin, begin + object->getEnd() - object->getBegin()))
        return 0;
    return make(document, tr("Place on track"), {{id, trackId}, {}}, [&]() -> kaAnimationObject* {
        kaAnimationObject* placed = object->getParentObject() == nullptr ? object : copyOf(*object);
        if (placed == nullptr)
            return nullptr;
        placed->setParent(0);
        shift(*placed, begin - placed->getBegin());
        return track->addObject(placed);
    });
}

bool connectObjects(Document& document, kaUID source, kaAnimationManager::AnimationTrigger trigger,
                    kaUID target, kaAnimationManager::AnimationAction action) {
    kaAnimationObject* from = find(source);
    kaAnimationObject* to = find(target);
    return from != nullptr && to != nullptr && document.edit(tr("Link"), {{source}, {}}, [&] {
        manager()->createConnection(from, trigger, to, action);
    });
}

} // namespace ka::studio
