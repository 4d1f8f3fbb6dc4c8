#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdint>
#include <vector>

namespace ka::studio {

/// How a surface looks. Of `pictureFile` and `picture` at most one is set.
struct SpaceMaterial {
    std::uint32_t source = 0;                            ///< container id; 0 for none
    std::array<float, 4> color{0.6F, 0.6F, 0.62F, 1.0F}; ///< red, green, blue, opacity; 0 to 1, linear
    std::array<float, 3> glow{};                         ///< light that it gives by itself
    QString pictureFile;                                 ///< absolute path of the base colour's picture
    QByteArray picture;                                  ///< the same as a PNG or JPEG file
    /// The colour is black beside a picture, by which some files say that they have none.
    bool hasNoColor = false;
};

/// Triangles, shown by one or more parts. All lists are checked: of the length that the corners ask for, or empty, and
/// every index is that of a corner.
struct SpaceMesh {
    std::vector<float> positions;       ///< three a corner
    std::vector<float> normals;         ///< three a corner, or none
    std::vector<float> colors;          ///< four a corner, or none
    std::vector<float> texCoords;       ///< two a corner, or none; the origin is the picture's upper left
    std::vector<std::uint32_t> indices; ///< three a triangle
    int material = 0;

    std::size_t corners() const { return positions.size() / 3; }
};

/// A shape that a part can take on.
struct SpaceMorph {
    std::uint32_t node = 0;     ///< container id of the node that holds the weight
    std::vector<float> offsets; ///< three a corner of the mesh
};

/// The nodes that move the corners of a part. @see osg::Skin for the formula.
struct SpaceSkin {
    std::vector<int> movers;            ///< places in `SpaceScene::movers`
    std::vector<float> inverseBinds;    ///< sixteen a joint, column by column
    std::vector<std::uint32_t> indices; ///< four a corner, places in `joints`
    std::vector<float> weights;         ///< four a corner
};

/// A mesh at a place of the scene.
struct SpacePart {
    std::uint32_t node = 0; ///< container id of the geometry's node
    int mesh = 0;
    int mover = -1; ///< what it hangs from, a place in `SpaceScene::movers`; -1 for none
    SpaceSkin skin; ///< without movers: it moves with `mover`
    std::vector<SpaceMorph> morphs;

    bool isSkinned() const { return !skin.movers.empty(); }
    bool isRigid() const { return skin.movers.empty() && morphs.empty(); }
};

/// What can be seen of a scene besides its joints.
struct SpaceScene {
    std::vector<SpaceMaterial> materials; ///< at least the first, which is for what has none
    std::vector<SpaceMesh> meshes;
    std::vector<SpacePart> parts;
    std::vector<int> movers; ///< joints of the figure that move any part

    std::size_t triangles() const;
    std::size_t bytes() const; ///< About what its lists and pictures take.
};

/// How the parts stand at one moment.
struct SpacePose {
    std::vector<std::array<float, 16>> worlds; ///< of the movers, column by column
    std::vector<float> weights;                ///< of the morphs, part by part
    std::vector<std::array<float, 7>> looks;   ///< of the materials: color, then glow
    std::vector<std::uint8_t> isHidden;        ///< of the parts
};

/// A light as it stands in the world.
struct SpaceLight {
    enum class Kind : std::uint8_t { Point, Directional, Spot };
    Kind kind = Kind::Directional;
    std::array<float, 3> color{1, 1, 1};       ///< linear
    std::array<float, 3> place{};              ///< of point and spot
    std::array<float, 3> direction{0, 0, -1};  ///< in which directional and spot shine, of length 1
    std::array<float, 3> attenuation{1, 0, 0}; ///< constant, linear, by the square of the distance
    float cone = -1.0F;                        ///< cosine of the spot's half angle
};

/// A bone or, where both ends are the same, a joint.
struct SpaceBone {
    std::array<float, 3> from{}, to{};
    float color = 0.0F; ///< a place in `BoneColors`
    float opacity = 1.0F;
};

/// What bones and joints are painted with: 0 the middle of the body, 1 its left, 2 its right, 3 picked, 4 a joint.
constexpr std::array<std::uint32_t, 5> BoneColors = {0x9696A5, 0x468CDC, 0xE1783C, 0xFFC828, 0xEBEBF0};

} // namespace ka::studio
