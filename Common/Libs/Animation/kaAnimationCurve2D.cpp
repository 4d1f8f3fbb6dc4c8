#include "kaAnimationCurve2D.h"

#include "kaAnimationField.h"
#include "kaChange.h"
#include "kaChildList.h"
#include "kaCurveView.h"
#include "kaFieldInfo.h"
#include "kaFieldStore.h"
#include "kaObjectStore.h"
#include "kaPlainOutput.h"
#include "kaRounding.h"
#include "kaSceneNodes.h"
#include "kaWeak.h"

#include <cmath>
#include <ios>

namespace {

kaControlPoint2D* asPoint(kaAnimationObject* object) {
    return kaObjectCast<kaControlPoint2D>(object);
}

/// A child of `keys`, itself unseen where all of them are known to be keys.
kaControlPoint2D* asPoint(const kaChildList& keys, kaAnimationObject* child) {
    return keys.hasKeysOnly() ? static_cast<kaControlPoint2D*>(child) : asPoint(child);
}

osg::Pnt2f moved(const osg::Pnt2f& point, float dx, float dy) {
    return {point[0] + dx, point[1] + dy};
}

/// The x that limits a neighbour: that of its handle on this side, else its own.
float xOf(const kaControlPoint2D* handle, const kaControlPoint2D& key) {
    return (handle ? *handle : key).getPosition()[0];
}

} // namespace

// Life.

kaAnimationCurve2D::kaAnimationCurve2D(const std::string& name, kaUID id) {
    _id = id != 0 ? id : kaObjectRegistry::the().createUID();
    init(kaFieldStore::make(0), name, _id);
}

kaAnimationCurve2D::kaAnimationCurve2D(kaAnimationField* field, const std::string& name, kaUID id) {
    init(field, name, id != 0 ? id : kaObjectRegistry::the().createUID());
}

void kaAnimationCurve2D::init(kaAnimationField* field, const std::string& name, kaUID id) {
    _id = id;
    setName(name);
    if (field)
        setAnimationField(field);
    insertCurveID(_id);
}

kaAnimationCurve2D::kaAnimationCurve2D(kaAnimationCurve2D& source) {
    _id = kaObjectRegistry::the().createUID();
    setBegin(source.getBegin());
    setEnd(source.getEnd());
    setMaximum(source.getMaximum());
    setMinimum(source.getMinimum());
    setRangeBegin(source.getRangeBegin());
    setRangeEnd(source.getRangeEnd());
    setName(source.getName());
    setActive(source.isActive());
    setPlaying(source.isPlaying());
    setRepeating(source.isRepeating());
    _flipped = source.isFlipped();
    _trimmed = source.isTrimmed();
    setMotionBlur(source.isMotionBlur());
    setParent(source.getParentObject() ? source.getParent() : 0);
    setSelected(source.isSelected());
    setLocked(source.isLocked());
    _color = source._color;
    _field = source._field;
    for (kaControlPoint2D* point : source.points())
        addObject(kaObjectStore::duplicate(point));
    insertCurveID(_id);
}

kaAnimationCurve2D::~kaAnimationCurve2D() {
    kaObjectStore::leaveField(*this, _field);
}

// Queries.

std::vector<kaControlPoint2D*> kaAnimationCurve2D::points() const {
    std::vector<kaControlPoint2D*> result;
    const kaChildList* keys = childrenOrNull();
    if (!keys)
        return result;
    result.reserve(keys->size());
    keys->forEach([&result, keys](kaAnimationObject& child) {
        if (kaControlPoint2D* point = asPoint(*keys, &child))
            result.push_back(point);
    });
    return result;
}

std::vector<kaControlPoint2D*> kaAnimationCurve2D::selectedPoints() const {
    std::vector<kaControlPoint2D*> result;
    if (const kaChildList* keys = childrenOrNull())
        for (kaAnimationObject* child : keys->selected())
            if (kaControlPoint2D* point = asPoint(*keys, child))
                result.push_back(point);
    return result;
}

