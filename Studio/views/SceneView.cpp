#include "SceneView.h"

#include "PlainDrawing.h"
#include "SpaceDrawing.h"
#include "document/Session.h"
#include "playback/Transport.h"
#include "space/Deformer.h"
#include "space/SceneIntake.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <kaMotion/Project.h>
#include <limits>

namespace ka::studio {

SceneView::SceneView(Session& session, Transport& transport, PlayHead& head, QWidget* parent)
    : QWidget(parent),
      _session(session),
      _transport(transport),
      _head(head),
      _plain(std::make_unique<PlainDrawing>()) {
    setObjectName(QStringLiteral("sceneView"));
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 120);
    _idle.setSingleShot(true);
    connect(&_idle, &QTimer::timeout, this, [this] {
        _trail.sample(_figure, 8);
        touch();
    });
    connect(&session, &Session::opened, this, &SceneView::takeInScene);
    connect(&transport, &Transport::evaluated, this, &SceneView::refresh);
    connect(&session.document(), &Document::changed, this, [this] { _isTrailStale = true; });
}

SceneView::~SceneView() = default;

void SceneView::takeInScene() {
    const bool isOpen = _session.isOpen();
    _figure.setNodes(isOpen ? _session.project().placedNodes() : std::vector<osg::NodePtr>());
    _picked = -1;
    _through = 0;
    _pose.reset();
    _trail.clear();
    int left = 0;
    const QString folder =
        QFileInfo(_session.files().source.isEmpty() ? _session.files().scene : _session.files().source)
            .absolutePath();
    _meshes = isOpen ? takeInMeshes(_session.project().root(), _figure, folder, left) : SpaceScene();
    _fixtures = SceneFixtures();
    if (isOpen)
        _fixtures.takeIn(_session.project().root(), _figure);
    chooseBones();
    if (left > 0)
        _session.addToReport({tr("%n mesh(es) that are no surfaces are not shown", nullptr, left)});
    _triangles = _meshes.triangles();
    _plain->setScene(_meshes);
    startOpenGL();
    if (_space != nullptr)
        _space->setScene(_meshes);
    frameAll();
    _fixtures.expose(_camera.target());
    refresh();
}

/// No bone goes to what carries a lamp or a camera alone, which may stand anywhere.
void SceneView::chooseBones() {
    const std::vector<Figure::Joint>& joints = _figure.joints();
    _isBone.assign(joints.size(), true);
    const auto leaveOut = [this](unsigned int carrier) {
        if (const int joint = _figure.indexOf(carrier); joint >= 0)
            _isBone[static_cast<std::size_t>(joint)] = false;
    };
    for (const SceneCamera& camera : _fixtures.cameras())
        leaveOut(camera.carrier);
    for (const SceneLight& light : _fixtures.lights())
        leaveOut(light.carrier);
    std::vector<bool> isOfSkin(joints.size(), _meshes.parts.empty());
    for (const SpacePart& part : _meshes.parts)
        for (const int mover : part.skin.movers)
            isOfSkin[static_cast<std::size_t>(_meshes.movers[static_cast<std::size_t>(mover)])] = true;
    _isBoneOfSkin = _isBone;
    for (std::size_t i = 0; i < joints.size(); ++i)
        if (joints[i].parent >= 0 && !(isOfSkin[i] && isOfSkin[static_cast<std::size_t>(joints[i].parent)]))
            _isBoneOfSkin[i] = false;
}

const std::vector<bool>& SceneView::shownBones() const {
    return isDrawnByOpenGL() ? _isBoneOfSkin : _isBone;
}

/// What is seen is looked at when it is drawn: while a picture is being made, the state in between is nobody's.
void SceneView::refresh() {
    _isFigureOld = true;
    touch();
}

void SceneView::lookAgain() {
    if (!_isFigureOld)
        return;
    _isFigureOld = false;
    _figure.update();
    _lights = _fixtures.shining();
}

const Figure& SceneView::figure() {
    lookAgain();
    return _figure;
}

void SceneView::touch() {
    ++_revision;
    update();
}

std::optional<SceneView::Drawing> SceneView::drawingNamed(const QString& name) {
    if (name == QLatin1String("automatic"))
        return Drawing::Automatic;
    if (name == QLatin1String("opengl"))
        return Drawing::OpenGL;
    if (name == QLatin1String("plain"))
        return Drawing::Plain;
    return std::nullopt;
}

void SceneView::setDrawing(Drawing drawing) {
    _wish = drawing;
    _hasFailed = false;
    _plain->setReason(QString());
    if (drawing == Drawing::Plain)
        _space.reset();
    else
        startOpenGL();
    touch();
}

/// Where something is open and nothing is against it.
void SceneView::startOpenGL() {
    if (_wish == Drawing::Plain || _hasFailed || _space != nullptr || !_session.isOpen())
        return;
    _space = std::make_unique<SpaceDrawing>();
    _space->setScene(_meshes);
    connect(_space.get(), &SceneDrawing::changed, this, QOverload<>::of(&QWidget::update));
    connect(_space.get(), &SpaceDrawing::gone, this, [this](const QString& why) {
        _hasFailed = true;
        _plain->setReason(why);
        _space.release()->deleteLater(); // it is what is calling
        emit hint(tr("The scene is drawn without OpenGL: %1").arg(why));
        touch();
    });
}

bool SceneView::isDrawnByOpenGL() const {
    return _space != nullptr && _space->hasPicture();
}

bool SceneView::isUpToDate() const {
    return _space == nullptr || _space->shows(_revision);
}

QString SceneView::note() const {
    return isDrawnByOpenGL() ? _space->note() : _plain->note();
}

