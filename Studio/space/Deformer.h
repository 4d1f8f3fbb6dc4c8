#pragma once

#include "SpaceScene.h"

namespace ka::studio {

/// Corners of a part in the world.
struct WorldCorners {
    std::vector<float> positions; ///< three a corner
    std::vector<float> normals;   ///< three a corner, or none; not of length 1
};

/// Puts the corners of a part where a pose has them: morph targets first, then the skin or what the part hangs from.
/// @param firstWeight  place of the part's first morph in the pose.
/// @param corners  is filled; its memory is used again.
void deform(const SpaceScene& scene, const SpacePart& part, const SpacePose& pose, std::size_t firstWeight,
            WorldCorners& corners);

/// What a ray meets first.
struct SpaceHit {
    int part = -1;            ///< -1 for nothing
    std::uint32_t corner = 0; ///< of the triangle that it meets, the first
    float distance = 0.0F;    ///< in lengths of the direction
};

/// @param origin, direction  of the ray, three numbers each.
SpaceHit meet(const SpaceScene& scene, const SpacePose& pose, const std::array<float, 3>& origin,
              const std::array<float, 3>& direction);

/// The joint of the figure that moves what was met: of a skin's joints the one with most weight there. -1 for none.
int jointAt(const SpaceScene& scene, const SpaceHit& hit);

} // namespace ka::studio
