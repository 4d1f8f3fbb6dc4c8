#include "kaNodeUtils.h"

#include "kaOpenSGUtils.h"

#include <OpenSG/OSGFieldContainerFactory.h>

osg::TransformAttachmentPtr kaNodeUtils::getTransformAttachment(const osg::NodePtr& node) {
    if (node == osg::NullFC) {
        return osg::NullFC;
    }
    return osg::TransformAttachmentPtr::dcast(node->findAttachment(osg::TransformAttachment::getClassType()));
}

void kaNodeUtils::setTransformNodeRotation(const osg::NodePtr& node, osg::Real32 x, osg::Real32 y,
                                           osg::Real32 z, osg::Int32 /*flags*/) {
    if (node == osg::NullFC) {
        return;
    }
    osg::TransformAttachmentPtr attachment = getTransformAttachment(node);
    const osg::Vec3f rotation(x, y, z);
    if (attachment == osg::NullFC) {
        attachment = osg::TransformAttachment::create();
        attachment->setRotation(rotation);
        node->addAttachment(attachment);
        // Whoever is told may take the node away, and the attachment with it.
        const osg::UInt32 id = attachment.getFieldContainerId();
        kaOpenSGUtils::announceChange(node, osg::Node::AttachmentsFieldMask);
        kaOpenSGUtils::announceChange(osg::FieldContainerFactory::the()->getContainer(id),
                                      osg::TransformAttachment::RotationFieldMask);
        return;
    }
    if (attachment->getRotation() == rotation) {
        return;
    }
    attachment->setRotation(rotation);
    kaOpenSGUtils::announceChange(attachment, osg::TransformAttachment::RotationFieldMask);
}
