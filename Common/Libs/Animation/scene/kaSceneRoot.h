#pragma once

#include <OpenSG/OSGNode.h>

/// The scene that the host handed over.
namespace kaSceneRoot {

/// Null takes the scene back. The node stays the host's.
void set(const osg::NodePtr& root);
/// Null while there is none; a root that was destroyed without notice counts as none.
const osg::NodePtr& get();

} // namespace kaSceneRoot
