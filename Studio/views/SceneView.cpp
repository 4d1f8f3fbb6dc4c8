#include "SceneView.h"

#include "document/Session.h"
#include "playback/Transport.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

constexpr double Reach = 9.0; ///< Pixels around a joint within which a click picks it.

double distanceToLine(const QPointF& p, const QPointF& a, const QPointF& b) {
    const QPointF way = b - a, off = p - a;
    const double length = QPointF::dotProduct(way, way);
    const double t = length > 0 ? std::clamp(QPointF::dotProduct(off, way) / length, 0.0, 1.0) : 0.0;
    const QPointF rest = off - way * t;
    return std::hypot(rest.x(), rest.y());
}

} // namespace

SceneView::SceneView(Session& session, Transport& transport, PlayHead& head, QWidget* parent)
    : QWidget(parent), _session(session), _transport(transport), _head(head) {
    setObjectName(QStringLiteral("sceneView"));
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 120);
    connect(&session, &Session::opened, this, &SceneView::takeInScene);
    connect(&transport, &Transport::evaluated, this, &SceneView::refresh);
    connect(&session.document(), &Document::changed, this, [this] { _isSampleStale = true; });
}

void SceneView::takeInScene() {
    _figure.setNodes(_session.isOpen() ? _session.project().placedNodes() : std::vector<osg::NodePtr>());
    _picked = -1;
    _pose.reset();
    _trail.clear();
    _ghosts.clear();
    refresh();
    frameAll();
}

void SceneView::refresh() {
    _places = _figure.places();
    update();
}

unsigned int SceneView::pickedNode() const {
    return _picked < 0 ? 0 : _figure.joints()[static_cast<std::size_t>(_picked)].node;
}

void SceneView::pick(unsigned int node) {
    _picked = _figure.indexOf(node);
    _isSampleStale = true;
    update();
}

void SceneView::setTool(Tool tool) {
    _tool = tool;
    update();
}

void SceneView::setTrail(bool on) {
    _hasTrail = on;
    _isSampleStale = true;
    update();
}

void SceneView::setGhosts(bool on) {
    _hasGhosts = on;
    _isSampleStale = true;
    update();
}

void SceneView::frameBox(const std::vector<QVector3D>& places) {
    if (places.empty())
        return;
    QVector3D low = places.front(), high = low;
    for (const QVector3D& place : places)
        for (int i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], place[i]);
            high[i] = std::max(high[i], place[i]);
        }
    _size = std::max((high - low).length(), 1e-3F);
    _camera.frame(low, high);
    update();
}

void SceneView::frameAll() {
    frameBox(_places);
}

void SceneView::frameSelection() {
    if (_picked < 0) {
        frameAll();
        return;
    }
    std::vector<QVector3D> near{_places[static_cast<std::size_t>(_picked)]};
    for (std::size_t i = 0; i < _places.size(); ++i)
        if (_figure.joints()[i].parent == _picked)
            near.push_back(_places[i]);
    const float whole = _size;
    frameBox(near);
    _size = whole;
}

/// The way of the picked joint around the playhead, and the figure before and after, by evaluating there.
void SceneView::sampleMotion() {
    constexpr int Around = 50, GhostStep = 8, GhostCount = 2; // frames, frames, poses on each side
    _isSampleStale = false;
    _trail.clear();
    _trailKeys.clear();
    _ghosts.clear();
    if (_transport.isPlaying() || _transport.objects().empty())
        return;
    const float now = _head.frame();
    if (_hasTrail && _picked >= 0) {
        std::vector<float> frames;
        for (float frame = std::floor(now) - Around; frame <= now + Around; ++frame)
            if (frame >= _transport.begin() && frame <= _transport.end())
                frames.push_back(frame);
        for (const auto& places : _figure.placesAt(frames, _transport.objects(), now))
            _trail.push_back(places[static_cast<std::size_t>(_picked)]);
        for (const kaAnimationCurve2D* curve : curvesOfNode(pickedNode()))
            for (std::size_t i = 0; i < frames.size(); ++i)
                if (curve->findPoint(frames[i]) != nullptr)
                    _trailKeys.push_back(i);
    }
    std::vector<float> frames;
    for (int i = -GhostCount; i <= GhostCount && _hasGhosts; ++i)
        if (i != 0)
            frames.push_back(
                std::clamp(now + static_cast<float>(i * GhostStep), _transport.begin(), _transport.end()));
    if (!frames.empty())
        _ghosts = _figure.placesAt(frames, _transport.objects(), now);
}

