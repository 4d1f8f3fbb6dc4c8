#include "SpaceRenderer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <Qt3DRender/QRenderAspect>
#include <algorithm>

namespace ka::studio {

namespace {

QSurfaceFormat wantedFormat() {
    QSurfaceFormat format;
    format.setVersion(3, 2);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    format.setSwapInterval(0);
    return format;
}

} // namespace

QString SpaceRenderer::driver() {
    QSurfaceFormat::setDefaultFormat(wantedFormat());
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.create();
    if (!context.create() || !surface.isValid() || !context.makeCurrent(&surface))
        return {};
    const QSurfaceFormat got = context.format();
    if (context.isOpenGLES() || got.version() < qMakePair(3, 2))
        return {};
    const auto* name = context.functions()->glGetString(GL_RENDERER);
    return QString::fromLatin1(name == nullptr ? "OpenGL" : reinterpret_cast<const char*>(name));
}

SpaceRenderer::SpaceRenderer() : _root(new Qt3DCore::QEntity) {
    _engine.registerAspect(new Qt3DRender::QRenderAspect);
    _engine.setRunMode(Qt3DCore::QAspectEngine::Manual);
    _target = std::make_unique<PictureTarget>(_root.data());
    _bones = std::make_unique<BoneField>(_root.data(), _target->bones());
    _engine.setRootEntity(_root);
}

SpaceRenderer::~SpaceRenderer() {
    _parts.reset();
    _engine.setRootEntity({});
    _root.reset(); // the scene goes before the surface it is drawn on
}

void SpaceRenderer::setScene(SpaceScene scene) {
    _settling = Settling;
    _parts.reset();
    _parts = std::make_unique<MeshParts>(_root.data(), _target->opaque(), _target->clear(), std::move(scene));
}

/// What is new takes some frames to be there in full: programs are compiled and pictures loaded meanwhile. The last of
/// them is taken once nothing changes any more.
QImage SpaceRenderer::draw(const SpaceFrame& frame) {
    const bool isOther = frame.size != _last.size || frame.bones.empty() != _last.bones.empty() ||
                         frame.pose.isHidden != _last.pose.isHidden;
    _settling = std::max(_settling, isOther ? Settling / 2 : 0);
    _last = frame;
    _target->look(frame.size, frame.view, frame.projection);
    if (_parts != nullptr)
        _parts->update(frame);
    _bones->update(frame);
    QImage picture = capture();
    for (; _settling > 0 && !picture.isNull(); --_settling) {
        const QImage next = capture();
        if (_settling <= Settling / 2 && next == picture)
            _settling = 1;
        picture = next;
    }
    return picture;
}

QImage SpaceRenderer::capture() {
    constexpr int Patience = 30000; // milliseconds; a first frame compiles shaders
    Qt3DRender::QRenderCaptureReply* reply = _target->request();
    QElapsedTimer since;
    since.start();
    while (!reply->isComplete() && since.elapsed() < Patience) {
        _engine.processFrame();
        QCoreApplication::processEvents();
    }
    const QImage picture = reply->image();
    reply->deleteLater();
    return picture;
}

} // namespace ka::studio
