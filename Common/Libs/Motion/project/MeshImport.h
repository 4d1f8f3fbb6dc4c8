#pragma once

#include <OpenSG/OSGMaterialFields.h>
#include <OpenSG/OSGNode.h>
#include <kaMotion/Motion.h>
#include <map>
#include <vector>

namespace ka::motion {

/// The nodes of morph targets, for each node of a motion that shows any: by target, those of all parts of its mesh.
using MorphNodes = std::map<std::uint32_t, std::vector<std::vector<osg::NodePtr>>>;

/// What the meshes of a motion became.
struct BuiltMeshes {
    MorphNodes morphs;
    std::vector<osg::MaterialPtr> materials; ///< for each of the motion's; null for those that nothing shows
    std::size_t meshes = 0, triangles = 0;
};

/// Builds the meshes of a motion, already checked, into the scene: a nameless child with a Geometry core for each node
/// that shows one, the core shared where several do. Materials are SimpleMaterials with a Picture attached. A skinned
/// geometry carries a Skin and stands below `root`, after everything that moves it, because where its node stands does
/// not count. Below a geometry stands a node with a MorphTarget core for each shape; such geometries share nothing.
/// @param nodes  those of the scene, for each of the motion's.
/// @param lossy  set when a name has no Latin-1 form.
BuiltMeshes buildMeshes(const Motion& motion, const std::vector<osg::NodePtr>& nodes,
                        const osg::NodePtr& root, bool& lossy);

} // namespace ka::motion
