#pragma once

#include "kaAnimationTypes.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGNode.h>
#include <vector>

class kaAnimationField;
class kaAnimationObject;

/// The animation attachments of scene nodes, and the ids of objects and fields that they list.
namespace kaAttachments {

/// The node's animation attachment; null for a null node or one without. Another type's attachment under the
/// same group counts as none.
osg::AnimAttachmentPtr of(const osg::NodePtr& node);
/// The same for the attachment of the older format.
osg::AnimationAttachmentPtr olderOf(const osg::NodePtr& node);
/// The node's attachment, made and announced when missing. Null for a null node, and where the host took node
/// or attachment away in answer to the announcement.
osg::AnimAttachmentPtr make(const osg::NodePtr& node);
/// Detaches the attachment and announces the change. @return whether there was one.
bool remove(const osg::NodePtr& node);

/// The registered objects (fields) that the node lists, in list order; nothing is created.
std::vector<kaAnimationObject*> objectsOf(const osg::NodePtr& node);
/// @copydoc objectsOf
std::vector<kaAnimationField*> fieldsOf(const osg::NodePtr& node);

/// Takes the first listing of an object's id off the node's list; the host is not called. @return whether
/// there was one.
bool unlist(const osg::NodePtr& node, kaUID id);

} // namespace kaAttachments
