#include "kaAnimationObject.h"
#include "kaDependents.h"
#include "kaEdits.h"
#include "kaHierarchy.h"
#include "kaObjectClass.h"
#include "kaObjectGroup.h"
#include "kaObjectStore.h"
#include "kaWeakSlots.h"

#include <algorithm>
#include <new>

// What an object has below it, its beginning and its end with all of that, and whom it tells of changes.

namespace {

kaAnimationObject* find(kaUID id) {
    return kaObjectStore::find(id);
}

/// Takes from `ids` those that stand in `gone`, up to the first shared id that is 0. Ids ascend, so a shared
/// 0 comes first and nothing is taken.
void removeShared(std::set<kaUID>& ids, const std::set<kaUID>& gone) {
    if (ids.empty() || (gone.count(0) > 0 && ids.count(0) > 0))
        return;
    if (&ids == &gone) {
        ids.clear();
        return;
    }
    for (kaUID id : gone)
        ids.erase(id);
}

const std::set<kaUID>& noIDs() {
    static const std::set<kaUID> none;
    return none;
}

} // namespace

kaAnimationObject kaAnimationObject::_the;

kaAnimationObject::kaAnimationObject()
    : _active(true),
      _playing(false),
      _reversePlay(false),
      _repeating(false),
      _pausing(false),
      _flipped(false),
      _trimmed(false),
      _selected(false),
      _locked(false),
      _internal(false),
      _motionBlur(false),
      _useCustomRange(false),
      _isHandle(false),
      _hasDependents(false),
      _ownChild(false),
      _registered(false),
      _findable(false) {}

kaAnimationObject::~kaAnimationObject() {
    destroyChildren();
    if (_hasDependents)
        kaDependents::forget(*this);
    if (_home)
        _home->list->childLost(*this);
    if (_registered && kaObjectRegistry::isAlive())
        kaObjectStore::drop(*this);
    kaWeakSlots::giveBack(_weakSlot);
}

/// Depth first, each object after all that lies below it, with the way back held in the objects themselves:
/// any depth fits the stack and nothing is allocated. Takes each child out of its list before it goes, so
/// that none looks for its place in a list that is about to end.
void kaAnimationObject::destroyChildren() {
    if (!_group || _group->children.empty() || !kaObjectRegistry::isAlive())
        return;
    _group->above = nullptr;
    _group->children.beginTaking();
    for (kaAnimationObject* level = this; level;) {
        Group& group = *level->_group;
        if (group.children.empty()) {
            kaAnimationObject* above = group.above;
            if (level != this)
                kaObjectClass::of(*level).free(*level);
            level = above;
            continue;
        }
        kaAnimationObject* child = find(group.children.takeNext());
        if (!child || child == level || child == this ||
            kaObjectClass::of(*child).level == kaObjectClass::Level::None)
            continue;
        kaObjectStore::takeOut(*child);
        if (!child->_group || child->_group->children.empty()) {
            kaObjectClass::of(*child).free(*child);
            continue;
        }
        if (const auto beginEnd = kaObjectClass::of(*child).beginEnd)
            beginEnd(*child);
        child->_group->above = level;
        child->_group->children.beginTaking();
        level = child;
    }
}

std::uint32_t kaAnimationObject::weakSlot() const {
    if (_weakSlot == 0)
        _weakSlot = kaWeakSlots::take(const_cast<kaAnimationObject*>(this));
    return _weakSlot;
}

// Changes.

void kaAnimationObject::setId(kaUID id) {
    if (id == _id)
        return;
    if (_home)
        _home->list->childLost(*this);
    if (_ownChild)
        children(); // keeps the former id as its only child
    _id = id;
    _findable = false;
    kaEdits::note();
    if (_hasDependents)
        kaDependents::tell(*this, kaChange::Structure);
}

/// What is called so already keeps its name as it stands: the registry's index refers to the text.
void kaAnimationObject::setName(const std::string& name) {
    if (name == getName())
        return;
    kaObjectName next(name);
    kaObjectStore::changeName(*this, next);
    _name = std::move(next);
}

kaAnimationObject* kaAnimationObject::getParentObject() const {
    return _parent != 0 ? find(_parent) : nullptr;
}