std::map<float, kaControlPoint2D*> kaAnimationCurve2D::getPoints() const {
    std::map<float, kaControlPoint2D*> result;
    for (kaControlPoint2D* point : points())
        if (!std::isnan(point->getPosition()[0]))
            result.emplace(point->getPosition()[0], point);
    return result;
}

kaControlPoint2D* kaAnimationCurve2D::findPoint(float x) const {
    const kaChildList* keys = childrenOrNull();
    return keys ? asPoint(*keys, keys->firstAt(x)) : nullptr;
}

kaControlPoint2D* kaAnimationCurve2D::findPoint(kaUID id) const {
    const kaChildList* keys = childrenOrNull();
    return keys && keys->contains(id) ? kaObjectStore::find<kaControlPoint2D>(id) : nullptr;
}

kaAnimationCurve2D::Neighbours kaAnimationCurve2D::neighboursByX(float x) const {
    const kaChildList* keys = childrenOrNull();
    if (!keys)
        return {};
    const kaChildList::Around around = keys->around(x);
    const auto strange = [keys](kaAnimationObject* object) { return object && !asPoint(*keys, object); };
    if (!strange(around.at) && !strange(around.before) && !strange(around.after))
        return {around.at != nullptr, asPoint(*keys, around.before), asPoint(*keys, around.after)};
    // Something that is no key stands among the keys.
    const auto points = getPoints();
    const auto next = points.upper_bound(x);
    const auto previous = points.lower_bound(x);
    return {points.count(x) > 0, previous != points.begin() ? std::prev(previous)->second : nullptr,
            next != points.end() ? next->second : nullptr};
}

kaAnimationCurve2D::PointPair kaAnimationCurve2D::getPreviousAndNextPoint(kaControlPoint2D* point) const {
    const kaChildList* keys = childrenOrNull();
    if (!point || !keys || !keys->contains(*point))
        return {nullptr, nullptr};
    const auto beside = keys->beside(*point);
    return {asPoint(*keys, beside.first), asPoint(*keys, beside.second)};
}

kaAnimationCurve2D::PointPair kaAnimationCurve2D::getPreviousAndNextPoint(float x) const {
    const kaChildList* keys = childrenOrNull();
    if (!keys)
        return {nullptr, nullptr};
    const kaChildList::Around around = keys->firstNotBefore(x);
    const bool atX = around.at && around.at->getBegin() == x;
    return {asPoint(*keys, around.before), asPoint(*keys, atX ? around.after : around.at)};
}

osg::NodePtr kaAnimationCurve2D::getParentOSGNode() const {
    const kaAnimationField* field = resolvedField();
    if (!field || field->nodeID == 0)
        return osg::NullFC;
    return kaSceneNodes::find(static_cast<osg::UInt32>(field->nodeID));
}

kaAnimationField* kaAnimationCurve2D::resolvedField() const {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    if (_resolvedEpoch != registry.fieldEpoch() || _resolvedID != _field) {
        _resolvedField = registry.findField(_field);
        _resolvedID = _field;
        _resolvedEpoch = registry.fieldEpoch();
    }
    return _resolvedField;
}

void kaAnimationCurve2D::printInfo() const {
    kaAnimationField* field = resolvedField();
    kaPlainOutput() << "Curve " << getName() << ":\nPoints: " << getChildCount() << std::fixed
                    << "\nBegin: " << getBegin() << " End: " << getEnd() << " Min: " << getMinimum()
                    << " Max: " << getMaximum() << "\nFieldPtr " << static_cast<const void*>(field) << '\n';
    kaFieldInfo::print(field);
}

void kaAnimationCurve2D::setField(kaUID field) {
    kaObjectStore::moveToField(*this, _field, field);
    _field = field;
    noteChange(kaChange::Flags);
}

void kaAnimationCurve2D::setAnimationField(kaAnimationField* field) {
    setField(field ? field->getId() : 0);
    if (field)
        _color = kaFieldInfo::defaultColor(*field);
}

