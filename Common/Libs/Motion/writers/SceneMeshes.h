#pragma once

#include "writers/SceneNodes.h"

#include <OpenSG/OSGNode.h>

namespace ka::motion {

/// Describes the geometries of a scene as the meshes of a motion whose nodes are those of `scene`: triangles, strips and
/// fans with normals, colours and coordinates, materials with their base-colour pictures, skins and morph targets. A
/// geometry core that stands on a node of its own is shown by the nearest node above that the scene describes.
/// @param motion  gets meshes, materials and skins; what is of another kind is counted in its notes.
void describeMeshes(const osg::NodePtr& root, const SceneNodes& scene, Motion& motion);

} // namespace ka::motion