/// Neither the selection nor the bounds of values are read by an evaluation, and the flags by no list.
void kaAnimationObject::noteChange(kaChange change) {
    if (change != kaChange::Selection && change != kaChange::Values)
        kaEdits::note();
    if (_home && change == kaChange::Shape)
        _home->list->childReshaped(*this);
    else if (_home && change != kaChange::Flags)
        _home->list->childChanged(*_home, *this, change);
    if (_hasDependents)
        kaDependents::tell(*this, change);
}

void kaAnimationObject::noteChangeBelow() {
    kaEdits::note();
    if (!_hasDependents)
        return;
    const bool isCurve = kaObjectClass::of(*this).level == kaObjectClass::Level::Curve;
    kaDependents::tell(*this, isCurve ? kaChange::Shape : kaChange::Structure);
}

void kaAnimationObject::storeExtent(const kaExtent& extent) {
    const bool isSpanKept = _begin == extent.begin && _end == extent.end;
    const bool isKept = isSpanKept && _maximum == extent.maximum && _minimum == extent.minimum;
    _begin = extent.begin;
    _end = extent.end;
    _maximum = extent.maximum;
    _minimum = extent.minimum;
    if (!isKept)
        noteChange(isSpanKept ? kaChange::Values : kaChange::Span);
}

const kaAnimationObject::Playback& kaAnimationObject::playback() const {
    static const Playback defaults;
    return _group && _group->playback ? *_group->playback : defaults;
}

kaAnimationObject::Playback& kaAnimationObject::editPlayback() {
    std::unique_ptr<Playback>& own = group().playback;
    if (!own)
        own = std::make_unique<Playback>();
    return *own;
}

kaAnimationObject::Group& kaAnimationObject::group() {
    if (!_group)
        _group = std::make_unique<Group>(*this);
    return *_group;
}

// Children.

kaChildList& kaAnimationObject::children() {
    Group& owned = group();
    if (_ownChild) {
        owned.children.assign({_id});
        _ownChild = false;
    }
    return owned.children;
}

const kaChildList* kaAnimationObject::childrenOrNull() const {
    return _group ? &_group->children : nullptr;
}

void kaAnimationObject::becomeOwnChild() {
    _ownChild = true;
}

std::vector<kaUID> kaAnimationObject::getChildIDs() const {
    if (_ownChild)
        return {_id};
    return _group ? _group->children.ids() : std::vector<kaUID>();
}

void kaAnimationObject::setChildIDs(const std::vector<kaUID>& ids) {
    _ownChild = false;
    group().children.assign(ids);
    noteChange(kaChange::Structure);
}

std::size_t kaAnimationObject::getChildCount() const {
    return _ownChild ? 1 : (_group ? _group->children.size() : 0);
}

bool kaAnimationObject::hasChildren() const {
    return getChildCount() > 0;
}

std::vector<kaAnimationObject*> kaAnimationObject::getObjects() const {
    std::vector<kaAnimationObject*> objects;
    if (_ownChild) {
        if (kaAnimationObject* object = find(_id))
            objects.push_back(object);
    } else if (_group) {
        objects.reserve(_group->children.size());
        _group->children.forEach([&objects](kaAnimationObject& child) { objects.push_back(&child); });
    }
    return objects;
}

bool kaAnimationObject::hasChild(kaUID id) const {
    return _ownChild ? id == _id : _group && _group->children.contains(id);
}

std::pair<std::size_t, bool> kaAnimationObject::findObject(kaUID id) const {
    if (_ownChild)
        return id == _id ? std::make_pair(std::size_t{0}, true) : std::make_pair(std::size_t{1}, false);
    return _group ? _group->children.position(id) : std::make_pair(std::size_t{0}, false);
}

std::pair<std::size_t, bool> kaAnimationObject::findObject(float begin) const {
    if (_ownChild) {
        const kaAnimationObject* object = find(_id);
        const bool found = object && object->getBegin() == begin;
        return {found ? std::size_t{0} : std::size_t{1}, found};
    }
    return _group ? _group->children.position(begin) : std::make_pair(std::size_t{0}, false);
}

bool kaAnimationObject::compareObjectsByBegin(kaUID a, kaUID b) {
    const kaAnimationObject* first = find(a);
    const kaAnimationObject* second = find(b);
    return first && second && first->getBegin() < second->getBegin();
}