kaCurveView& kaAnimationCurve2D::view() const {
    if (!_view)
        _view = std::make_unique<kaCurveView>();
    _view->refresh(childrenOrNull());
    return *_view;
}

// Keys.

kaAnimationObject* kaAnimationCurve2D::addObject(kaAnimationObject* object) {
    kaControlPoint2D* point = asPoint(object);
    if (!point)
        return nullptr;
    const kaChildList& keys = children();
    kaControlPoint2D* existing = asPoint(keys, keys.firstAtPrefetching(point->getPosition()[0]));
    if (existing && existing != point) {
        const kaWeak<kaAnimationObject> self(*this);
        const kaWeak<kaAnimationObject> alive(*point);
        subObject(existing, true);
        if (!self || !alive)
            return nullptr; // it went with the key that gave way, as its handle or below it
    }
    point->setParent(getId());
    if (!children().contains(*point))
        children().append(*point);
    children().sort();
    computeTangentsAround(point);
    updateBy(point, ADD_OBJECT, true);
    return point;
}

kaAnimationObject* kaAnimationCurve2D::subObject(kaAnimationObject* object, bool destroy) {
    kaControlPoint2D* point = asPoint(object);
    if (!point || !children().remove(*point))
        return nullptr;
    point->setParent(0);
    updateBy(point, SUB_OBJECT, true);
    if (!destroy)
        return point;
    kaObjectStore::destroyKey(point);
    return nullptr;
}

void kaAnimationCurve2D::setPoints(const std::vector<kaControlPoint2D*>& points) {
    if (points.empty() || !asPoint(points.front()))
        return;
    std::vector<kaUID> ids;
    ids.reserve(points.size());
    for (kaControlPoint2D* point : points) {
        if (!point)
            continue;
        point->setParent(getId());
        ids.push_back(point->getId());
    }
    children().assign(std::move(ids));
    children().sort();
    for (kaControlPoint2D* point : this->points())
        point->computeTangents();
    updateAll(getChildIDs(), ADD_OBJECT, true);
}

kaAnimationCurve2D* kaAnimationCurve2D::deleteSelectedPoints(bool tellParent, bool destroyIfEmpty) {
    return destroyPoints(selectedPoints()) ? afterDeletion(tellParent, destroyIfEmpty) : nullptr;
}

kaAnimationCurve2D* kaAnimationCurve2D::deletePoints(bool tellParent, bool destroyIfEmpty) {
    if (!hasChildren())
        return this;
    return destroyPoints(points()) ? afterDeletion(tellParent, destroyIfEmpty) : nullptr;
}

/// A host can have listed a key twice, or written its id. @return whether the curve is still there: a key
/// takes along what a host has listed below it.
bool kaAnimationCurve2D::destroyPoints(const std::vector<kaControlPoint2D*>& doomed) {
    const kaWeakList<kaAnimationObject> keys(doomed);
    const kaWeak<kaAnimationObject> self(*this);
    keys.visit([&](kaAnimationObject& key) {
        if (self)
            subObject(&key, true);
    });
    return static_cast<bool>(self);
}

kaAnimationCurve2D* kaAnimationCurve2D::afterDeletion(bool tellParent, bool destroyIfEmpty) {
    if (hasChildren()) {
        for (kaControlPoint2D* point : points())
            point->computeTangents();
        updateBy(this, MOVE_OBJECT, tellParent);
        return this;
    }
    updateBy(this, SUB_OBJECT, tellParent);
    if (!destroyIfEmpty)
        return this;
    kaObjectStore::destroy(this);
    return nullptr;
}

void kaAnimationCurve2D::changeTangentsOfSelectedPoints(kaControlPoint2D::TangentMode mode) {
    for (kaControlPoint2D* point : selectedPoints()) {
        point->setTangentType(mode);
        point->computeTangents();
    }
}

