#pragma once

#include <QImage>
#include <QMatrix4x4>
#include <QOffscreenSurface>
#include <Qt3DCore/QEntity>
#include <Qt3DCore/QTransform>
#include <Qt3DRender/QCameraLens>
#include <Qt3DRender/QLayer>
#include <Qt3DRender/QRenderCapture>
#include <Qt3DRender/QRenderSurfaceSelector>
#include <Qt3DRender/QTexture>

namespace ka::studio {

/// The frame graph: opaque surfaces, then those that are seen through, then, over all of them, the bones; into textures
/// of several samples a pixel, and from there into a picture.
class PictureTarget {
  public:
    explicit PictureTarget(Qt3DCore::QEntity* root);

    Qt3DRender::QLayer* opaque() const { return _opaque; }
    Qt3DRender::QLayer* clear() const { return _clear; }
    Qt3DRender::QLayer* bones() const { return _bones; }

    void look(QSize size, const QMatrix4x4& view, const QMatrix4x4& projection);
    /// The reply comes with one of the next frames; the caller deletes it.
    Qt3DRender::QRenderCaptureReply* request() { return _capture->requestCapture(); }

  private:
    Qt3DRender::QFrameGraphNode* addPass(Qt3DRender::QFrameGraphNode* parent, Qt3DRender::QLayer* layer,
                                         int buffers);

    QOffscreenSurface _surface;
    QSize _size;
    Qt3DRender::QLayer *_opaque, *_clear, *_bones;
    Qt3DRender::QRenderSurfaceSelector* _selector;
    Qt3DRender::QAbstractTexture *_color, *_depth;
    Qt3DRender::QCameraLens* _lens;
    Qt3DCore::QTransform* _stand;
    Qt3DRender::QRenderCapture* _capture = nullptr;
};

} // namespace ka::studio
