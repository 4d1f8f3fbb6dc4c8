#pragma once

#include "kaAnimationTypes.h"

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGNode.h>
#include <string>
#include <vector>

class kaAnimationField;
class kaAnimationObject;

/// The fields that a scene node offers for animation: discovered, listed on the node's attachment, found by
/// attribute; and the objects that are listed beside them.
///
/// Announcing a change lets the host do anything, so a node is looked up again by id after each.
namespace kaNodeFields {

/// The node's attachment, made when missing; a newly made one gets the node's fields. Null for a null node,
/// and where the host took node or attachment away in answer to the announcement.
osg::AnimAttachmentPtr attachmentWithFields(const osg::NodePtr& node);

/// The fields that the node lists; without any, those that are discovered (`kaFieldDiscovery`), which are
/// then listed. Empty for a node without core.
std::vector<kaAnimationField*> make(const osg::NodePtr& node);
/// The node's fields, discovered and attached when the node has no attachment yet.
std::vector<kaAnimationField*> get(const osg::NodePtr& node);
/// The first of the node's fields with that attribute, older spellings included ("rotateX"), discovering the
/// fields first; null when there is none.
kaAnimationField* find(const osg::NodePtr& node, const std::string& attribute);
/// Destroys the fields that the node lists and discovers them anew. Prints one line.
std::vector<kaAnimationField*> remake(const osg::NodePtr& node);

/// Leaves one field per attribute on the node's list, the first; the curves of the others move to it. The
/// others stay registered.
void makeUnique(const osg::NodePtr& node);
/// Moves the curves of one registered field to another, whose default colour they take.
void replace(kaAnimationField& from, kaAnimationField& to);
/// Points what the node lists at the node: its fields at the core, or at the material of a material group
/// that has one, and its blocks at the node.
void complete(const osg::NodePtr& node);

/// Lists the object on the node, unchecked for repeats, making attachment and fields where the node has none;
/// for a block the first listing of each of its curves goes.
/// @return false for null, and where the host freed the object in answer to the attachment's announcement.
/// Cost: O(n log c) for n listed objects and the c curves of a block, else O(1).
bool list(const osg::NodePtr& node, kaAnimationObject* object);

} // namespace kaNodeFields
