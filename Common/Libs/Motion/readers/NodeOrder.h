#pragma once

#include <kaMotion/Motion.h>

namespace ka::motion {

/// Reorders nodes so that every parent stands before its children, and points `parent` to the new places.
/// @return for each old place the new one.
/// @throws Failure (Unreadable) when nodes are their own ancestors.
std::vector<std::uint32_t> putParentsFirst(std::vector<MotionNode>& nodes);

/// The upper three rows of a transform for column vectors.
using RestMatrix = std::array<std::array<double, 4>, 3>;

/// Splits a matrix into the translation, rotation and scale of a node.
/// @return false when the matrix is sheared by more than a part in ten thousand, which the node then lacks. A
/// mirrored matrix gets a negative X scale.
bool setRestTransform(MotionNode& node, const RestMatrix& matrix);

} // namespace ka::motion
