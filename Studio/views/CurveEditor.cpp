#include "CurveEditor.h"

#include "timebased/PlayHead.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <limits>

namespace ka::studio {

namespace {

constexpr double Reach = 7.0;     ///< Pixels around a key or handle within which a click takes hold of it.
constexpr double LineReach = 5.0; ///< The same around a curve.

const kaControlPoint2D* keyOf(kaUID id) {
    return kaAnimationManager::the()->getPoint2D(id);
}

} // namespace

CurveEditor::CurveEditor(Document& document, TimeAxis& axis, PlayHead& head, IdSelection& selection,
                         QWidget* parent)
    : TimeView(axis, head, parent), _document(document), _selection(selection) {
    setObjectName(QStringLiteral("curveEditor"));
    _values.show(-1.0, 1.0, -200.0);
    const auto redraw = [this] {
        _isLayerStale = true;
        update();
    };
    connect(&axis, &TimeAxis::changed, this, redraw);
    connect(&selection, &IdSelection::changed, this, [this] { update(); });
    connect(&document, &Document::changed, this, &CurveEditor::onChanged);
    connect(&document, &Document::replaced, this, [this] {
        _scene.forgetAll();
        _scene.setCurves({});
        _isLayerStale = true;
    });
}

void CurveEditor::setCurves(const std::vector<kaUID>& curves) {
    if (!_scene.setCurves(curves))
        return;
    _isLayerStale = true;
    update();
}

void CurveEditor::setNormalised(bool normalised) {
    _scene.setNormalised(normalised);
    frameAll();
}

void CurveEditor::setScaling(bool scaling) {
    _isScaling = scaling;
    update();
}

/// While curves are dragged they are not in the layer, which then stays as it is.
void CurveEditor::onChanged(const std::vector<kaUID>& ids) {
    bool concernsLayer = false;
    for (const kaUID id : ids)
        if (_scene.forget(id) && std::find(_moving.begin(), _moving.end(), id) == _moving.end())
            concernsLayer = true;
    if (concernsLayer) {
        _scene.setCurves(std::vector<kaUID>(_scene.curves()));
        _isLayerStale = true;
    }
    update();
}

QPointF CurveEditor::pixelOfKey(kaUID id) const {
    const kaControlPoint2D* key = keyOf(id);
    const kaAnimationCurve2D* curve = curveOf(id);
    if (key == nullptr || curve == nullptr)
        return {};
    const ValueScale scale = _scene.scaleOf(curve->getId());
    return {pixelOf(static_cast<double>(key->getBegin())),
            _values.toPixel(scale.toView(static_cast<double>(key->getMaximum())))};
}

QPointF CurveEditor::pixelOfHandle(kaUID id, HandleDrag::Side side) const {
    const kaControlPoint2D* key = keyOf(id);
    const kaAnimationCurve2D* curve = curveOf(id);
    if (key == nullptr || curve == nullptr)
        return {};
    const kaControlPoint2D* handle =
        side == HandleDrag::Side::In ? key->getInTangent() : key->getOutTangent();
    const osg::Pnt2f at = handle != nullptr ? handle->getPosition() : key->getPosition();
    const ValueScale scale = _scene.scaleOf(curve->getId());
    return {pixelOf(static_cast<double>(at[0])), _values.toPixel(scale.toView(static_cast<double>(at[1])))};
}

std::vector<kaUID> CurveEditor::freeSelection() const {
    std::vector<kaUID> keys;
    for (const kaUID id : _selection.ids())
        if (const kaAnimationCurve2D* curve = curveOf(id))
            if (!isLocked(curve->getId()))
                keys.push_back(id);
    return keys;
}

CurveEditor::Hit CurveEditor::handleAt(const QPointF& position) const {
    constexpr std::size_t MaximumShown = 200; // as many keys as show their handles
    if (_selection.size() > MaximumShown)
        return {};
    for (const kaUID id : freeSelection())
        for (const HandleDrag::Side side : {HandleDrag::Side::Out, HandleDrag::Side::In}) {
            const QPointF off = pixelOfHandle(id, side) - position;
            const QPointF own = pixelOfHandle(id, side) - pixelOfKey(id);
            const bool isOnKey = std::hypot(own.x(), own.y()) < 3.0; // then the key goes first
            if (!isOnKey && std::hypot(off.x(), off.y()) <= Reach)
                return {side == HandleDrag::Side::In ? Hit::Kind::InHandle : Hit::Kind::OutHandle, id, 0};
        }
    return {};
}

CurveEditor::Hit CurveEditor::scaleFrameAt(const QPointF& position) const {
    const QRectF frame = _isScaling ? selectionFrame() : QRectF();
    if (frame.isNull() || !frame.adjusted(-Reach, -Reach, Reach, Reach).contains(position))
        return {};
    int side = 0;
    side |= std::abs(position.x() - frame.left()) <= Reach ? 1 : 0;
    side |= std::abs(position.x() - frame.right()) <= Reach ? 2 : 0;
    side |= std::abs(position.y() - frame.top()) <= Reach ? 4 : 0;
    side |= std::abs(position.y() - frame.bottom()) <= Reach ? 8 : 0;
    return side != 0 ? Hit{Hit::Kind::ScaleFrame, 0, side} : Hit{};
}

CurveEditor::Hit CurveEditor::hitAt(const QPointF& position) const {
    for (const Hit& hit : {scaleFrameAt(position), handleAt(position)})
        if (hit.kind != Hit::Kind::Nothing)
            return hit;
    if (const kaUID key = _scene.keyAt(position, axis().map(), _values, Reach))
        return {Hit::Kind::Key, key, 0};
    if (const kaUID curve = _scene.curveAt(position, axis().map(), _values, LineReach))
        return {Hit::Kind::Line, curve, 0};
    return {};
}

void CurveEditor::pressContent(QMouseEvent* event) {
    _pressed = event->localPos();
    const Hit hit = hitAt(_pressed);
    switch (hit.kind) {
    case Hit::Kind::Key:
        startKeyDrag(hit.id, _pressed);
        if (_selection.contains(hit.id) && event->modifiers().testFlag(Qt::ControlModifier)) {
            _selection.select({hit.id}, SelectBy::TakingAway);
            _keyDrag.reset();
        } else if (!_selection.contains(hit.id)) {
            _selection.select({hit.id}, IdSelection::byModifiers(event->modifiers(), true));
        }
        break;
    case Hit::Kind::InHandle:
    case Hit::Kind::OutHandle:
        _pressedScale = _scene.scaleOf(curveOf(hit.id)->getId());
        dropCurvesOut({curveOf(hit.id)->getId()});
        _handleDrag = std::make_unique<HandleDrag>(
            _document, hit.id, hit.kind == Hit::Kind::InHandle ? HandleDrag::Side::In : HandleDrag::Side::Out,
            event->modifiers().testFlag(Qt::ControlModifier));
        break;
    case Hit::Kind::ScaleFrame:
        _scaleSide = hit.side;
        _scaleFrame = selectionFrame();
        _keyScale = std::make_unique<KeyScale>(_document, freeSelection());
        dropCurvesOut(_keyScale->curves());
        break;
    default:
        startBox(event->pos());
        break;
    }
}

/// What is dragged is known only when the mouse moves: a click alone selects.
void CurveEditor::startKeyDrag(kaUID key, const QPointF& from) {
    _pressed = from;
    _pressedScale = _scene.scaleOf(curveOf(key)->getId());
    _keyDrag.reset();
}

void CurveEditor::dropCurvesOut(const std::vector<kaUID>& curves) {
    _ghosts.clear();
    for (const kaUID id : curves)
        _ghosts.push_back(_scene.trace(id).line(axis().map(), _values, _scene.scaleOf(id), width()));
    _moving = curves;
    _isLayerStale = true;
}

void CurveEditor::moveContent(QMouseEvent* event) {
    const QPointF at = event->localPos();
    if (_handleDrag != nullptr) {
        _handleDrag->moveTo(static_cast<float>(frameAt(at.x())),
                            static_cast<float>(_pressedScale.toCurve(_values.toValue(at.y()))));
        emit hint(tr("Handle at frame %1, value %2")
                      .arg(frameAt(at.x()), 0, 'f', 2)
                      .arg(_pressedScale.toCurve(_values.toValue(at.y())), 0, 'f', 3));
        return;
    }
    if (_keyScale != nullptr) {
        dragScale(at);
        return;
    }
    dragKeys(at, event->modifiers().testFlag(Qt::ShiftModifier));
}

void CurveEditor::dragKeys(const QPointF& to, bool alongOneAxis) {
    constexpr double Still = 3.0; // pixels that a hand trembles in a click
    QPointF way = to - _pressed;
    if (_keyDrag == nullptr) {
        const std::vector<kaUID> keys = freeSelection();
        if (keys.empty() || std::hypot(way.x(), way.y()) < Still)
            return;
        dropCurvesOut(curvesOf(keys));
        _keyDrag = std::make_unique<KeyDrag>(_document, keys);
    }
    if (alongOneAxis && std::abs(way.x()) >= std::abs(way.y()))
        way.setY(0.0);
    else if (alongOneAxis)
        way.setX(0.0);
    const double frames = way.x() / axis().map().scale();
    const double value = way.y() / _values.scale() / _pressedScale.factor;
    _keyDrag->moveTo(static_cast<float>(frames), static_cast<float>(value), axis().snapsFrames(),
                     axis().snapsValues());
    emit hint(tr("Moved by %1 frames, value by %2 (Shift: one axis only)")
                  .arg(static_cast<double>(_keyDrag->frames()), 0, 'f', 2)
                  .arg(value, 0, 'f', 3));
}

void CurveEditor::dragScale(const QPointF& to) {
    const auto factor = [](double from, double pivot, double now) {
        return std::abs(from - pivot) < 1.0 ? 1.0 : (now - pivot) / (from - pivot);
    };
    const bool left = (_scaleSide & 1) != 0, top = (_scaleSide & 4) != 0;
    const double pivotX = left ? _scaleFrame.right() : _scaleFrame.left();
    const double pivotY = top ? _scaleFrame.bottom() : _scaleFrame.top();
    const double inTime =
        (_scaleSide & 3) != 0 ? factor(left ? _scaleFrame.left() : _scaleFrame.right(), pivotX, to.x()) : 1.0;
    const double inValue =
        (_scaleSide & 12) != 0 ? factor(top ? _scaleFrame.top() : _scaleFrame.bottom(), pivotY, to.y()) : 1.0;
    _keyScale->scale(static_cast<float>(frameAt(pivotX)), static_cast<float>(_values.toValue(pivotY)),
                     static_cast<float>(inTime), static_cast<float>(inValue));
    emit hint(tr("Scaled to %1 % in time, %2 % in value")
                  .arg(100 * inTime, 0, 'f', 0)
                  .arg(100 * inValue, 0, 'f', 0));
}

void CurveEditor::releaseContent(QMouseEvent* /*event*/) {
    _moving.clear(); // before the step is announced, so that the layer takes the curves in again
    _ghosts.clear();
    _isLayerStale = true;
    if (_keyDrag != nullptr)
        _keyDrag->commit();
    if (_handleDrag != nullptr)
        _handleDrag->commit();
    if (_keyScale != nullptr)
        _keyScale->commit();
    _keyDrag.reset();
    _handleDrag.reset();
    _keyScale.reset();
    update();
}

void CurveEditor::selectBox(const QRect& box, SelectBy how) {
    _selection.select(_scene.keysIn(QRectF(box), axis().map(), _values), how);
}

void CurveEditor::panContent(double pixels) {
    _values.pan(pixels);
    _isLayerStale = true;
}

void CurveEditor::zoomContent(double pixel, double factor) {
    _values.zoom(pixel, factor);
    _isLayerStale = true;
    update();
}

void CurveEditor::mouseDoubleClickEvent(QMouseEvent* event) {
    const Hit hit = event->button() == Qt::LeftButton && event->pos().y() >= RulerHeight
                        ? hitAt(event->localPos())
                        : Hit{};
    if (hit.kind != Hit::Kind::Line || isLocked(hit.id)) {
        TimeView::mousePressEvent(event);
        return;
    }
    double frame = frameAt(event->localPos().x());
    if (axis().snapsFrames())
        frame = std::round(frame);
    if (const kaUID key = insertKey(_document, hit.id, static_cast<float>(frame)))
        _selection.select({key}, SelectBy::Replacing);
    else
        emit hint(tr("No key can stand there: its neighbours' handles reach over it"));
}

void CurveEditor::keyPressEvent(QKeyEvent* event) {
    const bool drags = _keyDrag != nullptr || _handleDrag != nullptr || _keyScale != nullptr;
    if (event->key() != Qt::Key_Escape || !drags) {
        TimeView::keyPressEvent(event);
        return;
    }
    _moving.clear();
    _ghosts.clear();
    _isLayerStale = true;
    _keyDrag.reset(); // takes back what was not committed
    _handleDrag.reset();
    _keyScale.reset();
    update();
}

void CurveEditor::resizeEvent(QResizeEvent* /*event*/) {
    _isLayerStale = true;
}

void CurveEditor::frameAll() {
    double begin = std::numeric_limits<double>::max(), end = -begin, low = begin, high = -begin;
    for (const kaUID id : _scene.curves()) {
        const CurveTrace& shown = _scene.trace(id);
        if (shown.size() == 0)
            continue;
        const ValueScale scale = _scene.scaleOf(id);
        begin = std::min(begin, static_cast<double>(shown.frames().front()));
        end = std::max(end, static_cast<double>(shown.frames().back()));
        low = std::min(low, scale.toView(static_cast<double>(shown.minimum())));
        high = std::max(high, scale.toView(static_cast<double>(shown.maximum())));
    }
    if (begin > end)
        return;
    const double space = 0.08; // of the extent, on each side
    const double span = std::max(high - low, 1e-3);
    _values.show(low - space * span, high + space * span, -contentRect().height());
    _values.pan(RulerHeight);
    axis().frame(begin, end, width());
}

void CurveEditor::frameSelection() {
    const std::vector<kaUID> keys = freeSelection();
    if (keys.empty()) {
        frameAll();
        return;
    }
    double begin = std::numeric_limits<double>::max(), end = -begin, low = begin, high = -begin;
    for (const kaUID id : keys) {
        const double frame = static_cast<double>(keyOf(id)->getBegin());
        const double value =
            _scene.scaleOf(curveOf(id)->getId()).toView(static_cast<double>(keyOf(id)->getMaximum()));
        begin = std::min(begin, frame);
        end = std::max(end, frame);
        low = std::min(low, value);
        high = std::max(high, value);
    }
    const double frames = std::max(end - begin, 2.0), span = std::max(high - low, 1e-3);
    _values.show(low - 0.25 * span, high + 0.25 * span, -contentRect().height());
    _values.pan(RulerHeight);
    axis().frame(begin - 0.25 * frames, end + 0.25 * frames, width());
}

void CurveEditor::insertAtHead() {
    const std::vector<kaUID> curves = _scene.curves();
    std::vector<kaUID> made;
    _document.history().beginMacro(tr("Insert keys"));
    for (const kaUID curve : curves)
        if (!isLocked(curve))
            if (const kaUID key = insertKey(_document, curve, head().frame()))
                made.push_back(key);
    _document.history().endMacro();
    if (made.empty())
        _document.history().undo(); // nothing came of it
    else
        _selection.select(made, SelectBy::Replacing);
}

void CurveEditor::deleteSelected() {
    deleteKeys(_document, freeSelection());
}

void CurveEditor::selectAll() {
    std::vector<kaUID> keys;
    for (const kaUID curve : _scene.curves()) {
        const std::vector<kaUID>& onCurve = _scene.trace(curve).keys();
        keys.insert(keys.end(), onCurve.begin(), onCurve.end());
    }
    _selection.select(keys, SelectBy::Replacing);
}

} // namespace ka::studio
