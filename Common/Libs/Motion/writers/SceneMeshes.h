#pragma once

#include "writers/SceneNodes.h"

#include <OpenSG/OSGNode.h>

namespace ka::motion {

/// Which shape of which node a MorphTarget is, and how much of it is there at rest.
struct MorphPlace {
    std::uint32_t node = 0; ///< in the motion
    std::size_t shape = 0;  ///< of what it shows
    float weight = 0.0F;
};

/// By the container id of the MorphTarget's node.
using MorphPlaces = std::unordered_map<osg::UInt32, MorphPlace>;

/// Describes the geometries of a scene as the meshes of a motion whose nodes are those of `scene`: triangles, strips and
/// fans with normals, colours and coordinates, materials with their base-colour pictures, skins and morph targets. A
/// geometry core that stands on a node of its own is shown by the nearest node above that the scene describes.
/// @param motion  gets meshes, materials and skins; what is of another kind is counted in its notes.
MorphPlaces describeMeshes(const osg::NodePtr& root, const SceneNodes& scene, Motion& motion);

/// Takes the pictures that materials name as files into them. Only plain files of at most 64 MiB below the folder of
/// `file` are read: a scene may come from anybody, and what it names must not leave this machine inside an export.
/// What is left out is told in the notes.
void readPictures(Motion& motion, const std::string& file);

} // namespace ka::motion
