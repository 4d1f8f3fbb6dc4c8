#include "kaNodeFields.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationUnit.h"
#include "kaAttachments.h"
#include "kaFieldCurves.h"
#include "kaFieldDiscovery.h"
#include "kaFieldInfo.h"
#include "kaFieldStore.h"
#include "kaObjectClass.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"
#include "kaWeak.h"

#include <OpenSG/OSGMaterialGroup.h>
#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

using kaSceneAccess::coreOf;
using kaSceneAccess::isKindOf;
using kaSceneAccess::recordChange;

namespace {

using FieldReplacements = std::map<kaAnimationField*, kaAnimationField*>;

/// Moves the curves of each first field to the second. All are looked up before any is moved: a second may be
/// another's first.
void replaceFields(const FieldReplacements& replacements) {
    std::vector<std::pair<kaAnimationCurve2D*, kaAnimationField*>> moves;
    for (const auto& [from, to] : replacements)
        for (kaAnimationCurve2D* curve : kaFieldCurves::of(*from))
            moves.emplace_back(curve, to);
    for (const auto& [curve, to] : moves)
        curve->setAnimationField(to);
}

/// Takes the first listing of each of `ids`, which are in ascending order, out of a list in one pass.
/// @param removed  a false for each id. Nothing is allocated here.
void removeFirstListings(osg::MFUInt64& list, const std::vector<kaUID>& ids, std::vector<bool>& removed) {
    // Mostly there is nothing to take out, and a plain search for a few ids is several times as fast as the pass.
    constexpr std::size_t Few = 8;
    const auto isListed = [&list](kaUID id) { return std::find(list.begin(), list.end(), id) != list.end(); };
    if (ids.size() <= Few && std::none_of(ids.begin(), ids.end(), isListed))
        return;
    const auto end = std::remove_if(list.begin(), list.end(), [&](osg::UInt64 listed) {
        const auto found = std::lower_bound(ids.begin(), ids.end(), listed);
        const auto place = static_cast<std::size_t>(found - ids.begin());
        if (found == ids.end() || *found != listed || removed[place])
            return false;
        removed[place] = true;
        return true;
    });
    list.erase(end, list.end());
}

} // namespace

osg::AnimAttachmentPtr kaNodeFields::attachmentWithFields(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr existing = kaAttachments::of(node);
    if (node == osg::NullFC || existing != osg::NullFC)
        return existing;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    kaAttachments::make(node);
    make(kaSceneNodes::find(nodeID));
    return kaAttachments::of(kaSceneNodes::find(nodeID));
}

std::vector<kaAnimationField*> kaNodeFields::make(const osg::NodePtr& node) {
    if (coreOf(node) == osg::NullFC)
        return {};
    std::vector<kaAnimationField*> fields = kaAttachments::fieldsOf(node);
    if (!fields.empty())
        return fields;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    kaAttachments::make(node);

    const osg::NodePtr current = kaSceneNodes::find(nodeID);
    const osg::AnimAttachmentPtr attachment = kaAttachments::of(current);
    if (attachment == osg::NullFC || coreOf(current) == osg::NullFC)
        return {};
    fields = kaAttachments::fieldsOf(current);
    if (!fields.empty())
        return fields;
    kaFieldDiscovery discovery(current);
    fields = discovery.run();
    osg::MFUInt64& listed = attachment->getFieldIDs();
    listed.reserve(listed.size() + fields.size()); // from here on nothing can fail
    for (const kaAnimationField* field : fields)
        listed.push_back(field->getId());
    discovery.keep();
    recordChange(attachment, osg::AnimAttachment::FieldIDsFieldMask);
    return fields;
}

kaAnimationField* kaNodeFields::find(const osg::NodePtr& node, const std::string& attribute) {
    if (node == osg::NullFC || attribute.empty())
        return nullptr;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    const std::string wanted = kaFieldInfo::fullAttributeName(attribute);
    make(node);
    for (kaAnimationField* field : kaAttachments::fieldsOf(kaSceneNodes::find(nodeID)))
        if (field->attribute == wanted)
            return field;
    return nullptr;
}

