#pragma once

#include <kaMotion/Motion.h>
#include <nlohmann/json.hpp>

namespace ka::motion {

/// Adds the cameras and lights of a motion to the lists of a glTF document, and to `nodes` which each carries. A node
/// that carries more than one of a kind gets children for the others. Also says which nodes are hidden.
void writeGltfCameras(const Motion& motion, nlohmann::ordered_json& document, nlohmann::ordered_json& nodes);

} // namespace ka::motion
