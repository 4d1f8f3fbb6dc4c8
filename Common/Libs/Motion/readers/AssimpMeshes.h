#pragma once

#include "kaMotion/Motion.h"

struct aiScene;

namespace ka::motion {

class ConfinedFolder;

/// Reads the meshes, materials and skins of a model that the Assimp library holds, made of triangles, into a motion
/// whose nodes are there already; as `readGltfMeshes` does.
/// @param nodesOfMeshes  for each mesh of the scene the nodes that show it.
void readAssimpMeshes(const aiScene& scene, const std::vector<std::vector<std::uint32_t>>& nodesOfMeshes,
                      const ConfinedFolder& folder, Motion& motion);

} // namespace ka::motion
