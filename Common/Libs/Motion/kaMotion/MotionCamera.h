#pragma once

#include <array>
#include <cstdint>
#include <kaMotion/Rotation.h>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// A camera that looks from one or more nodes, in their axes.
struct MotionCamera {
    std::string name;                 ///< UTF-8
    std::vector<std::uint32_t> nodes; ///< that carry it
    double fieldOfView = 45.0;        ///< degrees from the lower edge of the picture to the upper
    Vec3 position{0, 0, 0};           ///< where it stands
    Vec3 direction{0, 0, -1};         ///< where it looks
    Vec3 up{0, 1, 0};                 ///< what is up in the picture
};

/// How a light shines.
enum class LightKind : std::uint8_t {
    Directional, ///< from infinitely far away, along its direction
    Point,       ///< from its position, to all sides
    Spot         ///< from its position, into a cone about its direction
};

/// A light at one or more nodes, in their axes.
struct MotionLight {
    std::string name;                     ///< UTF-8
    std::vector<std::uint32_t> nodes;     ///< that carry it
    LightKind kind = LightKind::Point;    ///< says which of the following count
    std::array<double, 3> color{1, 1, 1}; ///< linear red, green and blue times intensity: may be above 1
    Vec3 position{0, 0, 0};               ///< of points and spots
    Vec3 direction{0, 0, -1};             ///< where spots and directional lights shine
    double innerCone = 0.0;               ///< degrees from the axis to where a spot begins to fade
    double outerCone = 45.0;              ///< degrees from the axis to where it ends
    /// At distance d, points and spots shine with colour / (a + b d + c d²).
    std::array<double, 3> attenuation{1, 0, 0};
};

} // namespace ka::motion
#pragma GCC visibility pop