QPointF SceneView::pixelOfJoint(int joint) const {
    const std::optional<QPointF> at = seen(_places[static_cast<std::size_t>(joint)]);
    return at.value_or(QPointF(-1e4, -1e4));
}

int SceneView::jointAt(const QPointF& place) const {
    int nearest = -1;
    double best = Reach;
    for (int i = 0; i < static_cast<int>(_places.size()); ++i) {
        const QPointF off = pixelOfJoint(i) - place;
        if (std::hypot(off.x(), off.y()) < best) {
            best = std::hypot(off.x(), off.y());
            nearest = i;
        }
    }
    for (int i = 0; i < static_cast<int>(_places.size()) && nearest < 0;
         ++i) { // else the bone below the pointer
        const int parent = _figure.joints()[static_cast<std::size_t>(i)].parent;
        if (parent >= 0 && distanceToLine(place, pixelOfJoint(parent), pixelOfJoint(i)) < Reach / 2)
            nearest = parent;
    }
    return nearest;
}

float SceneView::gizmoLength() const {
    return 70.0F * _camera.unitsPerPixel(_places[static_cast<std::size_t>(_picked)], size());
}

/// Of the rotation's axes each stands in the space that the ones before it have turned: Z, then Y, then X.
QVector3D SceneView::gizmoAxis(int axis) const {
    QVector3D own;
    own[axis] = 1.0F;
    if (_tool == Tool::Move)
        return own;
    QMatrix4x4 turned = _figure.parentWorldOf(_picked);
    const std::array<float, 3> angles = rotationOfNode(pickedNode());
    if (axis < 2)
        turned.rotate(angles[2], 0, 0, 1);
    if (axis < 1)
        turned.rotate(angles[1], 0, 1, 0);
    return turned.mapVector(own).normalized();
}

QPointF SceneView::pixelOfGizmo(int axis) const {
    const QVector3D centre = _places[static_cast<std::size_t>(_picked)];
    const QVector3D normal = gizmoAxis(axis);
    QVector3D towards = normal;
    if (_tool == Tool::Rotate) {
        const QVector3D any = std::abs(normal.y()) < 0.9F ? QVector3D(0, 1, 0) : QVector3D(1, 0, 0);
        towards = QVector3D::crossProduct(normal, any).normalized();
    }
    return seen(centre + towards * gizmoLength()).value_or(QPointF(-1e4, -1e4));
}

int SceneView::gizmoAt(const QPointF& place) const {
    if (_picked < 0 || _tool == Tool::Select)
        return -1;
    const QPointF centre = pixelOfJoint(_picked);
    int nearest = -1;
    double best = 7.0;
    for (int axis = 0; axis < 3; ++axis) {
        double distance =
            distanceToLine(place, centre + (pixelOfGizmo(axis) - centre) * 0.3, pixelOfGizmo(axis));
        if (_tool == Tool::Rotate) {
            distance = 1e9;
            QMatrix4x4 turn;
            const QVector3D normal = gizmoAxis(axis), at = _places[static_cast<std::size_t>(_picked)];
            const QVector3D any = std::abs(normal.y()) < 0.9F ? QVector3D(0, 1, 0) : QVector3D(1, 0, 0);
            const QVector3D arm = QVector3D::crossProduct(normal, any).normalized() * gizmoLength();
            for (int i = 0; i < 72; ++i, turn.rotate(5.0F, normal))
                if (const auto point = seen(at + turn.mapVector(arm)))
                    distance = std::min(distance, std::hypot(point->x() - place.x(), point->y() - place.y()));
        }
        if (distance < best) {
            best = distance;
            nearest = axis;
        }
    }
    return nearest;
}

