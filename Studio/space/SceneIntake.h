#pragma once

#include "Figure.h"
#include "SpaceScene.h"

namespace ka::studio {

/// Takes the meshes of a scene in: geometries of triangles, strips, fans, quads and polygons with materials, skins and
/// morph targets. What is no surface, or is broken, is left out.
/// @param root  of the scene.
/// @param figure  its placed nodes.
/// @param folder  where pictures with a relative name are.
/// @param left  gets how many geometries were left out.
SpaceScene takeInMeshes(const osg::NodePtr& root, const Figure& figure, const QString& folder, int& left);

/// How the meshes stand now, by the figure's last look.
SpacePose poseOf(const SpaceScene& scene, const Figure& figure);

} // namespace ka::studio
