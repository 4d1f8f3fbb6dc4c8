#pragma once

#include "kaMotion/Motion.h"

namespace tinygltf {
class Model;
}

namespace ka::motion {

class ConfinedFolder;

/// Reads the meshes, materials and skins of a glTF file into a motion whose nodes are there already: triangles with
/// normals, the first set of colours and of texture coordinates, base colours and their pictures, joints, morph targets.
/// What is of another kind, compressed or damaged is left out, counted in the notes.
/// @param places  of the file's nodes among those of the motion.
/// @param folder  that pictures of their own are looked for in.
void readGltfMeshes(const tinygltf::Model& model, const std::vector<std::uint32_t>& places,
                    const ConfinedFolder& folder, Motion& motion);

} // namespace ka::motion
