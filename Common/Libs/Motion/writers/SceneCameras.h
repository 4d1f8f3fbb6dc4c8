#pragma once

#include "writers/SceneNodes.h"

namespace ka::motion {

/// Describes the cameras and lights below `root` as they stand at the moment, as importing builds them. One that looks
/// or shines along -Z from the origin of its axes belongs to the node that carries it; any other gets a node of its own
/// there.
void describeCameras(const osg::NodePtr& root, const SceneNodes& scene, Motion& motion);

} // namespace ka::motion
