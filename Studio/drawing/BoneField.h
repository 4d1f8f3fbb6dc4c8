#pragma once

#include "space/SpaceFrame.h"

#include <Qt3DCore/QEntity>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QGeometryRenderer>
#include <Qt3DRender/QLayer>
#include <Qt3DRender/QParameter>

namespace ka::studio {

/// All bones and joints of a frame, drawn in one go whatever their number: what differs is a few numbers a bone.
class BoneField {
  public:
    BoneField(Qt3DCore::QEntity* root, Qt3DRender::QLayer* layer);

    void update(const SpaceFrame& frame);

  private:
    Qt3DCore::QEntity* _entity;
    Qt3DRender::QBuffer* _bones;
    std::vector<Qt3DRender::QAttribute*> _attributes;
    Qt3DRender::QGeometryRenderer* _renderer;
    Qt3DRender::QParameter* _pixel;
};

} // namespace ka::studio
