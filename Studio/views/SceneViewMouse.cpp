#include "SceneView.h"
#include "document/Session.h"
#include "playback/Transport.h"
#include "space/Deformer.h"
#include "space/SceneIntake.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>

namespace ka::studio {

namespace {

constexpr double Reach = 9.0; ///< Pixels around a joint within which a click picks it.

std::array<float, 3> arrayOf(const QVector3D& v) {
    return {v.x(), v.y(), v.z()};
}

double distanceBetween(const QPointF& a, const QPointF& b) {
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

} // namespace

QPointF SceneView::pixelOfJoint(int joint) {
    lookAgain();
    return viewpoint()
        .project(_figure.places()[static_cast<std::size_t>(joint)], size())
        .value_or(QPointF(-1e4, -1e4));
}

/// The nearest joint in reach, else the bone below the pointer.
int SceneView::jointAt(const QPointF& place) const {
    const Viewpoint from = viewpoint();
    const std::vector<Figure::Joint>& joints = _figure.joints();
    std::vector<std::optional<QPointF>> seen;
    seen.reserve(joints.size());
    for (const QVector3D& joint : _figure.places())
        seen.push_back(from.project(joint, size()));
    int nearest = -1;
    double best = Reach;
    for (std::size_t i = 0; i < seen.size(); ++i)
        if (seen[i].has_value() && distanceBetween(*seen[i], place) < best) {
            best = distanceBetween(*seen[i], place);
            nearest = static_cast<int>(i);
        }
    for (std::size_t i = 0; i < seen.size() && nearest < 0; ++i) {
        const int parent = joints[i].parent;
        if (parent < 0 || !shownBones()[i] || !seen[i].has_value() ||
            !seen[static_cast<std::size_t>(parent)].has_value())
            continue;
        if (distanceToLine(place, *seen[static_cast<std::size_t>(parent)], *seen[i]) < Reach / 2)
            nearest = parent;
    }
    return nearest;
}

int SceneView::jointOfMeshAt(const QPointF& place) const {
    const Viewpoint from = viewpoint();
    const SpaceHit hit =
        meet(_meshes, poseOf(_meshes, _figure), arrayOf(from.eye()), arrayOf(from.ray(place, size())));
    return studio::jointAt(_meshes, hit);
}

int SceneView::jointOfFixtureAt(const QPointF& place) const {
    const Viewpoint from = viewpoint();
    const auto isThere = [&](const QVector3D& at) {
        const std::optional<QPointF> seen = from.project(at, size());
        return seen.has_value() && distanceBetween(*seen, place) < 1.5 * Reach;
    };
    for (const SceneLight& light : _fixtures.lights())
        if (const auto at = SceneFixtures::placeOf(light); at.has_value() && isThere(*at))
            return _figure.indexOf(light.carrier);
    for (const SceneCamera& camera : _fixtures.cameras())
        if (const auto at = SceneFixtures::viewpointOf(camera, 1.0F);
            camera.setting != _through && at.has_value() && isThere(at->eye()))
            return _figure.indexOf(camera.carrier);
    return -1;
}

/// Of the rotation's axes each stands in the space that the ones before it have turned: Z, then Y, then X.
std::optional<Gizmo> SceneView::gizmo(const Viewpoint& from) const {
    if (_picked < 0 || _tool == Tool::Select)
        return std::nullopt;
    const QVector3D place = _figure.places()[static_cast<std::size_t>(_picked)];
    std::array<QVector3D, 3> axes = {QVector3D(1, 0, 0), QVector3D(0, 1, 0), QVector3D(0, 0, 1)};
    if (_tool == Tool::Move)
        return Gizmo(Gizmo::Kind::Arrows, place, axes, from, size());
    QMatrix4x4 turned = _figure.parentWorldOf(_picked);
    const std::array<float, 3> angles = rotationOfNode(pickedNode());
    axes[2] = turned.mapVector(axes[2]).normalized();
    turned.rotate(angles[2], 0, 0, 1);
    axes[1] = turned.mapVector(axes[1]).normalized();
    turned.rotate(angles[1], 0, 1, 0);
    axes[0] = turned.mapVector(axes[0]).normalized();
    return Gizmo(Gizmo::Kind::Rings, place, axes, from, size());
}

QPointF SceneView::pixelOfGizmo(int axis) {
    lookAgain();
    const std::optional<Gizmo> shown = gizmo(viewpoint());
    return shown.has_value() ? shown->handle(axis) : QPointF(-1e4, -1e4);
}

void SceneView::mousePressEvent(QMouseEvent* event) {
    if (_drag != Drag::None)
        return;
    lookAgain();
    _pressed = _last = event->localPos();
    _hasMoved = false;
    if (event->button() == Qt::MiddleButton || event->modifiers().testFlag(Qt::ShiftModifier)) {
        _drag = Drag::Pan;
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    const std::optional<Gizmo> shown = gizmo(viewpoint());
    _axis = shown.has_value() ? shown->axisAt(_pressed) : -1;
    _drag = _axis >= 0 ? Drag::Gizmo : Drag::Orbit;
    if (_drag != Drag::Gizmo)
        return;
    _transport.pause();
    _pose = std::make_unique<PoseDrag>(_session.document(), pickedNode(), _head.frame(), _autoKey);
    if (!_pose->canKey())
        emit hint(tr("There is no curve with a key here: switch auto-key on, or give the channel a curve"));
}

void SceneView::dragGizmo(const QPointF& to) {
    lookAgain();
    const std::optional<Gizmo> shown = gizmo(viewpoint());
    if (!shown.has_value())
        return;
    if (_tool == Tool::Move) {
        const QVector3D way = shown->moved(_axis, _last, to);
        const QVector3D local = _figure.parentWorldOf(_picked).inverted().mapVector(way);
        _pose->translate({local.x(), local.y(), local.z()});
        emit hint(tr("Moving along %1").arg(QChar('X' + _axis)));
        return;
    }
    std::array<float, 3> turn{};
    turn[static_cast<std::size_t>(_axis)] = shown->turned(_axis, _last, to);
    _pose->rotate(turn);
    emit hint(tr("Turning about %1").arg(QChar('X' + _axis)));
}

void SceneView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->localPos(), way = at - _last;
    _hasMoved = _hasMoved || distanceBetween(at, _pressed) > 3.0;
    if ((_drag == Drag::Orbit || _drag == Drag::Pan) && _hasMoved)
        leaveSceneCamera();
    if (_drag == Drag::Orbit && _hasMoved)
        _camera.orbit(static_cast<float>(-way.x()) * 0.5F, static_cast<float>(way.y()) * 0.5F);
    else if (_drag == Drag::Pan)
        _camera.pan(way, size());
    else if (_drag == Drag::Gizmo && _pose != nullptr)
        dragGizmo(at);
    _last = at;
    if (_drag != Drag::None)
        touch();
}

void SceneView::mouseReleaseEvent(QMouseEvent* event) {
    if (_drag == Drag::None || (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton))
        return;
    const Drag ended = _drag;
    _drag = Drag::None;
    if (ended == Drag::Gizmo && _pose != nullptr) {
        _pose->commit();
        _pose.reset();
        _isTrailStale = true;
    } else if (ended == Drag::Orbit && !_hasMoved) {
        const QPointF at = event->localPos();
        lookAgain();
        _picked = _hasBones ? jointAt(at) : -1;
        if (_picked < 0)
            _picked = jointOfFixtureAt(at);
        if (_picked < 0 && isDrawnByOpenGL()) // only what is seen can be meant
            _picked = jointOfMeshAt(at);
        _isTrailStale = true;
        emit picked(pickedNode());
    }
    touch();
}

void SceneView::wheelEvent(QWheelEvent* event) {
    leaveSceneCamera();
    _camera.zoom(static_cast<float>(std::pow(1.15, event->angleDelta().y() / 120.0)));
    touch();
    event->accept();
}

void SceneView::resizeEvent(QResizeEvent* /*event*/) {
    touch();
}

} // namespace ka::studio