void kaAnimationCurve2D::computeTangentsAround(kaControlPoint2D* point) {
    point->computeTangents();
    const PointPair beside = getPreviousAndNextPoint(point);
    if (beside.first)
        beside.first->computeTangents();
    if (beside.second)
        beside.second->computeTangents();
}

// Selection and lock.

void kaAnimationCurve2D::setSelected(bool selected) {
    if (!hasChildren())
        return;
    for (kaControlPoint2D* point : points())
        point->setSelected(selected);
    kaAnimationObject::setSelected(selected);
}

void kaAnimationCurve2D::setLocked(bool locked) {
    if (!hasChildren())
        return;
    for (kaControlPoint2D* point : points())
        point->setLocked(locked);
    // Into the selected flag: a slip that hosts have come to rely on.
    kaAnimationObject::setSelected(locked);
}

// Moving the selection.

bool kaAnimationCurve2D::checkMoveConstraints(kaControlPoint2D* point, float x, float inX, float outX) const {
    if (!point || !(inX <= x && x <= outX))
        return false;
    const PointPair beside = getPreviousAndNextPoint(point);
    if (const kaControlPoint2D* previous = beside.first)
        if (x < xOf(previous->getOutTangent(), *previous) || inX < previous->getPosition()[0])
            return false;
    if (const kaControlPoint2D* next = beside.second)
        if (x > xOf(next->getInTangent(), *next) || outX > next->getPosition()[0])
            return false;
    return true;
}

bool kaAnimationCurve2D::checkMoveConstraints2(kaControlPoint2D* point, float dx, bool fromSaved) const {
    if (!point)
        return false;
    float x = point->getPosition()[0];
    float inX = xOf(point->getInTangent(), *point);
    float outX = xOf(point->getOutTangent(), *point);
    if (fromSaved) {
        const bool byHand = point->getTangentType() == kaControlPoint2D::TANGENT_USER;
        x = point->getSavedPosition()[0];
        inX = byHand ? point->getSavedInTangent()[0] : inX - dx;
        outX = byHand ? point->getSavedOutTangent()[0] : outX - dx;
    }
    const PointPair beside = getPreviousAndNextPoint(point);
    if (const kaControlPoint2D* previous = beside.first)
        if (x + dx < xOf(previous->getOutTangent(), *previous) || inX + dx < previous->getPosition()[0])
            return false;
    if (const kaControlPoint2D* next = beside.second)
        if (x + dx > xOf(next->getInTangent(), *next) || outX + dx > next->getPosition()[0])
            return false;
    return true;
}

bool kaAnimationCurve2D::checkInsertConstraints(float x) const {
    const PointPair beside = getPreviousAndNextPoint(x);
    if (beside.first && xOf(beside.first->getOutTangent(), *beside.first) > x)
        return false;
    return !(beside.second && x > xOf(beside.second->getInTangent(), *beside.second));
}

void kaAnimationCurve2D::moveSelectedPoints(const osg::Vec2f& delta, bool snapX, bool snapY, bool tellParent,
                                            bool fromSaved) {
    if (!hasChildren())
        return;
    for (kaControlPoint2D* point : selectedPoints()) {
        if (!checkMoveConstraints2(point, delta[0], fromSaved))
            continue;
        dragPoint(point, delta, snapX, snapY, fromSaved);
        computeTangentsAround(point);
    }
    updateBy(this, MOVE_OBJECT, tellParent);
}

void kaAnimationCurve2D::dragPoint(kaControlPoint2D* point, const osg::Vec2f& delta, bool snapX, bool snapY,
                                   bool fromSaved) {
    const auto target = [&](const osg::Pnt2f& from) {
        return kaRounding::snap(moved(from, delta[0], delta[1]), snapX, snapY);
    };
    kaControlPoint2D* in = point->getInTangent();
    kaControlPoint2D* out = point->getOutTangent();
    point->setPosition(target(fromSaved ? point->getSavedPosition() : point->getPosition()));
    if (in)
        in->setPosition(target(fromSaved ? point->getSavedInTangent() : in->getPosition()));
    if (out)
        out->setPosition(target(fromSaved ? point->getSavedOutTangent() : out->getPosition()));
}

