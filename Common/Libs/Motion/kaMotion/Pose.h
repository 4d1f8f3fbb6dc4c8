#pragma once

#include <OpenSG/OSGNode.h>
#include <array>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How one node stands at the moment.
struct NodePose {
    std::string name;                   ///< UTF-8
    std::array<float, 3> translation{}; ///< in its parent
    std::array<float, 3> rotation{};    ///< degrees about X, Y, Z
    std::array<float, 3> scale{};       ///< factors
    std::array<float, 3> position{};    ///< of the node's origin in the world
};

/// The state of each node as the scene holds it.
std::vector<NodePose> readPose(const std::vector<osg::NodePtr>& nodes);

} // namespace ka::motion
#pragma GCC visibility pop
