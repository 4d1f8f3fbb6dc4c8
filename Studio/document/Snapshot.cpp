#include "Snapshot.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNode.h>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaControlPoint2D.h>

namespace ka::studio {

namespace {

osg::NodePtr nodeWithId(unsigned int id) {
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

osg::AnimAttachmentPtr attachmentOf(unsigned int node) {
    return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(nodeWithId(node)));
}

/// Takes from both maps what they have in common, and adds to `absent` the keys of `there` that `here` lacks.
template <class Map>
void dropEqual(Map& here, Map& there) {
    for (auto mine = here.begin(); mine != here.end();) {
        const auto other = there.find(mine->first);
        if (other == there.end() || !(other->second == mine->second)) {
            ++mine;
            continue;
        }
        there.erase(other);
        mine = here.erase(mine);
    }
}

/// The same for lists in ascending order of ids.
void dropEqual(std::vector<KeyState>& here, std::vector<KeyState>& there) {
    std::vector<KeyState> mine, others;
    auto other = there.begin();
    for (const KeyState& key : here) {
        while (other != there.end() && other->id < key.id)
            others.push_back(*other++);
        if (other == there.end() || other->id != key.id) {
            mine.push_back(key);
        } else if (!(*other == key)) {
            mine.push_back(key);
            others.push_back(*other++);
        } else {
            ++other;
        }
    }
    others.insert(others.end(), other, there.end());
    here = std::move(mine);
    there = std::move(others);
}

bool byId(const KeyState& a, const KeyState& b) {
    return a.id < b.id;
}

void noteAbsent(const std::vector<KeyState>& present, const std::vector<KeyState>& lacking,
                std::vector<kaUID>& absent) {
    for (const KeyState& key : present)
        if (!std::binary_search(lacking.begin(), lacking.end(), key, byId))
            absent.push_back(key.id);
}

template <class Map>
void noteAbsent(const Map& present, const Map& lacking, std::vector<kaUID>& absent) {
    for (const auto& [id, state] : present)
        if (lacking.find(id) == lacking.end())
            absent.push_back(id);
}

} // namespace

bool Snapshot::Listing::operator==(const Listing& other) const {
    return objects == other.objects && fields == other.fields;
}

Snapshot::Snapshot(const Scope& scope) {
    std::unordered_set<kaUID> seen;
    for (const kaUID id : scope.objects) {
        includeTree(id, seen);
        includeAncestors(id, seen);
    }
    for (const unsigned int node : scope.nodes)
        includeNode(node);
    sortKeys();
}

Snapshot::Snapshot(const Scope& scope, const Snapshot& earlier) : Snapshot(scope) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    const std::vector<KeyState> inScope = _keys; // without those that join
    for (const KeyState& key : earlier._keys)
        if (!std::binary_search(inScope.begin(), inScope.end(), key, byId) &&
            manager->getPoint2D(key.id) != nullptr)
            includeId(key.id);
    for (const auto& [id, state] : earlier._objects)
        if (_objects.find(id) == _objects.end() && manager->getObject(id) != nullptr)
            includeId(id);
    for (const auto& [id, state] : earlier._fields)
        if (_fields.find(id) == _fields.end() && manager->getField(id) != nullptr)
            includeId(id);
    for (const auto& [node, listing] : earlier._listings)
        includeNode(node);
    sortKeys();
}

Snapshot Snapshot::everything(const osg::NodePtr& root, const std::function<void(std::size_t)>& step) {
    Snapshot all;
    std::vector<osg::NodePtr> pending{root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        if (node == osg::NullFC)
            continue;
        if (attachmentOf(node.getFieldContainerId()) != osg::NullFC)
            all._listings.emplace(node.getFieldContainerId(), listingOf(node.getFieldContainerId()));
        for (osg::UInt32 i = 0; i < node->getNChildren(); ++i)
            pending.push_back(node->getChild(i));
    }
    const kaAnimationManager* manager = kaAnimationManager::the();
    for (const auto& [id, field] : manager->getFields())
        all._fields.emplace(id, stateOf(*field));
    for (const unsigned int type :
         {KA_TYPE_POINT, KA_TYPE_CURVE, KA_TYPE_UNIT, KA_TYPE_STREAK, KA_TYPE_STRIP, KA_TYPE_SEQUENCE})
        for (const kaAnimationObject* object : manager->getObjects(type)) {
            if (type != KA_TYPE_POINT)
                all._objects.emplace(object->getId(), stateOf(*object));
            else if (const auto* key = static_cast<const kaControlPoint2D*>(object); !key->isTangent())
                all._keys.push_back(stateOf(*key));
            step(all.size());
        }
    all.sortKeys();
    return all;
}

