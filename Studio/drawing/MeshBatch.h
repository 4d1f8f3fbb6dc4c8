#pragma once

#include "space/Deformer.h"
#include "space/SpaceFrame.h"

#include <Qt3DCore/QEntity>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QGeometry>
#include <Qt3DRender/QMaterial>
#include <Qt3DRender/QParameter>
#include <vector>

namespace ka::studio {

/// Parts of one material that are drawn in one go, their corners put into the world here. What Qt 3D does for each
/// entity costs more than the corners of most parts.
class MeshBatch {
  public:
    struct Member {
        int part = 0;
        std::size_t firstWeight = 0; ///< of its morphs, in the pose
        std::size_t firstCorner = 0; ///< in the batch
    };

    /// @param material  with an effect that goes with the meshes, which have all the same lists.
    MeshBatch(const SpaceScene& scene, std::vector<Member> members, Qt3DRender::QMaterial* material,
              Qt3DCore::QEntity* entity);

    /// @param before  the pose that was shown; with no looks none was.
    void update(const SpaceFrame& frame, const SpacePose& before);

  private:
    bool hasMoved(const SpacePart& part, const Member& member, const SpacePose& now,
                  const SpacePose& before) const;
    void place(const Member& member, const SpacePose& pose);
    void setTints(const std::vector<int>& pickedParts);

    const SpaceScene& _scene;
    std::vector<Member> _members;
    int _look; ///< place in the pose's
    std::vector<float> _positions, _normals, _tints;
    Qt3DRender::QBuffer *_positionBuffer, *_normalBuffer = nullptr, *_tintBuffer;
    Qt3DRender::QParameter *_color, *_glow;
    std::vector<int> _picked;
    WorldCorners _corners;
};

} // namespace ka::studio
