#pragma once

#include "import/Rotation.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ka::tools {

/// How a channel's value runs from one key to the next.
enum class Interpolation : std::uint8_t {
    Step,   ///< holds the key's value
    Linear, ///< straight; for quaternions the shortest turn at constant speed
    Cubic   ///< cubic Hermite spline with the keys' tangents
};

/// One key of a channel. `time` in seconds; tangents in value per second, read for `Cubic` only.
template <std::size_t Width>
struct MotionKey {
    double time = 0.0;
    std::array<double, Width> value{};
    std::array<double, Width> inTangent{};
    std::array<double, Width> outTangent{};
};

/// Keys by increasing time. No keys: the node keeps its rest value.
template <std::size_t Width>
struct MotionChannel {
    Interpolation interpolation = Interpolation::Linear;
    std::vector<MotionKey<Width>> keys;
};

/// What one take does to one node. Of `angles` (degrees about X, Y, Z) and `quaternion` (x, y, z, w) a reader
/// fills the one that its file holds.
struct MotionTrack {
    std::uint32_t node = 0;
    MotionChannel<3> translation;
    MotionChannel<3> scale;
    MotionChannel<3> angles;
    MotionChannel<4> quaternion;
};

struct MotionTake {
    std::string name;
    std::vector<MotionTrack> tracks;
};

/// A node of the hierarchy with its rest transform: scaled first, then rotated, then moved.
struct MotionNode {
    static constexpr std::int32_t noParent = -1;

    std::string name; ///< UTF-8
    std::int32_t parent = noParent;
    Vec3 translation{0, 0, 0};
    Quaternion rotation;
    Vec3 scale{1, 1, 1};
    EulerOrder order = sceneOrder; ///< how `MotionTrack::angles` of this node multiply
};

/// A model file's hierarchy and its animations, as plain data: what every reader makes, and the only thing
/// that crosses from the child process of a third-party reader. Not trusted before `checkMotion`.
struct Motion {
    /// Nodes nested deeper are refused: no real skeleton comes near, and everything that walks the scene may
    /// recurse.
    static constexpr std::size_t maximumDepth = 500;

    std::vector<MotionNode> nodes;
    std::vector<MotionTake> takes;
    std::vector<std::string> notes; ///< what the reader could not carry over, one line each
};

/// Makes a motion fit to build from, or throws a Failure (without the file's name) where the hierarchy itself
/// is broken: a parent that does not stand before its child, or nodes nested beyond the limit.
///
/// Keys that no curve can hold are dropped, and each kind of damage is told in one line of the notes: values
/// or times that are not finite or beyond a float, rotations of length zero, times that do not increase. Rest
/// transforms of that kind become neutral. Tracks of nodes that do not exist, second tracks of one node,
/// channels and tracks left without keys, and takes left without tracks are dropped.
/// @return the number of findings, each of them now a note.
std::size_t checkMotion(Motion& motion);

} // namespace ka::tools