void SceneView::mousePressEvent(QMouseEvent* event) {
    if (_drag != Drag::None)
        return;
    _pressed = _last = event->localPos();
    _hasMoved = false;
    if (event->button() == Qt::MiddleButton || event->modifiers().testFlag(Qt::ShiftModifier)) {
        _drag = Drag::Pan;
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    _axis = gizmoAt(_pressed);
    _drag = _axis >= 0 ? Drag::Gizmo : Drag::Orbit;
    if (_drag != Drag::Gizmo)
        return;
    _transport.pause();
    _dragAxis = gizmoAxis(_axis);
    const QPointF off = _pressed - pixelOfJoint(_picked);
    _dragStart = std::atan2(-off.y(), off.x());
    _pose = std::make_unique<PoseDrag>(_session.document(), pickedNode(), _head.frame(), _autoKey);
    if (!_pose->canKey())
        emit hint(tr("There is no curve with a key here: switch auto-key on, or give the channel a curve"));
}

void SceneView::dragGizmo(const QPointF& to) {
    const QPointF centre = pixelOfJoint(_picked);
    if (_tool == Tool::Move) {
        const QVector3D at = _places[static_cast<std::size_t>(_picked)];
        const QPointF along = seen(at + _dragAxis * gizmoLength()).value_or(centre) - centre;
        const double length = QPointF::dotProduct(along, along);
        if (length < 1.0)
            return; // the axis points at the viewer
        const double part = QPointF::dotProduct(to - _last, along) / length;
        const QVector3D way = _dragAxis * gizmoLength() * static_cast<float>(part);
        const QVector3D local = _figure.parentWorldOf(_picked).inverted().mapVector(way);
        _pose->translate({local.x(), local.y(), local.z()});
        emit hint(tr("Moving along %1").arg(QChar('X' + _axis)));
        return;
    }
    const QPointF off = to - centre;
    const double angle = std::atan2(-off.y(), off.x());
    double turned = qRadiansToDegrees(angle - _dragStart);
    turned -= 360.0 * std::round(turned / 360.0);
    _dragStart = angle;
    const bool facesAway = QVector3D::dotProduct(_dragAxis, _camera.direction()) > 0;
    std::array<float, 3> turn{};
    turn[static_cast<std::size_t>(_axis)] = static_cast<float>(facesAway ? -turned : turned);
    _pose->rotate(turn);
    emit hint(tr("Turning about %1").arg(QChar('X' + _axis)));
}

void SceneView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->localPos(), way = at - _last;
    const QPointF whole = at - _pressed;
    _hasMoved = _hasMoved || std::hypot(whole.x(), whole.y()) > 3.0;
    if (_drag == Drag::Orbit && _hasMoved)
        _camera.orbit(static_cast<float>(-way.x()) * 0.5F, static_cast<float>(way.y()) * 0.5F);
    else if (_drag == Drag::Pan)
        _camera.pan(way, size());
    else if (_drag == Drag::Gizmo && _pose != nullptr)
        dragGizmo(at);
    _last = at;
    if (_drag != Drag::None)
        update();
}

void SceneView::mouseReleaseEvent(QMouseEvent* event) {
    if (_drag == Drag::None || (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton))
        return;
    const Drag ended = _drag;
    _drag = Drag::None;
    if (ended == Drag::Gizmo && _pose != nullptr) {
        _pose->commit();
        _pose.reset();
        _isSampleStale = true;
    } else if (ended == Drag::Orbit && !_hasMoved) {
        _picked = jointAt(event->localPos());
        _isSampleStale = true;
        emit picked(pickedNode());
    }
    update();
}

void SceneView::wheelEvent(QWheelEvent* event) {
    _camera.zoom(static_cast<float>(std::pow(1.15, event->angleDelta().y() / 120.0)));
    update();
    event->accept();
}

} // namespace ka::studio
