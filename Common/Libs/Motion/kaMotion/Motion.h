#pragma once

#include <cstddef>
#include <cstdint>
#include <kaMotion/MotionCamera.h>
#include <kaMotion/MotionMesh.h>
#include <kaMotion/Rotation.h>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How a channel's value runs from one key to the next.
enum class Interpolation : std::uint8_t {
    Step,   ///< holds the key's value
    Linear, ///< straight; for quaternions the shortest turn at constant speed
    Cubic   ///< cubic Hermite spline with the keys' tangents
};

/// One key of a channel. `time` in seconds; tangents in value per second, read for `Cubic` only.
template <std::size_t Width>
struct MotionKey {
    double time = 0.0;                      ///< seconds
    std::array<double, Width> value{};      ///< in the channel's unit
    std::array<double, Width> inTangent{};  ///< per second, arriving
    std::array<double, Width> outTangent{}; ///< per second, leaving
};

/// Keys by increasing time. No keys: the node keeps its rest value.
template <std::size_t Width>
struct MotionChannel {
    Interpolation interpolation = Interpolation::Linear; ///< between all of its keys
    std::vector<MotionKey<Width>> keys;                  ///< by increasing time
};

/// What one take does to one node. Of `angles` (degrees about X, Y, Z) and `quaternion` (x, y, z, w) a reader
/// fills the one that its file holds.
struct MotionTrack {
    std::uint32_t node = 0;                ///< index in `Motion::nodes`
    MotionChannel<3> translation;          ///< the file's unit of length
    MotionChannel<3> scale;                ///< factors
    MotionChannel<3> angles;               ///< degrees about X, Y, Z
    MotionChannel<4> quaternion;           ///< x, y, z, w
    std::vector<MotionChannel<1>> weights; ///< of the morph targets of what the node shows, in their order
};

/// What besides the place of a node can be animated, with its components.
enum class MotionProperty : std::uint8_t {
    FieldOfView,   ///< of a camera: degrees
    LightColor,    ///< red, green and blue times intensity
    LightCone,     ///< of a spot: degrees from the axis to where it ends
    MaterialColor, ///< red, green, blue and opacity
    MaterialGlow,  ///< red, green and blue of `MotionMaterial::emission`
    Visible        ///< of a node with all that is below it: 0 or 1
};

/// How many components a property has.
constexpr std::size_t widthOf(MotionProperty property) {
    switch (property) {
    case MotionProperty::MaterialColor:
        return 4;
    case MotionProperty::LightColor:
    case MotionProperty::MaterialGlow:
        return 3;
    default:
        return 1;
    }
}

/// What one take does to one property.
struct MotionPropertyTrack {
    MotionProperty property = MotionProperty::FieldOfView; ///< says what `owner` and `components` are
    std::uint32_t owner = 0;                               ///< index of the camera, light, material or node
    std::vector<MotionChannel<1>> components;              ///< `widthOf` the property
};

/// One animation of a file.
struct MotionTake {
    std::string name;                              ///< UTF-8; may be empty
    std::vector<MotionTrack> tracks;               ///< at most one for each node
    std::vector<MotionPropertyTrack> properties{}; ///< at most one for each property of each owner
};

/// A node of the hierarchy with its rest transform: scaled first, then rotated, then moved.
struct MotionNode {
    static constexpr std::int32_t noParent = -1; ///< of a node at the top

    std::string name;               ///< UTF-8
    std::int32_t parent = noParent; ///< index in `Motion::nodes`, below the node's own
    Vec3 translation{0, 0, 0};      ///< at rest
    Quaternion rotation;            ///< at rest
    Vec3 scale{1, 1, 1};            ///< at rest
    EulerOrder order = sceneOrder;  ///< how `MotionTrack::angles` of this node multiply
    bool isVisible = true;          ///< at rest, with all that is below it
};

/// A model file's hierarchy and its animations, as plain data: what every reader makes, and the only thing
/// that crosses from the child process of a third-party reader. Not trusted before `checkMotion`.
struct Motion {
    /// Nodes nested deeper are refused: no real skeleton comes near, and everything that walks the scene may
    /// recurse.
    static constexpr std::size_t maximumDepth = 500;

    std::vector<MotionNode> nodes;         ///< parents before their children
    std::vector<MotionTake> takes;         ///< in the file's order
    std::vector<MotionMesh> meshes;        ///< what the nodes show
    std::vector<MotionMaterial> materials; ///< of the meshes
    std::vector<MotionSkin> skins;         ///< of the meshes
    std::vector<MotionCamera> cameras;     ///< in the file's order
    std::vector<MotionLight> lights;       ///< in the file's order
    std::vector<std::string> notes;        ///< what the reader could not carry over, one line each
};

/// Makes a motion fit to build from, or throws a Failure (without the file's name) where the hierarchy itself
/// is broken: a parent that does not stand before its child, or nodes nested beyond the limit.
///
/// Keys that no curve can hold are dropped, and each kind of damage is told in one line of the notes: values
/// or times that are not finite or beyond a float, rotations of length zero, times that do not increase. Rest
/// transforms of that kind become neutral. Tracks of nodes or owners that do not exist, second tracks of one
/// node or property, channels and tracks left without keys, and takes left without tracks are dropped, as are
/// cameras and lights with such numbers.
/// @return the number of findings, each of them now a note.
std::size_t checkMotion(Motion& motion);

} // namespace ka::motion
#pragma GCC visibility pop
