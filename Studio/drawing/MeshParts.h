#pragma once

#include "space/Deformer.h"
#include "space/SpaceFrame.h"

#include <QImage>
#include <Qt3DCore/QEntity>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QEffect>
#include <Qt3DRender/QGeometry>
#include <Qt3DRender/QLayer>
#include <Qt3DRender/QParameter>
#include <map>
#include <vector>

namespace ka::studio {

/// The meshes of a scene, an entity a part. Rigid parts share the geometry of their mesh and are placed by the graphics
/// card; the corners of the others are put into the world here.
class MeshParts {
  public:
    MeshParts(Qt3DCore::QEntity* root, Qt3DRender::QLayer* opaque, Qt3DRender::QLayer* clear,
              SpaceScene scene);
    ~MeshParts();
    MeshParts(const MeshParts&) = delete;
    MeshParts& operator=(const MeshParts&) = delete;

    void update(const SpaceFrame& frame);

  private:
    struct Entity {
        std::size_t firstWeight = 0;
        Qt3DCore::QEntity* node = nullptr;
        Qt3DRender::QParameter* world = nullptr;
        Qt3DRender::QParameter* color = nullptr;
        Qt3DRender::QParameter* glow = nullptr;
        Qt3DRender::QParameter* picked = nullptr;
        Qt3DRender::QBuffer* positions = nullptr; ///< of parts that bend
        Qt3DRender::QBuffer* normals = nullptr;
    };
    struct Look {
        QImage picture;
        Qt3DRender::QAbstractTexture* texture = nullptr;
    };

    Entity build(const SpacePart& part);
    Qt3DRender::QGeometry* geometryOf(const SpaceMesh& mesh, Entity& entity);
    Qt3DRender::QEffect* effectFor(const SpaceMesh& mesh, bool hasPicture, bool isClear);
    Look& lookOf(int material);
    void setLights(const SpaceFrame& frame);

    SpaceScene _scene;
    Qt3DCore::QEntity* _root; ///< of these alone
    Qt3DRender::QLayer *_opaque, *_clear;
    std::map<int, Qt3DRender::QGeometry*> _geometries; ///< of rigid parts, by mesh
    std::map<int, Look> _looks;
    std::map<QByteArray, Qt3DRender::QEffect*> _effects;
    std::vector<Entity> _entities;
    Qt3DRender::QParameter *_lightCount, *_lightPlaces, *_lightDirections, *_lightColors, *_lightFades;
    SpacePose _pose; ///< that is shown
    WorldCorners _corners;
};

} // namespace ka::studio
