#pragma once

#include <cstdint>
#include <kaMotion/Motion.h>
#include <vector>

namespace tinygltf {
class Model;
}

namespace ka::motion {

/// Appends the cameras and lights of a file, each at its own index so that pointers find it.
/// @param places  the place in `Motion::nodes` of each node of the file.
void readGltfCameras(const tinygltf::Model& model, const std::vector<std::uint32_t>& places, Motion& motion);

} // namespace ka::motion
