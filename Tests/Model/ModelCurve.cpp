#include "Model.h"
#include "ReferenceSampling.h"
#include "ReferenceTangents.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace ka_model {

namespace {

constexpr unsigned int USER = 16;

float rounded(float value) {
    const float half = value < 0.0F ? -0.5F : 0.5F;
    return std::fabs(value) < 8388608.0F ? std::trunc(value + half) + 0.0F
                                         : value; // a whole number has no sign of zero
}

Spot snapped(Spot spot, bool snapX, bool snapY) {
    return {snapX ? rounded(spot.x) : spot.x, snapY ? rounded(spot.y) : spot.y};
}

Spot plus(const Spot& spot, const Spot& delta) {
    return {spot.x + delta.x, spot.y + delta.y};
}

float outX(const Object& key) {
    return key.out ? key.out->position.x : key.position.x;
}

float inX(const Object& key) {
    return key.in ? key.in->position.x : key.position.x;
}

} // namespace

// Handles.

bool World::computeTangents(Object* point) {
    Object* curve = parentOf(*point);
    if (!point->in || !point->out || !curve || curve->type != CURVE || point->tangentType == USER)
        return false;
    const std::map<float, Object*> points = pointsOf(*curve);
    const auto found = points.find(point->position.x);
    if (std::isnan(point->position.x) || found == points.end() || points.size() == 1)
        return false;
    std::optional<Spot> previous;
    std::optional<Spot> next;
    if (found != points.begin())
        previous = std::prev(found)->second->position;
    if (std::next(found) != points.end())
        next = std::next(found)->second->position;
    const ka_test::Handles handles =
        ka_test::referenceHandles(point->tangentType, point->lengthMode, point->position, previous, next);
    point->in->position = {static_cast<float>(handles.inX), static_cast<float>(handles.inY)};
    point->out->position = {static_cast<float>(handles.outX), static_cast<float>(handles.outY)};
    return true;
}

void World::computeAround(Object* curve, Object* point) {
    computeTangents(point);
    const auto neighbours = around(*curve, point);
    if (neighbours.first)
        computeTangents(neighbours.first);
    if (neighbours.second)
        computeTangents(neighbours.second);
}

// Queries.

std::map<float, Object*> World::pointsOf(const Object& curve) const {
    std::map<float, Object*> points;
    for (Object* child : childrenOf(curve))
        if (child->type == POINT && !std::isnan(child->position.x))
            points.emplace(child->position.x, child);
    return points;
}

std::pair<Object*, Object*> World::around(const Object& curve, const Object* point) const {
    const std::vector<Id> ids(curve.children.begin(), curve.children.end());
    const auto place = point ? std::find(ids.begin(), ids.end(), point->id) : ids.end();
    if (place == ids.end())
        return {nullptr, nullptr};
    const auto known = [this](Id id) { return find(id) != nullptr; };
    const auto before = std::find_if(std::make_reverse_iterator(place), ids.rend(), known);
    const auto after = std::find_if(std::next(place), ids.end(), known);
    return {before == ids.rend() ? nullptr : find(*before), after == ids.end() ? nullptr : find(*after)};
}

std::pair<Object*, Object*> World::around(const Object& curve, float x) const {
    const std::vector<Object*> keys = childrenOf(curve);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (!(x <= keys[i]->begin()))
            continue;
        Object* before = i > 0 ? keys[i - 1] : nullptr;
        if (keys[i]->begin() > x)
            return {before, keys[i]};
        return {before, i + 1 < keys.size() ? keys[i + 1] : nullptr};
    }
    return {keys.empty() ? nullptr : keys.back(), nullptr};
}

// Constraints.

bool World::checkMoveConstraints(const Object& curve, const Object* point, float x, float newIn,
                                 float newOut) const {
    if (!point || !(newIn <= x && x <= newOut))
        return false;
    if (!isChild(curve, point->id))
        return true;
    const auto [previous, next] = around(curve, point);
    if (previous && (x < outX(*previous) || newIn < previous->position.x))
        return false;
    return !(next && (x > inX(*next) || newOut > next->position.x));
}

bool World::checkMoveConstraints2(const Object& curve, const Object* point, float dx, bool fromSaved) const {
    if (!point)
        return false;
    float keyX = point->position.x;
    float handleIn = inX(*point);
    float handleOut = outX(*point);
    if (fromSaved) {
        keyX = point->savedPosition.x;
        handleIn = point->tangentType == USER ? point->savedIn.x : handleIn - dx;
        handleOut = point->tangentType == USER ? point->savedOut.x : handleOut - dx;
    }
    if (!isChild(curve, point->id))
        return true;
    const auto [previous, next] = around(curve, point);
    if (previous && (keyX + dx < outX(*previous) || handleIn + dx < previous->position.x))
        return false;
    return !(next && (keyX + dx > inX(*next) || handleOut + dx > next->position.x));
}

bool World::checkInsertConstraints(const Object& curve, float x) const {
    const auto [previous, next] = around(curve, x);
    if (previous && outX(*previous) > x)
        return false;
    return !(next && x > inX(*next));
}

// Keys.

Object* World::addToCurve(Object* curve, Object* point) {
    if (point->type != POINT)
        return nullptr;
    Object* existing = childAt(*curve, point->position.x);
    if (existing && existing != point)
        subObject(curve, existing, true);
    if (!curve->alive || !point->alive) // it went with the key that gave way, as its handle or below it
        return nullptr;
    const bool held = isChild(*curve, point->id);
    point->parent = curve->id;
    if (!held) // a key that the curve holds stays where it stands
        curve->children.push_back(point->id);
    sortChildren(curve);
    computeAround(curve, point);
    updateBy(curve, point, ADD, true);
    return point;
}

