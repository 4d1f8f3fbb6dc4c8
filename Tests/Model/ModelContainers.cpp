#include "Model.h"
#include "kaAnimationTypes.h"

#include <algorithm>
#include <cmath>

namespace ka_model {

namespace {

constexpr float TOLERANCE = 0.000001F;

bool isLoose(const Object& object) {
    return object.type == UNIT || object.type == STRIP || object.type == SEQUENCE;
}

} // namespace

// Containment.

bool World::holds(const Object& object, const Object& container, std::set<const Object*>& seen) const {
    if (&object == &container)
        return true;
    if ((object.type != STREAK && object.type != STRIP) || !seen.insert(&object).second)
        return false;
    for (const Object* child : childrenOf(object))
        if (holds(*child, container, seen))
            return true;
    return false;
}

bool World::mayAdopt(const Object& container, const Object& object) const {
    std::set<const Object*> ancestors = {&container};
    for (const Object* level = parentOf(container); level; level = parentOf(*level))
        if (!ancestors.insert(level).second)
            return false;
    std::set<const Object*> seen;
    const bool isListed =
        (container.type == STREAK || container.type == STRIP) && holds(object, container, seen);
    return ancestors.count(&object) == 0 && !isListed;
}

void World::append(Object* container, Object* object) {
    object->parent = container->id;
    container->children.push_back(object->id);
    updateBy(container, object, ADD, true);
}

Object* World::addObject(Object* container, Object* object) {
    switch (container->type) {
    case CURVE:
        return addToCurve(container, object);
    case UNIT:
        if (object->type != CURVE || !mayAdopt(*container, *object))
            return nullptr;
        if (const Field* field = findField(object->field))
            container->nodeID = container->nodeID == 0 ? field->nodeID : container->nodeID;
        append(container, object);
        return object;
    case STREAK:
        if (!mayAdopt(*container, *object))
            return nullptr;
        append(container, object);
        return object;
    case STRIP:
        return addToClip(container, object);
    default:
        return object;
    }
}

std::vector<Object*> World::tracksIn(const Object& clip) const {
    std::vector<Object*> tracks;
    for (Object* child : childrenOf(clip))
        if (child->type == STREAK)
            tracks.push_back(child);
    return tracks;
}

Object* World::addToClip(Object* clip, Object* object) {
    if ((!isLoose(*object) && object->type != STREAK) || !mayAdopt(*clip, *object))
        return nullptr;
    if (object->type == STREAK) {
        object->index = static_cast<unsigned int>(clip->children.size());
        append(clip, object);
        return object;
    }
    Object* track = createContainer(STREAK, 0);
    addToClip(clip, track);
    addObject(track, object);
    return track;
}

Object* World::subObject(Object* container, Object* object, bool destroyIt) {
    const auto unlink = [&]() -> Object* {
        const auto place = std::find(container->children.begin(), container->children.end(), object->id);
        if (place == container->children.end())
            return nullptr;
        container->children.erase(place);
        object->parent = 0;
        updateBy(container, object, SUB, true);
        if (!destroyIt)
            return object;
        if (object->type == POINT && container->type == CURVE)
            destroyPoint(object);
        else
            destroy(object);
        return nullptr;
    };
    switch (container->type) {
    case CURVE:
        return object->type == POINT ? unlink() : nullptr;
    case UNIT:
        return object->type == CURVE ? unlink() : nullptr;
    case STREAK:
        return unlink();
    case STRIP:
        if (object->type == STREAK && isChild(*container, object->id))
            return unlink();
        for (Object* track : tracksIn(*container))
            if ((isLoose(*object) || object->type == STREAK) && isChild(*track, object->id)) {
                subObject(track, object, destroyIt);
                return track;
            }
        return nullptr;
    default:
        return object;
    }
}

bool World::insertIntoTrack(Object* track, Object* object) {
    if (!isLoose(*object))
        return false;
    const float b = object->begin();
    const float e = object->end();
    for (const Object* child : childrenOf(*track)) {
        const float cb = child->begin();
        const float ce = child->end();
        if ((cb < b && b < ce) || (cb < e && e < ce) || (cb <= b && e <= ce) || (b <= cb && ce <= e))
            return false;
    }
    return addObject(track, object) != nullptr;
}

Object* World::insertIntoClip(Object* clip, Object* object) {
    if (!isLoose(*object))
        return nullptr;
    for (Object* track : tracksIn(*clip))
        if (insertIntoTrack(track, object))
            return track;
    return addObject(clip, object);
}

std::map<unsigned int, Object*> World::tracksOf(const Object& clip) const {
    std::map<unsigned int, Object*> tracks;
    for (Object* track : tracksIn(clip))
        tracks.emplace(track->index, track);
    return tracks;
}

void World::destroyEmptyTracks(Object* clip) {
    for (const auto& entry : tracksOf(*clip))
        if (entry.second->children.empty())
            subObject(clip, entry.second, true);
}

void World::destroyEmptyTracksAtEnd(Object* clip) {
    const std::map<unsigned int, Object*> tracks = tracksOf(*clip);
    std::vector<Object*> chosen;
    for (std::size_t number = clip->children.size(); number-- > 0;) {
        const auto found = tracks.find(static_cast<unsigned int>(number));
        if (found == tracks.end() || !found->second->children.empty())
            break;
        chosen.push_back(found->second);
    }
    for (Object* track : chosen)
        subObject(clip, track, true);
}

bool World::moveToTrack(Object* object, Object* track) {
    Object* parent = parentOf(*object);
    if (!parent || parent->type != STREAK || !mayAdopt(*track, *object) || !subObject(parent, object, false))
        return false;
    return addObject(track, object) != nullptr;
}

bool World::moveToTrack(Object* object, Object* clip, unsigned int number) {
    while (clip->children.size() <= number)
        addToClip(clip, createContainer(STREAK, 0));
    const std::map<unsigned int, Object*> tracks = tracksOf(*clip);
    const auto found = tracks.find(number);
    return found != tracks.end() && moveToTrack(object, found->second);
}

namespace {

/// Counted no further than the greatest depth, and so through a ring, too.
std::size_t heightOf(const World& world, const Object& object, unsigned int level = 0) {
    std::size_t below = 0;
    if (level < KA_MAX_DEPTH)
        for (const Object* child : world.childrenOf(object))
            if (child != &object)
                below = std::max(below, heightOf(world, *child, level + 1));
    return below + 1;
}

} // namespace

bool World::isShallow(const Object& container, const Object& object) const {
    std::set<const Object*> ancestors = {&container};
    for (const Object* level = parentOf(container); level && ancestors.insert(level).second;)
        level = parentOf(*level);
    return ancestors.size() + heightOf(*this, object) + 4 < KA_MAX_DEPTH;
}

bool World::reaches(const Object& from, const Object& to) const {
    std::set<const Object*> seen;
    std::vector<const Object*> open = {&from};
    while (!open.empty()) {
        const Object* object = open.back();
        open.pop_back();
        for (const Object* child : childrenOf(*object)) {
            if (child == &to)
                return true;
            if (child != object && seen.insert(child).second)
                open.push_back(child);
        }
    }
    return false;
}

// Editing in time.

/// What an operation in time reaches: a clip its tracks, a block or track all children.
std::vector<Object*> World::partsOf(const Object& container) const {
    return container.type == STRIP ? tracksIn(container) : childrenOf(container);
}

/// A factor that is no number, as a span of zero gives, stretches nothing.
std::vector<Object*> World::stretchedBy(float factor, const Object& container) const {
    return std::isfinite(factor) ? partsOf(container) : std::vector<Object*>();
}

void World::move(Object* object, float dx, bool tellParent) {
    if (object->type == SEQUENCE) {
        object->extent.begin += dx;
        object->extent.end += dx;
        tellParentMoved(object, tellParent);
        return;
    }
    if (object->type == POINT || object->children.empty())
        return;
    if (object->type == CURVE) {
        for (Object* key : childrenOf(*object))
            for (Object* part : {key, key->in, key->out})
                if (part)
                    part->position.x += dx;
    } else {
        for (Object* child : partsOf(*object))
            move(child, dx, false);
    }
    updateBy(object, object, MOVE, tellParent);
}

void World::moveBegin(Object* object, float begin, bool tellParent) {
    const float b = object->begin();
    const float e = object->end();
    const bool inRange = begin < e - TOLERANCE;
    if (object->type == SEQUENCE) {
        if (inRange) {
            object->extent.begin = begin;
            tellParentMoved(object, tellParent);
        }
        return;
    }
    if (object->type == POINT || object->children.empty())
        return;
    const float f = (e - begin) / (e - b);
    if (object->type == CURVE) {
        if (!inRange || e == b)
            return;
        object->extent.begin = begin;
        mapX(object, [&](float x) { return e - (e - x) * f; });
        tellParentMoved(object, tellParent);
        return;
    }
    object->extent.begin = begin;
    if (object->type == UNIT && !inRange)
        return;
    for (Object* child : stretchedBy(f, *object)) {
        const float cb = child->begin();
        const float ce = child->end();
        moveBegin(child, e - (e - cb) * f, false);
        moveEnd(child, e - (e - ce) * f, false);
    }
    tellParentMoved(object, tellParent);
}

void World::moveEnd(Object* object, float end, bool tellParent) {
    const float b = object->begin();
    const float e = object->end();
    const bool inRange = end > b + TOLERANCE;
    if (object->type == SEQUENCE) {
        if (inRange) {
            object->extent.end = end;
            tellParentMoved(object, tellParent);
        }
        return;
    }
    if (object->type == POINT || object->children.empty())
        return;
    const float f = (end - b) / (e - b);
    if (object->type == CURVE) {
        if (!inRange || e == b)
            return;
        object->extent.end = end;
        mapX(object, [&](float x) { return (x - b) * f + b; });
        tellParentMoved(object, tellParent);
        return;
    }
    object->extent.end = end;
    if (object->type == UNIT && !inRange)
        return;
    for (Object* child : stretchedBy(f, *object)) {
        const float cb = child->begin();
        const float ce = child->end();
        moveEnd(child, (ce - b) * f + b, false);
        moveBegin(child, (cb - b) * f + b, false);
    }
    tellParentMoved(object, tellParent);
}

void World::trimBegin(Object* object, float begin, bool tellParent) {
    const bool takes = object->type == SEQUENCE || (object->type == UNIT && !object->children.empty());
    if (!takes || !(begin < object->end() - TOLERANCE))
        return;
    object->extent.begin = begin;
    object->trimmed = true;
    tellParentMoved(object, tellParent);
}

void World::trimEnd(Object* object, float end, bool tellParent) {
    const bool takes = object->type == SEQUENCE || (object->type == UNIT && !object->children.empty());
    if (!takes || !(end > object->begin() + TOLERANCE))
        return;
    object->extent.end = end;
    object->trimmed = true;
    tellParentMoved(object, tellParent);
}

void World::flip(Object* object) {
    if (object->type == POINT || object->type == SEQUENCE || object->children.empty())
        return;
    const float b = object->begin();
    const float e = object->end();
    if (object->type == CURVE) {
        const float m = b + (e - b) * 0.5F;
        for (Object* key : childrenOf(*object))
            for (Object* part : {key, key->in, key->out})
                if (part)
                    part->position.x = m - part->position.x + m;
        for (Object* key : childrenOf(*object)) {
            const Spot in = key->in ? key->in->position : Spot{0.0F, 0.0F};
            const Spot out = key->out ? key->out->position : Spot{0.0F, 0.0F};
            if (key->in)
                key->in->position = out;
            if (key->out)
                key->out->position = in;
        }
    } else {
        for (Object* child : partsOf(*object)) {
            flip(child);
            move(child, (e - child->end()) + b - child->begin(), false);
        }
    }
    object->flipped = !object->flipped;
    updateBy(object, object, MOVE, false);
}

void World::triggerLoop(Object* object, float frame) {
    if (object->type == POINT)
        return;
    if (object->type == CURVE && object->curves.empty())
        return;
    if (object->type != CURVE && object->type != SEQUENCE && object->children.empty())
        return;
    const float begin = object->useCustomRange ? object->customBegin : object->begin();
    const float end = object->useCustomRange ? object->customEnd : object->end();
    if (begin <= frame && !object->playing)
        object->playing = true;
    if (end < frame && object->playing)
        object->playing = false;
    if (object->type == STREAK || object->type == STRIP)
        for (Object* child : partsOf(*object))
            triggerLoop(child, frame);
}

// Evaluation.

namespace {

float folded(float frame, float lo, float hi) {
    const double low = static_cast<double>(lo);
    const double span = static_cast<double>(hi) - low;
    const float turns = std::floor(static_cast<float>((static_cast<double>(frame) - low) / span));
    return static_cast<float>(static_cast<double>(frame) - span * static_cast<double>(turns));
}

} // namespace

void World::collect(const Object& object, float frame, Bucket& finished, Bucket& running, Bucket& upcoming) {
    if (object.type > UNIT) {
        for (const Object* child : childrenOf(object))
            collect(*child, frame, finished, running, upcoming);
        return;
    }
    const float lo = object.useCustomRange ? object.customBegin : object.begin();
    const float hi = object.useCustomRange ? object.customEnd : object.end();
    const float f = object.repeating ? folded(frame, lo, hi) : frame;
    for (Id id : object.curves) {
        Object* curve = findOfType(id, CURVE);
        if (!curve)
            continue;
        if (frame < object.begin())
            upcoming.emplace(object.end(), std::make_pair(curve, f));
        else if (frame <= object.end())
            running.emplace(object.begin(), std::make_pair(curve, f));
        else
            finished.emplace(object.begin(), std::make_pair(curve, f));
    }
}

namespace {

float heldWithin(const Object& curve, float frame) {
    if (frame < curve.begin() && !curve.repeating)
        return curve.begin();
    return frame > curve.end() && !curve.repeating ? curve.end() : frame;
}

} // namespace

bool World::evaluate(Object* object, float frame) {
    Bucket finished;
    Bucket running;
    Bucket upcoming;
    collect(*object, frame, finished, running, upcoming);
    std::vector<std::pair<Object*, float>> order;
    for (auto entry = upcoming.rbegin(); entry != upcoming.rend(); ++entry)
        order.push_back(entry->second);
    for (const Bucket* bucket : {&finished, &running})
        for (const auto& entry : *bucket)
            order.push_back(entry.second);
    for (const auto& entry : order) {
        const Object* curve = entry.first;
        Field* field = findField(curve->field);
        const Value value = sample(*curve, heldWithin(*curve, entry.second));
        if (curve->active && value.written && field)
            field->value = value.value;
    }
    if (!(frame == object->lastFrame)) {
        for (Id id : object->sequences) {
            Object* sequence = findOfType(id, SEQUENCE);
            if (sequence && sequence->active &&
                ((frame >= sequence->begin() && sequence->armed) ||
                 (sequence->begin() <= frame && frame <= sequence->end())))
                sequence->armed = false;
        }
        object->lastFrame = frame;
    }
    const float lo = object->useCustomRange ? object->customBegin : object->begin();
    const float hi = object->useCustomRange ? object->customEnd : object->end();
    const float f = object->repeating ? folded(frame, lo, hi) : frame;
    return object->reversePlay ? f < lo : f > hi;
}

// Playback.

void World::startWaiting() {
    for (Object* object : waiting)
        runningByID.emplace(object->id, object);
    waiting.clear();
}

void World::jumpTo(Object* object, float frame) {
    jumpCurves.clear();
    jumpSequences.clear();
    for (Id id : object->curves)
        if (Object* curve = findOfType(id, CURVE))
            jumpCurves.push_back(curve);
    for (Id id : object->sequences)
        if (Object* sequence = findOfType(id, SEQUENCE))
            jumpSequences.push_back(sequence);
    evaluate(object, frame);
}

} // namespace ka_model
