#pragma once

#include "BoneField.h"
#include "MeshParts.h"
#include "PictureTarget.h"

#include <Qt3DCore/QAspectEngine>
#include <memory>

namespace ka::studio {

/// Draws a scene with Qt 3D into pictures, off any screen. There is one in a process, which it may bring down: graphics
/// drivers run in it.
class SpaceRenderer {
  public:
    SpaceRenderer();
    ~SpaceRenderer();
    SpaceRenderer(const SpaceRenderer&) = delete;
    SpaceRenderer& operator=(const SpaceRenderer&) = delete;

    /// What draws, as its driver names itself; empty where there is no OpenGL 3.2.
    static QString driver();

    void setScene(SpaceScene scene);
    /// The picture of a frame, seen through where nothing is; null where none came in half a minute.
    QImage draw(const SpaceFrame& frame);

  private:
    static constexpr int Settling = 8; ///< Frames at most after another scene.

    QImage capture();

    Qt3DCore::QAspectEngine _engine;
    Qt3DCore::QEntityPtr _root;
    std::unique_ptr<PictureTarget> _target;
    std::unique_ptr<MeshParts> _parts;
    std::unique_ptr<BoneField> _bones;
    int _settling = Settling; ///< frames to go
    SpaceFrame _last;
};

} // namespace ka::studio