void Snapshot::sortKeys() {
    std::sort(_keys.begin(), _keys.end(), byId);
    const auto sameId = [](const KeyState& a, const KeyState& b) { return a.id == b.id; };
    _keys.erase(std::unique(_keys.begin(), _keys.end(), sameId), _keys.end());
}

void Snapshot::includeTree(kaUID root, std::unordered_set<kaUID>& seen) {
    std::vector<kaUID> pending{root};
    while (!pending.empty()) {
        const kaUID id = pending.back();
        pending.pop_back();
        kaAnimationObject* object = kaAnimationManager::the()->getObject(id);
        const bool isKey = object != nullptr && object->getTypeID() == KA_TYPE_POINT;
        if (object == nullptr || (!isKey && !seen.insert(id).second))
            continue;
        include(*object);
        if (!isKey)
            for (const kaUID child : object->getChildIDs())
                pending.push_back(child);
    }
}

void Snapshot::includeAncestors(kaUID id, std::unordered_set<kaUID>& seen) {
    kaAnimationObject* object = kaAnimationManager::the()->getObject(id);
    for (unsigned int level = 0; object != nullptr && level < KA_MAX_DEPTH; ++level) {
        object = object->getParentObject();
        if (object == nullptr || !seen.insert(object->getId()).second)
            return;
        include(*object);
    }
}

void Snapshot::include(kaAnimationObject& object) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    const kaUID id = object.getId();
    if (const kaControlPoint2D* key = manager->getPoint2D(id)) {
        _keys.push_back(stateOf(*key));
        return;
    }
    _objects.emplace(id, stateOf(object));
    if (const kaAnimationUnit* block = manager->getUnit(id))
        includeNode(block->getNodeID());
    if (const kaAnimationCurve2D* curve = manager->getCurve2D(id))
        if (const kaAnimationField* field = manager->getField(curve->getField()))
            includeNode(static_cast<unsigned int>(field->nodeID));
}

void Snapshot::includeNode(unsigned int node) {
    if (_listings.find(node) != _listings.end() || nodeWithId(node) == osg::NullFC)
        return;
    const Listing& listing = _listings.emplace(node, listingOf(node)).first->second;
    for (const kaUID id : listing.fields)
        if (const kaAnimationField* field = kaAnimationManager::the()->getField(id))
            _fields.emplace(id, stateOf(*field));
}

void Snapshot::includeId(kaUID id) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    if (const kaControlPoint2D* key = manager->getPoint2D(id))
        _keys.push_back(stateOf(*key));
    else if (const kaAnimationObject* object = manager->getObject(id))
        _objects.emplace(id, stateOf(*object));
    else if (const kaAnimationField* field = manager->getField(id))
        _fields.emplace(id, stateOf(*field));
    else
        _absent.push_back(id);
}

void Snapshot::keepDifferences(Snapshot& before, Snapshot& after) {
    dropEqual(before._keys, after._keys);
    dropEqual(before._objects, after._objects);
    dropEqual(before._fields, after._fields);
    dropEqual(before._listings, after._listings);
    noteAbsent(before._keys, after._keys, after._absent);
    noteAbsent(before._objects, after._objects, after._absent);
    noteAbsent(before._fields, after._fields, after._absent);
    noteAbsent(after._keys, before._keys, before._absent);
    noteAbsent(after._objects, before._objects, before._absent);
    noteAbsent(after._fields, before._fields, before._absent);
}

bool Snapshot::isEmpty() const {
    return _keys.empty() && _objects.empty() && _fields.empty() && _listings.empty() && _absent.empty();
}

std::vector<kaUID> Snapshot::ids() const {
    std::vector<kaUID> ids = _absent;
    for (const KeyState& key : _keys)
        ids.push_back(key.id);
    for (const auto& [id, state] : _objects)
        ids.push_back(id);
    for (const auto& [id, state] : _fields)
        ids.push_back(id);
    return ids;
}

