#pragma once

#include "kaHostUtilsExport.h"

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransformAttachment.h>

/// The rotation of scene nodes, which lives in an attachment of the node as three angles in degrees.
namespace kaNodeUtils {

/// The node's transform attachment, or null when it has none or the node is null. The node keeps owning it.
KA_HOSTUTILS_API osg::TransformAttachmentPtr getTransformAttachment(const osg::NodePtr& node);

/// Turns the node: its rotation becomes the angles `x`, `y` and `z`, in degrees.
///
/// A node without transform attachment is given one, and what was written is announced as
/// kaOpenSGUtils::announceChange does: nothing is written or announced when the angles are the node's
/// already. A null node is ignored.
///
/// @param node   may be null.
/// @param x,y,z  degrees, about the axes of those names.
/// @param flags  for the host; -1 stands for all. This implementation knows none.
KA_HOSTUTILS_API void setTransformNodeRotation(const osg::NodePtr& node, osg::Real32 x, osg::Real32 y,
                                               osg::Real32 z, osg::Int32 flags);

} // namespace kaNodeUtils
