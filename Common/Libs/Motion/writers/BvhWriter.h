#pragma once

#include "kaMotion/Motion.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ka::motion {

/// A hierarchy frame by frame.
struct SampledMotion {
    /// How one node stands at one frame.
    struct Pose {
        Vec3 position{}; ///< of its origin, in the world
        Vec3 rotation{}; ///< degrees in the scene's order, relative to its parent
    };

    std::vector<MotionNode> nodes; ///< parents before children; names, parents and rest translations count
    std::vector<std::vector<Pose>> frames; ///< a pose for each node
    double secondsPerFrame = 0.04;
};

struct BvhOptions {
    /// The order of the rotation channels, which is also that of multiplication. The scene's own takes its
    /// angles as they are.
    EulerOrder order = sceneOrder;
};

struct WrittenBvh {
    std::string text;
    std::size_t joints = 0, channels = 0;
    std::vector<std::string> notes;
};

/// Writes a BVH motion-capture file. Every node becomes a joint with three rotation channels; a joint whose
/// distance to its parent changes, and every root, has three position channels before them, which stand for
/// its offset. A leaf called like its parent with "_End" that never turns becomes the parent's end site.
///
/// Positions in the world are kept whatever scales the nodes have: BVH knows none, so they go into offsets
/// and positions. Rotations of nodes below an uneven scale are those of the nodes alone. Several roots get
/// one above them, called "scene". Blanks and braces in names become "_". Numbers have nine digits.
WrittenBvh writeBvh(const SampledMotion& motion, const BvhOptions& options);

/// The angles about the axes of `order` that make up a rotation, in degrees, stored by axis, nearest to
/// `previous`.
Vec3 anglesInOrder(const Matrix3& rotation, const EulerOrder& order, const Vec3& previous);

} // namespace ka::motion