Viewpoint SceneView::viewpoint() const {
    for (const SceneCamera& camera : _fixtures.cameras())
        if (camera.setting == _through)
            if (const auto through = SceneFixtures::viewpointOf(camera, _camera.distance()))
                return *through;
    return _camera.viewpoint();
}

void SceneView::lookThrough(unsigned int setting) {
    _through = setting;
    touch();
}

/// Stays where the scene's camera is, as far as an upright view can.
void SceneView::leaveSceneCamera() {
    if (_through == 0)
        return;
    _camera.standAt(viewpoint());
    _through = 0;
    emit hint(tr("The view is its own again; Scene, Look through goes back to the camera"));
}

void SceneView::look(OrbitCamera::Side side) {
    _through = 0;
    _camera.look(side);
    touch();
}

void SceneView::setZUp(bool zUp) {
    _camera.setZUp(zUp);
    touch();
}

unsigned int SceneView::pickedNode() const {
    return _picked < 0 ? 0 : _figure.joints()[static_cast<std::size_t>(_picked)].node;
}

void SceneView::pick(unsigned int node) {
    _picked = _figure.indexOf(node);
    _isTrailStale = true;
    touch();
}

void SceneView::setTool(Tool tool) {
    _tool = tool;
    touch();
}

void SceneView::setTrail(bool on) {
    _hasTrail = on;
    _isTrailStale = true;
    touch();
}

void SceneView::setGhosts(bool on) {
    _hasGhosts = on;
    _isTrailStale = true;
    touch();
}

void SceneView::setBones(bool on) {
    _hasBones = on;
    touch();
}

void SceneView::frameBox(const QVector3D& low, const QVector3D& high) {
    if (!(low.x() <= high.x()))
        return;
    _through = 0;
    _camera.frame(low, high);
    touch();
}

namespace {

/// Grows from nothing with the places that it takes in.
struct Box {
    QVector3D low = QVector3D(1, 1, 1) * std::numeric_limits<float>::max(), high = -low;

    void add(float x, float y, float z) {
        const float place[] = {x, y, z};
        if (!std::isfinite(x + y + z))
            return;
        for (int i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], place[i]);
            high[i] = std::max(high[i], place[i]);
        }
    }
    void add(const QVector3D& place) { add(place.x(), place.y(), place.z()); }
};

void addPart(Box& box, const SpaceScene& scene, const SpacePose& pose, std::size_t part,
             std::size_t firstWeight) {
    WorldCorners corners;
    deform(scene, scene.parts[part], pose, firstWeight, corners);
    for (std::size_t i = 0; i + 3 <= corners.positions.size(); i += 3)
        box.add(corners.positions[i], corners.positions[i + 1], corners.positions[i + 2]);
}

} // namespace

void SceneView::frameAll() {
    lookAgain();
    Box box;
    // Of a scene with meshes only those count: its nodes may stand anywhere.
    const SpacePose pose = poseOf(_meshes, _figure);
    std::size_t weight = 0;
    for (std::size_t i = 0; i < _meshes.parts.size(); weight += _meshes.parts[i++].morphs.size())
        if (pose.isHidden[i] == 0)
            addPart(box, _meshes, pose, i, weight);
    if (!(box.low.x() <= box.high.x()))
        for (const QVector3D& place : _figure.places())
            box.add(place);
    if (box.low.x() <= box.high.x())
        _size = std::max((box.high - box.low).length(), 1e-3F);
    frameBox(box.low, box.high);
}

void SceneView::frameSelection() {
    if (_picked < 0)
        return frameAll();
    lookAgain();
    const std::vector<Figure::Joint>& joints = _figure.joints();
    Box box;
    box.add(_figure.places()[static_cast<std::size_t>(_picked)]);
    for (std::size_t i = 0; i < joints.size(); ++i)
        if (joints[i].parent == _picked)
            box.add(_figure.places()[i]);
    const SpacePose pose = poseOf(_meshes, _figure);
    std::size_t weight = 0;
    for (std::size_t i = 0; i < _meshes.parts.size(); weight += _meshes.parts[i++].morphs.size()) {
        const SpacePart& part = _meshes.parts[i];
        if (!part.isSkinned() && part.mover >= 0 &&
            _meshes.movers[static_cast<std::size_t>(part.mover)] == _picked)
            addPart(box, _meshes, pose, i, weight);
    }
    const QVector3D margin = QVector3D(1, 1, 1) * _size * 0.01F; // a joint alone has no size
    frameBox(box.low - margin, box.high + margin);
}

SceneShot SceneView::shot() const {
    SceneShot shot;
    shot.revision = _revision;
    shot.viewpoint = viewpoint();
    shot.size = size();
    shot.scale = devicePixelRatioF();
    shot.figure = &_figure;
    shot.scene = &_meshes;
    shot.ghosts = &_trail.ghosts();
    shot.lights = &_lights;
    shot.picked = _picked;
    shot.hasBones = _hasBones;
    shot.isBone = _space != nullptr ? &_isBoneOfSkin : &_isBone;
    return shot;
}

/// The way of the picked joint around the playhead, and the figure before and after.
void SceneView::sampleMotion() {
    if (_isTrailStale && _drag != Drag::Gizmo) {
        _isTrailStale = false;
        _trail.clear();
        if (!_transport.isPlaying())
            _trail.begin(_figure, _transport.objects(), {_head.frame(), _transport.begin(), _transport.end()},
                         _hasTrail ? _picked : -1, _hasGhosts);
    }
    if (!_trail.isComplete() && _drag != Drag::Gizmo && !_idle.isActive())
        _idle.start(0);
}

} // namespace ka::studio