std::vector<kaAnimationField*> kaNodeFields::remake(const osg::NodePtr& node) {
    if (node == osg::NullFC)
        return {};
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    std::printf("Recreating animation fields for node %i\n", static_cast<int>(nodeID));
    const auto attachment = attachmentWithFields(node);
    if (attachment == osg::NullFC)
        return {};
    for (const osg::UInt64 id : attachment->getFieldIDs())
        kaFieldStore::destroy(kaFieldStore::find(id));
    attachment->getFieldIDs().clear();
    recordChange(attachment, osg::AnimAttachment::FieldIDsFieldMask);
    return make(kaSceneNodes::find(nodeID));
}

std::vector<kaAnimationField*> kaNodeFields::get(const osg::NodePtr& node) {
    if (coreOf(node) == osg::NullFC)
        return {};
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    attachmentWithFields(node);
    return kaAttachments::fieldsOf(kaSceneNodes::find(nodeID));
}

void kaNodeFields::makeUnique(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr attachment = kaAttachments::of(node);
    if (attachment == osg::NullFC)
        return;
    std::map<std::string, kaAnimationField*> first;
    FieldReplacements replacements;
    osg::MFUInt64& listed = attachment->getFieldIDs();
    std::vector<osg::UInt64> kept;
    for (const osg::UInt64 id : listed) {
        kaAnimationField* field = kaFieldStore::find(id);
        if (!field)
            continue;
        const auto [entry, isNew] = first.emplace(field->attribute, field);
        if (isNew)
            kept.push_back(id);
        else
            replacements.emplace(field, entry->second);
    }
    if (kept.size() != listed.size()) {
        listed.erase(std::copy(kept.begin(), kept.end(), listed.begin()), listed.end());
        recordChange(attachment, osg::AnimAttachment::FieldIDsFieldMask);
    }
    replaceFields(replacements);
}

void kaNodeFields::replace(kaAnimationField& from, kaAnimationField& to) {
    replaceFields({{&from, &to}});
}

/// Visibility and rotation fields are pointed at the core like all others; writing falls back on the node's
/// id then.
void kaNodeFields::complete(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr attachment = kaAttachments::of(node);
    const osg::NodeCorePtr core = coreOf(node);
    if (attachment == osg::NullFC || core == osg::NullFC)
        return;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    const bool isMaterialGroup = isKindOf<osg::MaterialGroup>(core);
    const osg::FieldContainerPtr container =
        isMaterialGroup ? kaSceneAccess::materialOf(core) : osg::FieldContainerPtr(core);
    for (kaAnimationField* field : kaAttachments::fieldsOf(node)) {
        field->nodeID = nodeID;
        if (container != osg::NullFC)
            field->fcID = container.getFieldContainerId();
    }
    for (kaAnimationObject* object : kaAttachments::objectsOf(node))
        if (auto* block = kaObjectCast<kaAnimationUnit>(object))
            block->setNodeID(nodeID);
}

bool kaNodeFields::list(const osg::NodePtr& node, kaAnimationObject* object) {
    if (!object || node == osg::NullFC)
        return false;
    const kaWeak<kaAnimationObject> alive(*object);
    const auto attachment = attachmentWithFields(node);
    if (!alive || attachment == osg::NullFC)
        return false;
    osg::MFUInt64& listed = attachment->getObjectIDs();
    std::vector<kaUID> curves;
    if (kaObjectCast<kaAnimationUnit>(object) && !listed.empty())
        for (const kaAnimationCurve2D* curve : object->getCurves())
            curves.push_back(curve->getId());
    std::sort(curves.begin(), curves.end());
    std::vector<bool> removed(curves.size(), false);
    listed.push_back(object->getId());
    removeFirstListings(listed, curves, removed);
    recordChange(attachment, osg::AnimAttachment::ObjectIDsFieldMask);
    return true;
}
