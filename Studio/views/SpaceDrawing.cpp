#include "SpaceDrawing.h"

#include "space/DrawingClient.h"
#include "space/SceneIntake.h"

#include <QPainter>
#include <algorithm>

namespace ka::studio {

namespace {

constexpr int MostCrashes = 2;     ///< After which it is left at that.
constexpr std::size_t Many = 5000; ///< Joints from which on only bones are drawn.

std::array<float, 3> arrayOf(const QVector3D& v) {
    return {v.x(), v.y(), v.z()};
}

} // namespace

SpaceDrawing::SpaceDrawing(QObject* parent) : SceneDrawing(parent) {
    start();
}

SpaceDrawing::~SpaceDrawing() = default;

void SpaceDrawing::start() {
    _client = std::make_unique<DrawingClient>();
    connect(_client.get(), &DrawingClient::ready, this, &SceneDrawing::changed);
    connect(_client.get(), &DrawingClient::gone, this, &SpaceDrawing::onGone, Qt::QueuedConnection);
    connect(_client.get(), &DrawingClient::drawn, this, [this](const QImage& picture) {
        if (!_isStale) {
            _picture = picture;
            _shown = _asked;
        }
        _isStale = false;
        emit changed();
    });
    _isSceneNew = true;
    _client->start();
}

/// A driver that has drawn before is given another chance.
void SpaceDrawing::onGone(const QString& why) {
    const bool hasDrawn = hasPicture();
    _picture = QImage();
    _client.reset();
    if (hasDrawn && ++_crashes < MostCrashes)
        start();
    else
        emit gone(why);
    emit changed();
}

qint64 SpaceDrawing::processId() const {
    return _client == nullptr ? 0 : _client->processId();
}

bool SpaceDrawing::isFree() const {
    return _client != nullptr && _client->isFree();
}

QString SpaceDrawing::note() const {
    return _client == nullptr ? QString() : tr("drawn by %1").arg(_client->driver());
}

void SpaceDrawing::setScene(const SpaceScene& scene) {
    _scene = &scene;
    _isSceneNew = true;
    _picture = QImage();
    _isStale = _client != nullptr && !_client->driver().isEmpty() && !_client->isFree();
    _boneColors.clear();
}

Viewpoint SpaceDrawing::paintedFrom(const SceneShot& shot) const {
    return hasPicture() ? _shown.viewpoint : shot.viewpoint;
}

void SpaceDrawing::fillBones(const SceneShot& shot, std::vector<SpaceBone>& bones) {
    const std::vector<Figure::Joint>& joints = shot.figure->joints();
    if (!shot.hasBones)
        return;
    if (_boneColors.size() != joints.size()) {
        _boneColors.clear();
        for (const Figure::Joint& joint : joints)
            _boneColors.push_back(static_cast<float>(boneColorOf(joint.name)));
    }
    const auto addFigure = [&](const std::vector<QVector3D>& places, float opacity, bool isGhost) {
        if (places.size() != joints.size())
            return;
        for (std::size_t i = 0; i < joints.size(); ++i) {
            const int parent = joints[i].parent;
            const bool isPicked = !isGhost && parent >= 0 && parent == shot.picked;
            if (parent >= 0 && (*shot.isBone)[i] && places[i] != places[static_cast<std::size_t>(parent)])
                bones.push_back({arrayOf(places[static_cast<std::size_t>(parent)]), arrayOf(places[i]),
                                 isPicked ? 3.0F : _boneColors[i], opacity});
            if (!isGhost && joints.size() < Many)
                bones.push_back({arrayOf(places[i]), arrayOf(places[i]), 4.0F, opacity});
        }
    };
    bones.reserve(2 * joints.size());
    // Inside a body bones are to be seen through it, and it through them.
    const float opacity = shot.scene->parts.empty() ? 1.0F : 0.6F;
    for (const std::vector<QVector3D>& ghost : *shot.ghosts)
        addFigure(ghost, 0.22F, true);
    addFigure(shot.figure->places(), opacity, false);
}

void SpaceDrawing::request(const SceneShot& shot) {
    if (_client == nullptr || !_client->isFree() || _scene == nullptr || shows(shot.revision))
        return;
    if (_isSceneNew)
        _client->sendScene(*_scene);
    _isSceneNew = false;
    SpaceFrame frame;
    frame.size = (QSizeF(shot.size) * shot.scale).toSize();
    if (_picture.size() != frame.size)
        _picture = _picture.copy(); // room for another size may move what it is on
    frame.view = shot.viewpoint.view();
    frame.projection = shot.viewpoint.projection(shot.size);
    frame.pose = poseOf(*_scene, *shot.figure);
    frame.lights = *shot.lights;
    fillBones(shot, frame.bones);
    for (std::size_t i = 0; i < _scene->parts.size() && shot.picked >= 0; ++i) {
        const int mover = _scene->parts[i].mover;
        if (!_scene->parts[i].isSkinned() && mover >= 0 &&
            _scene->movers[static_cast<std::size_t>(mover)] == shot.picked)
            frame.pickedParts.push_back(static_cast<int>(i));
    }
    _asked = {shot.revision, shot.viewpoint};
    _client->draw(std::move(frame));
}

void SpaceDrawing::paint(QPainter& painter, const SceneShot& shot) {
    if (hasPicture())
        painter.drawImage(QRect(QPoint(), shot.size), _picture);
}

} // namespace ka::studio
