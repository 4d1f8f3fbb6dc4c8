#pragma once

#include "kaMotion/Motion.h"

namespace ka::motion {

/// Makes the meshes of a motion fit to build from: what names nodes, corners, joints or materials that do not exist, and
/// what is not finite, goes, told in one finding for each kind.
void checkMeshes(Motion& motion, std::vector<std::string>& findings);

} // namespace ka::motion
