#pragma once

#include <kaMotion/Motion.h>
#include <optional>
#include <string>

namespace ka::motion {

/// What a channel of the extension KHR_animation_pointer animates.
struct GltfPointer {
    int index = 0;             ///< of the node, camera, light or material, in the file's order
    std::string nodePath;      ///< "translation" and so on; empty for anything but the place of a node
    MotionProperty property{}; ///< where there is no `nodePath`
    bool isIntensity = false;  ///< of a light's colour the factor alone
};

/// Reads a pointer such as "/cameras/0/perspective/yfov"; nothing for what is not animated here.
std::optional<GltfPointer> parseGltfPointer(const std::string& path);

} // namespace ka::motion
