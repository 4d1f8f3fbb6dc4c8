#include "kaSceneSync.h"

#include "kaAnimationObject.h"
#include "kaAnimationStrip.h"
#include "kaAttachments.h"
#include "kaFieldStore.h"
#include "kaObjectStore.h"
#include "kaSceneNodes.h"

#include <unordered_set>

namespace {

void insertAll(std::set<kaUID>& ids, const osg::MFUInt64& listed) {
    ids.insert(listed.begin(), listed.end());
}

std::vector<kaUID> copied(const osg::MFUInt64& ids) {
    return {ids.begin(), ids.end()};
}

bool isTopLevel(const kaAnimationObject& object) {
    return object.getParentObject() == nullptr;
}

// Destroying announces scene changes, and the host may destroy more meanwhile: every id is resolved just
// before.

void destroyObjects(const std::vector<kaUID>& ids) {
    for (kaUID id : ids)
        kaObjectStore::destroy(kaObjectStore::find(id));
}

void destroyFields(const std::vector<kaUID>& ids) {
    for (kaUID id : ids)
        kaFieldStore::destroy(kaFieldStore::find(id));
}

void pushChildren(const osg::NodePtr& node, std::vector<osg::UInt32>& pending) {
    for (osg::UInt32 i = node->getNChildren(); i > 0; --i)
        pending.push_back(kaSceneNodes::idOf(node->getChild(i - 1)));
}

} // namespace

void kaSceneSync::mark(const osg::NodePtr& root) {
    if (root == osg::NullFC)
        return;
    _objects.clear();
    kaSceneNodes::forEach(root, [this](const osg::NodePtr& node) { collect(node); });
}

void kaSceneSync::collect(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr attachment = kaAttachments::of(node);
    if (attachment == osg::NullFC)
        return;
    insertAll(_objects, attachment->getObjectIDs());
    insertAll(_objects, attachment->getSecondObjectIDs());
    insertAll(_fields, attachment->getFieldIDs());
    insertAll(_fields, attachment->getSecondFieldIDs());
}

void kaSceneSync::sweep() const {
    destroyObjects(unreferencedObjects());
    destroyFields(unreferencedFields());
}

std::vector<kaUID> kaSceneSync::unreferencedObjects() const {
    std::vector<kaUID> ids;
    for (const auto& [id, object] : kaObjectRegistry::the().ordered())
        if (!kaObjectCast<kaAnimationStrip>(object) && isTopLevel(*object) && !object->isInternal() &&
            _objects.count(id) == 0)
            ids.push_back(id);
    return ids;
}

std::vector<kaUID> kaSceneSync::unreferencedFields() const {
    std::vector<kaUID> ids;
    for (const auto& [id, field] : kaObjectRegistry::the().fields())
        if (_fields.count(id) == 0)
            ids.push_back(id);
    return ids;
}

/// Walks with a list of its own, so that a deep scene is no matter of the stack, and meets every node once.
void kaSceneSync::destroyNodeObjects(const osg::NodePtr& node, bool recursive) {
    std::unordered_set<osg::UInt32> seen;
    std::vector<osg::UInt32> pending{kaSceneNodes::idOf(node)};
    while (!pending.empty()) {
        const osg::UInt32 id = pending.back();
        pending.pop_back();
        const osg::AnimAttachmentPtr attachment = kaAttachments::of(kaSceneNodes::find(id));
        if (attachment == osg::NullFC || !seen.insert(id).second)
            continue;
        const std::vector<kaUID> objectIDs = copied(attachment->getObjectIDs());
        const std::vector<kaUID> fieldIDs = copied(attachment->getFieldIDs());
        destroyObjects(objectIDs);
        destroyFields(fieldIDs);
        const osg::NodePtr current = kaSceneNodes::find(id);
        if (recursive && current != osg::NullFC)
            pushChildren(current, pending);
    }
}