bool kaAnimationObject::mayAdopt(const kaAnimationObject& object, unsigned int levelsBetween) const {
    return kaHierarchy::mayAdopt(*this, object, levelsBetween);
}

// Ids below.

const std::set<kaUID>& kaAnimationObject::getCurveIDs() const {
    return _group ? _group->curves : noIDs();
}

const std::set<kaUID>& kaAnimationObject::getSequenceIDs() const {
    return _group ? _group->sequences : noIDs();
}

/// Of the ids of the curves below.
void kaAnimationObject::noteSetChange() {
    kaEdits::note();
    if (_hasDependents)
        kaDependents::tell(*this, kaChange::Structure);
}

void kaAnimationObject::setCurveIDs(const std::set<kaUID>& ids) {
    group().curves = ids;
    ++group().curvesRevision;
    noteSetChange();
}

void kaAnimationObject::setSequenceIDs(const std::set<kaUID>& ids) {
    group().sequences = ids;
}

void kaAnimationObject::insertCurveID(kaUID id) {
    group().curves.insert(id);
    ++group().curvesRevision;
    noteSetChange();
}

void kaAnimationObject::insertSequenceID(kaUID id) {
    group().sequences.insert(id);
}

// Notices.

void kaAnimationObject::takeIn(const std::set<kaUID>& curves, const std::set<kaUID>& sequences,
                               Operation operation) {
    if (operation == MOVE_OBJECT || (curves.empty() && sequences.empty()))
        return;
    Group& owned = group();
    if (operation == ADD_OBJECT && &curves != &owned.curves) {
        owned.curves.insert(curves.begin(), curves.end());
        owned.sequences.insert(sequences.begin(), sequences.end());
    } else if (operation == SUB_OBJECT) {
        removeShared(owned.curves, curves);
        removeShared(owned.sequences, sequences);
    }
    ++owned.curvesRevision;
    noteSetChange();
}

void kaAnimationObject::updateBy(kaAnimationObject* child, Operation operation, bool recursive) {
    if (child)
        takeInUpwards(child->getCurveIDs(), child->getSequenceIDs(), operation, recursive);
}

void kaAnimationObject::updateAll(const std::vector<kaUID>& ids, Operation operation, bool recursive) {
    if (ids.empty())
        return;
    const kaAnimationObject* first = find(ids.front());
    takeInUpwards(first ? first->getCurveIDs() : noIDs(), first ? first->getSequenceIDs() : noIDs(),
                  operation, recursive);
}

/// A list that holds more than its own known children needs memory to be sorted. One that has lost a child
/// stays as it is where there is none: children leave in the middle of being destroyed, which cannot fail.
void kaAnimationObject::sortChildren(kaChildList& children, Operation operation) {
    try {
        children.sort();
    } catch (const std::bad_alloc&) {
        if (operation != SUB_OBJECT)
            throw;
    }
}

/// An object that stands for its own child (a curve that lost its last key) or comes round in a ring of
/// parents loses the very ids that the others are to lose, so it loses them last.
void kaAnimationObject::takeInUpwards(const std::set<kaUID>& curves, const std::set<kaUID>& sequences,
                                      Operation operation, bool recursive) {
    kaAnimationObject* source = nullptr;
    kaHierarchy::forEachUpwards(this, [&](kaAnimationObject& level) {
        if (operation == SUB_OBJECT && level._group && &level._group->curves == &curves)
            source = &level;
        else
            level.takeIn(curves, sequences, operation);
        if (level._group)
            sortChildren(level._group->children, operation);
        level.updateBounds();
        return recursive;
    });
    if (source)
        source->takeIn(curves, sequences, operation);
}

void kaAnimationObject::tellParentMoved(bool tellParent) {
    if (!tellParent)
        return;
    if (kaAnimationObject* parent = getParentObject())
        parent->updateBy(this, MOVE_OBJECT, true);
}

void kaAnimationObject::updateCurves() {}

void kaAnimationObject::updateBounds() {
    if (!hasChildren())
        return;
    if (!_ownChild) {
        storeExtent(_group->children.extent());
        return;
    }
    kaExtent extent;
    if (const kaAnimationObject* self = find(_id))
        if (self->hasChildren() || kaObjectClass::of(*self).hasOwnExtent())
            extent = {self->getBegin(), self->getEnd(), self->getMaximum(), self->getMinimum()};
    storeExtent(extent);
}
