#include "kaAttachments.h"

#include "kaFieldStore.h"
#include "kaObjectStore.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"

#include <algorithm>
#include <kaOpenSGUtils.h>

namespace {

template <class Attachment>
typename Attachment::Ptr findAttachment(const osg::NodePtr& node) {
    if (node == osg::NullFC)
        return osg::NullFC;
    return Attachment::Ptr::dcast(node->findAttachment(Attachment::getClassType().getGroupId()));
}

} // namespace

osg::AnimAttachmentPtr kaAttachments::of(const osg::NodePtr& node) {
    return findAttachment<osg::AnimAttachment>(node);
}

osg::AnimationAttachmentPtr kaAttachments::olderOf(const osg::NodePtr& node) {
    return findAttachment<osg::AnimationAttachment>(node);
}

osg::AnimAttachmentPtr kaAttachments::make(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr existing = of(node);
    if (node == osg::NullFC || existing != osg::NullFC)
        return existing;
    const osg::NodePtr held = node; // the caller's handle may be one that the host changes
    const osg::UInt32 nodeID = kaSceneNodes::idOf(held);
    held->addAttachment(osg::AnimAttachment::create());
    kaOpenSGUtils::announceChange(held, osg::AttachmentContainer::AttachmentsFieldMask);
    return of(kaSceneNodes::find(nodeID));
}

bool kaAttachments::remove(const osg::NodePtr& node) {
    const osg::AttachmentPtr attachment = of(node);
    if (attachment == osg::NullFC)
        return false;
    const osg::NodePtr held = node;
    held->subAttachment(attachment);
    kaOpenSGUtils::announceChange(held, osg::AttachmentContainer::AttachmentsFieldMask);
    return true;
}

std::vector<kaAnimationObject*> kaAttachments::objectsOf(const osg::NodePtr& node) {
    std::vector<kaAnimationObject*> objects;
    const osg::AnimAttachmentPtr attachment = of(node);
    if (attachment == osg::NullFC)
        return objects;
    for (const osg::UInt64 id : attachment->getObjectIDs())
        if (kaAnimationObject* object = kaObjectStore::find(id))
            objects.push_back(object);
    return objects;
}

std::vector<kaAnimationField*> kaAttachments::fieldsOf(const osg::NodePtr& node) {
    std::vector<kaAnimationField*> fields;
    const osg::AnimAttachmentPtr attachment = of(node);
    if (attachment == osg::NullFC)
        return fields;
    for (const osg::UInt64 id : attachment->getFieldIDs())
        if (kaAnimationField* field = kaFieldStore::find(id))
            fields.push_back(field);
    return fields;
}

bool kaAttachments::unlist(const osg::NodePtr& node, kaUID id) {
    const osg::AnimAttachmentPtr attachment = of(node);
    if (attachment == osg::NullFC)
        return false;
    osg::MFUInt64& listed = attachment->getObjectIDs();
    const auto found = std::find(listed.begin(), listed.end(), id);
    if (found == listed.end())
        return false;
    listed.erase(found);
    kaSceneAccess::recordChange(attachment, osg::AnimAttachment::ObjectIDsFieldMask);
    return true;
}
