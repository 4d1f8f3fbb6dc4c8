#include "PictureTarget.h"

#include <Qt3DRender/QCameraSelector>
#include <Qt3DRender/QClearBuffers>
#include <Qt3DRender/QLayerFilter>
#include <Qt3DRender/QRenderSettings>
#include <Qt3DRender/QRenderTarget>
#include <Qt3DRender/QRenderTargetOutput>
#include <Qt3DRender/QRenderTargetSelector>
#include <Qt3DRender/QViewport>

namespace ka::studio {

using namespace Qt3DRender;

namespace {

constexpr int Samples = 4;

QAbstractTexture* addOutput(QRenderTarget* target, QRenderTargetOutput::AttachmentPoint point,
                            QAbstractTexture::TextureFormat format) {
    auto* output = new QRenderTargetOutput(target);
    output->setAttachmentPoint(point);
    auto* texture = new QTexture2DMultisample(output);
    texture->setSamples(Samples);
    texture->setFormat(format);
    output->setTexture(texture);
    target->addOutput(output);
    return texture;
}

} // namespace

PictureTarget::PictureTarget(Qt3DCore::QEntity* root)
    : _opaque(new QLayer(root)), _clear(new QLayer(root)), _bones(new QLayer(root)) {
    _surface.setFormat(QSurfaceFormat::defaultFormat());
    _surface.create();
    auto* settings = new QRenderSettings(root);
    settings->setRenderPolicy(QRenderSettings::OnDemand);
    _selector = new QRenderSurfaceSelector(settings);
    _selector->setSurface(&_surface);
    auto* target = new QRenderTarget;
    _color = addOutput(target, QRenderTargetOutput::Color0, QAbstractTexture::RGBA8_UNorm);
    _depth = addOutput(target, QRenderTargetOutput::Depth, QAbstractTexture::D24);
    auto* into = new QRenderTargetSelector(_selector);
    into->setTarget(target);
    auto* eye = new Qt3DCore::QEntity(root);
    _lens = new QCameraLens(eye);
    _stand = new Qt3DCore::QTransform(eye);
    eye->addComponent(_lens);
    eye->addComponent(_stand);
    auto* camera = new QCameraSelector(new QViewport(into));
    camera->setCamera(eye);
    addPass(camera, _opaque, QClearBuffers::ColorDepthBuffer);
    addPass(camera, _clear, QClearBuffers::None);
    _capture = new QRenderCapture(addPass(camera, _bones, QClearBuffers::DepthBuffer));
    settings->setActiveFrameGraph(_selector);
    root->addComponent(settings);
}

QFrameGraphNode* PictureTarget::addPass(QFrameGraphNode* parent, QLayer* layer, int buffers) {
    auto* clear = new QClearBuffers(parent);
    clear->setBuffers(static_cast<QClearBuffers::BufferType>(buffers));
    clear->setClearColor(Qt::transparent);
    auto* filter = new QLayerFilter(clear);
    filter->addLayer(layer);
    return filter;
}

void PictureTarget::look(QSize size, const QMatrix4x4& view, const QMatrix4x4& projection) {
    if (size != _size) {
        _size = size;
        _selector->setExternalRenderTargetSize(size);
        _color->setSize(size.width(), size.height());
        _depth->setSize(size.width(), size.height());
    }
    _lens->setProjectionMatrix(projection);
    _stand->setMatrix(view.inverted());
}

} // namespace ka::studio
