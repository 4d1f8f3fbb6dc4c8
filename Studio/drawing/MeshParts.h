#pragma once

#include "MeshBatch.h"

#include <QImage>
#include <Qt3DRender/QEffect>
#include <Qt3DRender/QLayer>
#include <Qt3DRender/QTexture>
#include <map>
#include <memory>

namespace ka::studio {

/// The meshes of a scene: their batches, pictures and effects, and the light on them.
class MeshParts {
  public:
    MeshParts(Qt3DCore::QEntity* root, Qt3DRender::QLayer* opaque, Qt3DRender::QLayer* clear,
              SpaceScene scene);
    ~MeshParts();
    MeshParts(const MeshParts&) = delete;
    MeshParts& operator=(const MeshParts&) = delete;

    void update(const SpaceFrame& frame);

  private:
    void build(std::vector<MeshBatch::Member> members);
    Qt3DRender::QEffect* effectFor(const SpaceMesh& mesh, bool hasPicture, bool isClear);
    Qt3DRender::QAbstractTexture* textureOf(int material);
    void setLights(const SpaceFrame& frame);

    SpaceScene _scene;
    Qt3DCore::QEntity* _root; ///< of these alone
    Qt3DRender::QLayer *_opaque, *_clear;
    std::map<int, Qt3DRender::QAbstractTexture*> _textures; ///< by material; null for none
    std::map<QByteArray, Qt3DRender::QEffect*> _effects;
    std::vector<std::unique_ptr<MeshBatch>> _batches;
    Qt3DRender::QParameter *_lightCount, *_lightPlaces, *_lightDirections, *_lightColors, *_lightFades;
    SpacePose _shown;
};

} // namespace ka::studio
