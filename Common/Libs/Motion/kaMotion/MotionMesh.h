#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How a surface looks. Of `pictureFile` and `picture` at most one is set.
struct MotionMaterial {
    std::string name;                       ///< UTF-8
    std::array<float, 4> color{1, 1, 1, 1}; ///< red, green, blue and opacity, 0 to 1, linear
    std::array<float, 3> emission{};        ///< light that it gives by itself
    std::string pictureFile;                ///< path of the base-colour picture, inside the model's folder
    std::string picture;                    ///< the same as the model's own PNG or JPEG bytes
};

/// A shape that a mesh can take on.
struct MotionMorph {
    std::string name;           ///< UTF-8
    float weight = 0.0F;        ///< at rest
    std::vector<float> offsets; ///< three a corner
};

/// Triangles below one or more nodes. Lists but `positions` and `indices` may be empty.
struct MotionMesh {
    static constexpr std::int32_t none = -1; ///< no material, no skin

    std::string name;                   ///< UTF-8
    std::vector<std::uint32_t> nodes;   ///< that show it
    std::int32_t material = none;       ///< place in `Motion::materials`
    std::int32_t skin = none;           ///< place in `Motion::skins`
    std::vector<float> positions;       ///< three a corner
    std::vector<float> normals;         ///< three a corner
    std::vector<float> colors;          ///< four a corner: red, green, blue, opacity
    std::vector<float> texCoords;       ///< two a corner; the origin is the picture's upper left
    std::vector<std::uint32_t> indices; ///< three a triangle, anticlockwise seen from outside
    std::vector<std::uint32_t> joints;  ///< four a corner, places in the skin
    std::vector<float> weights;         ///< four a corner
    std::vector<MotionMorph> morphs;    ///< in the order of the file

    /// Corners that the lists are about.
    std::size_t corners() const { return positions.size() / 3; }
};

/// The nodes that move a skinned mesh; @see osg::Skin for the formula.
struct MotionSkin {
    std::vector<std::uint32_t> joints; ///< nodes
    std::vector<float> inverseBinds;   ///< sixteen a joint, column by column
};

} // namespace ka::motion
#pragma GCC visibility pop