void kaAnimationCurve2D::moveSelectedPointsTo(const osg::Pnt2f& target, bool lockX, bool lockY,
                                              bool tellParent) {
    if ((lockX && lockY) || !hasChildren())
        return;
    for (kaControlPoint2D* point : selectedPoints()) {
        const float dx = lockX ? 0.0F : target[0] - point->getPosition()[0];
        const float dy = lockY ? 0.0F : target[1] - point->getPosition()[1];
        if (!lockX && !checkMoveConstraints2(point, dx, false))
            continue;
        for (kaControlPoint2D* part : {point, point->getInTangent(), point->getOutTangent()})
            if (part)
                part->setPosition(moved(part->getPosition(), dx, dy));
        computeTangentsAround(point);
    }
    updateBy(this, MOVE_OBJECT, tellParent);
}

// The whole curve in time.

/// Replaces the x of every key and handle. The order of the keys is looked at once, after all of them have
/// moved.
template <class Map>
void kaAnimationCurve2D::mapX(Map&& map) {
    for (kaControlPoint2D* point : points())
        for (kaControlPoint2D* part : {point->getInTangent(), point->getOutTangent(), point})
            if (part)
                part->setPosition(map(part->getPosition()[0]), part->getPosition()[1]);
    children().recheckOrder();
}

void kaAnimationCurve2D::move(float offset, bool tellParent) {
    if (!hasChildren())
        return;
    mapX([offset](float x) { return x + offset; });
    updateBy(this, MOVE_OBJECT, tellParent);
}

void kaAnimationCurve2D::moveBegin(float begin, bool tellParent) {
    const float oldBegin = getBegin();
    const float end = getEnd();
    if (!hasChildren() || !beginsBefore(begin, end) || oldBegin == end)
        return;
    setBegin(begin);
    const float factor = (end - begin) / (end - oldBegin);
    mapX([end, factor](float x) { return end - (end - x) * factor; });
    tellParentMoved(tellParent);
}

void kaAnimationCurve2D::moveEnd(float end, bool tellParent) {
    const float begin = getBegin();
    const float oldEnd = getEnd();
    if (!hasChildren() || !endsAfter(end, begin) || begin == oldEnd)
        return;
    setEnd(end);
    const float factor = (end - begin) / (oldEnd - begin);
    mapX([begin, factor](float x) { return (x - begin) * factor + begin; });
    tellParentMoved(tellParent);
}

void kaAnimationCurve2D::trimBegin(float /*begin*/, bool /*tellParent*/) {}

void kaAnimationCurve2D::trimEnd(float /*end*/, bool /*tellParent*/) {}

void kaAnimationCurve2D::flip() {
    if (!hasChildren())
        return;
    const float middle = static_cast<float>(static_cast<double>(getBegin()) +
                                            static_cast<double>(getEnd() - getBegin()) * 0.5);
    mapX([middle](float x) { return middle - x + middle; });
    for (kaControlPoint2D* point : points())
        swapHandles(*point);
    _flipped = !_flipped;
    updateBy(this, MOVE_OBJECT, false);
}

/// A key with only one handle gets (0, 0) for it: the place of the handle that is not there.
void kaAnimationCurve2D::swapHandles(kaControlPoint2D& point) {
    kaControlPoint2D* in = point.getInTangent();
    kaControlPoint2D* out = point.getOutTangent();
    const osg::Pnt2f inPosition = in ? in->getPosition() : osg::Pnt2f(0.0F, 0.0F);
    const osg::Pnt2f outPosition = out ? out->getPosition() : osg::Pnt2f(0.0F, 0.0F);
    if (in)
        in->setPosition(outPosition);
    if (out)
        out->setPosition(inPosition);
}

void kaAnimationCurve2D::triggerLoop(float frame) {
    if (!getCurveIDs().empty())
        fireTriggers(frame);
}
