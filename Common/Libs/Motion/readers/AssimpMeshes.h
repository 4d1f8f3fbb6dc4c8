#pragma once

#include "kaMotion/Motion.h"

struct aiScene;

namespace ka::motion {

class ConfinedFolder;
struct AssimpPlaces;

/// Reads the meshes, materials and skins of a model that the Assimp library holds, made of triangles, into a motion
/// whose nodes are there already; as `readGltfMeshes` does.
void readAssimpMeshes(const aiScene& scene, const AssimpPlaces& places, const ConfinedFolder& folder,
                      Motion& motion);

} // namespace ka::motion