std::vector<kaUID> Snapshot::objectIds() const {
    std::vector<kaUID> ids = _absent;
    for (const KeyState& key : _keys)
        if (key.parent != 0 && (ids.empty() || ids.back() != key.parent))
            ids.push_back(key.parent);
    for (const auto& [id, state] : _objects)
        ids.push_back(id);
    for (const auto& [id, state] : _fields)
        ids.push_back(id);
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

Snapshot Snapshot::exchange() const {
    Snapshot now;
    for (const kaUID id : ids())
        now.includeId(id);
    now.sortKeys();
    for (const auto& [node, listing] : _listings)
        now._listings.emplace(node, listingOf(node));
    restore();
    return now;
}

/// What goes is first cut off from what stands around it, so that nothing else goes along or is told: those
/// have states of their own.
void Snapshot::destroy(const std::vector<kaUID>& ids, const std::function<void(std::size_t)>& step) {
    kaAnimationManager* manager = kaAnimationManager::the();
    std::size_t count = 0;
    for (const kaUID id : ids) {
        kaAnimationObject* object = manager->getObject(id);
        if (object == nullptr)
            continue;
        object->setParent(0);
        if (object->getTypeID() != KA_TYPE_POINT)
            object->setChildIDs({});
    }
    for (const kaUID id : ids) {
        manager->destroyObject(manager->getObject(id));
        manager->destroyField(manager->getField(id));
        if (step)
            step(++count);
    }
}

void Snapshot::takeAway(const std::function<void(std::size_t)>& step) const {
    destroy(ids(), step);
}

void Snapshot::restore(const std::function<void(std::size_t)>& step) const {
    kaAnimationManager* manager = kaAnimationManager::the();
    std::size_t count = 0;
    const auto done = [&] {
        if (step)
            step(++count);
    };
    destroy(_absent, nullptr);
    for (const auto& [id, state] : _fields) {
        if (manager->getField(id) == nullptr)
            create(state);
        apply(state, *manager->getField(id));
    }
    for (const KeyState& state : _keys) {
        if (manager->getPoint2D(state.id) == nullptr)
            create(state);
        done();
    }
    for (const auto& [id, state] : _objects)
        if (manager->getObject(id) == nullptr)
            create(state);
    for (const KeyState& state : _keys) {
        if (kaControlPoint2D* key = manager->getPoint2D(state.id))
            apply(state, *key);
        done();
    }
    for (const auto& [id, state] : _objects)
        if (kaAnimationObject* object = manager->getObject(id))
            apply(state, *object);
    for (const auto& [node, listing] : _listings)
        applyListing(node, listing);
}

Snapshot::Listing Snapshot::listingOf(unsigned int node) {
    const osg::AnimAttachmentPtr attachment = attachmentOf(node);
    if (attachment == osg::NullFC)
        return {};
    const osg::MFUInt64& objects = attachment->getObjectIDs();
    const osg::MFUInt64& fields = attachment->getFieldIDs();
    return {{objects.begin(), objects.end()}, {fields.begin(), fields.end()}};
}

void Snapshot::applyListing(unsigned int node, const Listing& listing) {
    osg::AnimAttachmentPtr attachment = attachmentOf(node);
    if (listing == listingOf(node))
        return;
    if (attachment == osg::NullFC)
        attachment = osg::AnimAttachmentPtr::dcast(
            kaAnimationUtils::createAnimationAttachment(nodeWithId(node), false));
    if (attachment == osg::NullFC)
        return;
    const osg::BitVector mask =
        osg::AnimAttachment::ObjectIDsFieldMask | osg::AnimAttachment::FieldIDsFieldMask;
    osg::beginEditCP(attachment, mask);
    osg::MFUInt64& objects = attachment->editObjectIDs();
    osg::MFUInt64& fields = attachment->editFieldIDs();
    objects.clear();
    fields.clear();
    for (const kaUID id : listing.objects)
        objects.push_back(id);
    for (const kaUID id : listing.fields)
        fields.push_back(id);
    osg::endEditCP(attachment, mask);
}

} // namespace ka::studio