void World::setPoints(Object* curve, const std::vector<Object*>& points) {
    if (points.empty() || !points.front() || points.front()->type != POINT)
        return;
    curve->children.clear();
    for (Object* point : points)
        if (point) {
            point->parent = curve->id;
            curve->children.push_back(point->id);
        }
    sortChildren(curve);
    for (Object* key : childrenOf(*curve))
        computeTangents(key);
    updateAll(curve, {curve->children.begin(), curve->children.end()}, ADD, true);
}

Object* World::afterDeletion(Object* curve, bool tellParent, bool destroyIfEmpty) {
    if (!curve->alive)
        return nullptr;
    if (!curve->children.empty()) {
        for (Object* key : childrenOf(*curve))
            computeTangents(key);
        updateBy(curve, curve, MOVE, tellParent);
        return curve;
    }
    updateBy(curve, curve, SUB, tellParent);
    if (!destroyIfEmpty)
        return curve;
    destroy(curve);
    return nullptr;
}

Object* World::deleteSelectedPoints(Object* curve, bool tellParent, bool destroyIfEmpty) {
    std::vector<Object*> chosen;
    for (Object* key : childrenOf(*curve))
        if (key->selected)
            chosen.push_back(key);
    for (Object* key : chosen)
        if (key->alive && curve->alive)
            subObject(curve, key, true);
    return afterDeletion(curve, tellParent, destroyIfEmpty);
}

Object* World::deletePoints(Object* curve, bool tellParent, bool destroyIfEmpty) {
    if (curve->children.empty())
        return curve;
    for (Object* key : childrenOf(*curve))
        if (key->alive && curve->alive)
            subObject(curve, key, true);
    return afterDeletion(curve, tellParent, destroyIfEmpty);
}

void World::changeTangents(Object* curve, unsigned int type) {
    for (Object* key : childrenOf(*curve))
        if (key->selected) {
            key->tangentType = type;
            computeTangents(key);
        }
}

void World::moveSelectedPoints(Object* curve, Spot delta, bool snapX, bool snapY, bool tellParent,
                               bool fromSaved) {
    if (curve->children.empty())
        return;
    for (Object* key : childrenOf(*curve)) {
        if (!key->selected || !checkMoveConstraints2(*curve, key, delta.x, fromSaved))
            continue;
        const Spot in = fromSaved ? key->savedIn : key->in ? key->in->position : key->position;
        const Spot out = fromSaved ? key->savedOut : key->out ? key->out->position : key->position;
        key->position = snapped(plus(fromSaved ? key->savedPosition : key->position, delta), snapX, snapY);
        if (key->in)
            key->in->position = snapped(plus(in, delta), snapX, snapY);
        if (key->out)
            key->out->position = snapped(plus(out, delta), snapX, snapY);
        computeAround(curve, key);
    }
    updateBy(curve, curve, MOVE, tellParent);
}

void World::moveSelectedPointsTo(Object* curve, Spot target, bool lockX, bool lockY, bool tellParent) {
    if ((lockX && lockY) || curve->children.empty())
        return;
    for (Object* key : childrenOf(*curve)) {
        if (!key->selected)
            continue;
        const float dx = target.x - key->position.x;
        const float dy = target.y - key->position.y;
        if (!lockX && !checkMoveConstraints2(*curve, key, dx, false))
            continue;
        for (Object* part : {key, key->in, key->out})
            if (part) {
                part->position.x += lockX ? 0.0F : dx;
                part->position.y += lockY ? 0.0F : dy;
            }
        computeAround(curve, key);
    }
    updateBy(curve, curve, MOVE, tellParent);
}

namespace {

/// A whole number of frames or values as the host's key dialogue gives it: unsigned, so that a negative one
/// wraps.
float snappedUnsigned(float value) {
    const float whole = rounded(value);
    const int number = whole >= -2147483648.0F && whole < 2147483648.0F ? static_cast<int>(whole)
                                                                        : std::numeric_limits<int>::min();
    return static_cast<float>(static_cast<unsigned int>(number));
}

} // namespace

bool World::createCurvePoint(Object* curve, Spot place, bool snapX, bool snapY, bool replace) {
    place.x = snapX ? snappedUnsigned(place.x) : place.x;
    place.y = snapY ? snappedUnsigned(place.y) : place.y;
    if (Object* existing = childAt(*curve, place.x)) {
        if (!replace)
            return false;
        subObject(curve, existing, true);
        if (!curve->alive)
            return false;
    }
    addObject(curve, createPoint(place, 0));
    return true;
}

bool World::createCurvePoint(Object* curve, float frame, bool replace) {
    if (curve->begin() > frame || frame > curve->end())
        return false;
    if (Object* existing = childAt(*curve, frame)) {
        if (!replace)
            return false;
        subObject(curve, existing, true);
        if (!curve->alive)
            return false;
    }
    if (!checkInsertConstraints(*curve, frame))
        return false;
    const Value value = sample(*curve, frame);
    if (!value.returned)
        return false;
    addObject(curve, createPoint({frame, value.written ? value.value : 0.0F}, 0));
    return true;
}

// The curve as a whole.

void World::mapX(Object* curve, const std::function<float(float)>& map) {
    for (Object* key : childrenOf(*curve))
        for (Object* part : {key, key->in, key->out})
            if (part)
                part->position.x = map(part->position.x);
}

Value World::sample(const Object& curve, float frame) const {
    std::vector<ka_test::Key> keys;
    for (const Object* key : childrenOf(curve))
        if (key->type == POINT)
            keys.push_back({key->position, key->in ? key->in->position : key->position,
                            key->out ? key->out->position : key->position});
    const ka_test::Sample sample = ka_test::referenceSample(keys, frame);
    return {sample.returned, sample.written, sample.value};
}

} // namespace ka_model
