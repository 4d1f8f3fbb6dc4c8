#include "KeyDrag.h"

#include "KeySupport.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <limits>
#include <unordered_set>

namespace ka::studio {

namespace {

constexpr float Infinite = std::numeric_limits<float>::infinity();

QString tr(const char* text) {
    return QCoreApplication::translate("Edits", text);
}

kaControlPoint2D* keyOf(kaUID id) {
    return kaAnimationManager::the()->getPoint2D(id);
}

osg::Pnt2f placeOf(const kaControlPoint2D* handle, const kaControlPoint2D& key) {
    return handle != nullptr ? handle->getPosition() : key.getPosition();
}

void savePlaces(kaControlPoint2D& key) {
    key.setSavedPosition(key.getPosition());
    key.setSavedInTangent(placeOf(key.getInTangent(), key));
    key.setSavedOutTangent(placeOf(key.getOutTangent(), key));
}

bool isByHand(const kaControlPoint2D& key) {
    return key.getTangentType() == kaControlPoint2D::TANGENT_USER;
}

/// Whether both handles lie on one line through the key, within a thousandth of their length.
bool isOneLine(const kaControlPoint2D& key) {
    const osg::Pnt2f at = key.getPosition(), in = placeOf(key.getInTangent(), key),
                     out = placeOf(key.getOutTangent(), key);
    const double ax = at[0] - in[0], ay = at[1] - in[1], bx = out[0] - at[0], by = out[1] - at[1];
    return std::abs(ax * by - ay * bx) <= 1e-3 * std::hypot(ax, ay) * std::hypot(bx, by);
}

} // namespace

KeyDrag::KeyDrag(Document& document, const Ids& keys)
    : _document(document),
      _keys(keys),
      _curves(curvesOf(keys)),
      _gesture(document, {_curves, {}}),
      _name(keys.size() == 1 ? tr("Move key") : tr("Move keys")) {
    const auto isLoose = [](kaUID id) { return curveOf(id) == nullptr; };
    _keys.erase(std::remove_if(_keys.begin(), _keys.end(), isLoose), _keys.end());
    for (const kaUID id : _keys)
        savePlaces(*keyOf(id));
    const auto byFrame = [](kaUID a, kaUID b) { return keyOf(a)->getBegin() < keyOf(b)->getBegin(); };
    std::sort(_keys.begin(), _keys.end(), byFrame);
}

/// How far the group may go from where it began, as its neighbours and their handles stand now.
std::pair<float, float> KeyDrag::freedom() const {
    const std::unordered_set<kaUID> moving(_keys.begin(), _keys.end());
    float low = -Infinite, high = Infinite;
    for (const kaUID id : _keys) {
        const kaControlPoint2D& key = *keyOf(id);
        const auto [previous, next] = curveOf(id)->getPreviousAndNextPoint(keyOf(id));
        const float start = key.getSavedPosition()[0];
        if (previous != nullptr && moving.count(previous->getId()) == 0) {
            low = std::max(low, placeOf(previous->getOutTangent(), *previous)[0] - start);
            if (isByHand(key))
                low = std::max(low, previous->getBegin() - key.getSavedInTangent()[0]);
        }
        if (next != nullptr && moving.count(next->getId()) == 0) {
            high = std::min(high, placeOf(next->getInTangent(), *next)[0] - start);
            if (isByHand(key))
                high = std::min(high, next->getBegin() - key.getSavedOutTangent()[0]);
        }
    }
    return {low, high};
}

/// Each key by itself, the foremost first, so that none stands in the way of the one behind it.
bool KeyDrag::step(float frames, float value, bool wholeFrames, bool wholeValues) {
    const bool isForward = frames > _frames;
    bool moved = false;
    for (std::size_t i = 0; i < _keys.size(); ++i) {
        kaControlPoint2D* key = keyOf(_keys[isForward ? _keys.size() - 1 - i : i]);
        kaAnimationCurve2D* curve = curveOf(key->getId());
        const osg::Pnt2f was = key->getPosition();
        const osg::Pnt2f start = key->getSavedPosition();
        const auto put = [&](float x, float y) {
            const float dx = x - start[0], dy = y - start[1];
            key->setPosition(x, y);
            if (kaControlPoint2D* in = key->getInTangent())
                in->setPosition(key->getSavedInTangent()[0] + dx, key->getSavedInTangent()[1] + dy);
            if (kaControlPoint2D* out = key->getOutTangent())
                out->setPosition(key->getSavedOutTangent()[0] + dx, key->getSavedOutTangent()[1] + dy);
        };
        const float x = wholeFrames && frames != 0.0F ? std::round(start[0] + frames) : start[0] + frames;
        const float y = wholeValues && value != 0.0F ? std::round(start[1] + value) : start[1] + value;
        if (curve->checkMoveConstraints2(key, x - start[0], true))
            put(x, y);
        else
            put(was[0], y);
        computeTangentsAround(*key, *curve);
        moved = moved || was != key->getPosition();
    }
    return moved;
}

void KeyDrag::moveTo(float frames, float value, bool wholeFrames, bool wholeValues) {
    if (_keys.empty() || !std::isfinite(frames) || !std::isfinite(value))
        return;
    // The handles of neighbours give way as keys come near: a long way takes several steps.
    constexpr int MaximumSteps = 24;
    for (int i = 0; i < MaximumSteps; ++i) {
        const auto [low, high] = freedom();
        float next = std::max(std::min(frames, high), low);
        if (wholeFrames && next != frames) // to the whole frame before the obstacle
            next = next < frames ? std::floor(keyOf(_keys[0])->getSavedPosition()[0] + next) -
                                       keyOf(_keys[0])->getSavedPosition()[0]
                                 : std::ceil(keyOf(_keys[0])->getSavedPosition()[0] + next) -
                                       keyOf(_keys[0])->getSavedPosition()[0];
        const bool moved = step(next, value, wholeFrames, wholeValues);
        _frames = next;
        if (!moved || next == frames)
            break;
    }
    _value = value;
    for (const kaUID curve : _curves)
        takeInChange(*kaAnimationManager::the()->getCurve2D(curve));
    _document.announce(_curves);
}

HandleDrag::HandleDrag(Document& document, kaUID key, Side side, bool breakApart)
    : _document(document),
      _key(key),
      _curve(curveOf(key) != nullptr ? curveOf(key)->getId() : 0),
      _side(side),
      _gesture(document, {{_curve}, {}}) {
    kaControlPoint2D* point = keyOf(key);
    if (point == nullptr)
        return;
    _isUnified = !breakApart && isOneLine(*point);
    const osg::Pnt2f other =
        placeOf(side == Side::In ? point->getOutTangent() : point->getInTangent(), *point);
    _otherLength = std::abs(other[0] - point->getBegin());
}

void HandleDrag::moveTo(float frame, float value) {
    kaControlPoint2D* key = keyOf(_key);
    kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(_curve);
    if (key == nullptr || curve == nullptr || !std::isfinite(frame) || !std::isfinite(value))
        return;
    setNumber(*key, *curve, _side == Side::In ? KeyNumber::InFrame : KeyNumber::OutFrame, frame);
    setNumber(*key, *curve, _side == Side::In ? KeyNumber::InValue : KeyNumber::OutValue, value);
    if (_isUnified)
        turnOther(*key);
    takeInChange(*curve);
    _document.announce({_curve});
}

/// The handle across goes to the other end of the line, and keeps how far it reaches in time.
void HandleDrag::turnOther(kaControlPoint2D& key) {
    kaControlPoint2D* moved = _side == Side::In ? key.getInTangent() : key.getOutTangent();
    kaControlPoint2D* other = _side == Side::In ? key.getOutTangent() : key.getInTangent();
    if (moved == nullptr || other == nullptr)
        return;
    const osg::Pnt2f at = key.getPosition(), end = moved->getPosition();
    const double run = static_cast<double>(at[0]) - end[0];
    if (run == 0.0)
        return; // upright: no reach in time tells how far up the other goes
    const double slope = (static_cast<double>(at[1]) - end[1]) / run;
    const double reach = _side == Side::In ? _otherLength : -_otherLength;
    other->setPosition(static_cast<float>(at[0] + reach), static_cast<float>(at[1] + slope * reach));
}

bool HandleDrag::commit() {
    return _gesture.commit(tr("Move handle"));
}

KeyScale::KeyScale(Document& document, const Ids& keys)
    : _document(document), _curves(curvesOf(keys)), _gesture(document, {_curves, {}}) {
    for (const kaUID id : keys)
        if (curveOf(id) != nullptr) {
            const kaControlPoint2D& key = *keyOf(id);
            _starts.push_back(
                {id, key.getPosition(), placeOf(key.getInTangent(), key), placeOf(key.getOutTangent(), key)});
        }
}

bool KeyScale::leavesOrder(float pivotFrame, float inTime) const {
    std::unordered_set<kaUID> moving;
    for (const Start& start : _starts)
        moving.insert(start.key);
    for (const Start& start : _starts) {
        const float x = pivotFrame + (start.position[0] - pivotFrame) * inTime;
        const auto [previous, next] = curveOf(start.key)->getPreviousAndNextPoint(keyOf(start.key));
        if (previous != nullptr && moving.count(previous->getId()) == 0 && x <= previous->getBegin())
            return false;
        if (next != nullptr && moving.count(next->getId()) == 0 && x >= next->getBegin())
            return false;
    }
    return true;
}

void KeyScale::scale(float pivotFrame, float pivotValue, float inTime, float inValue) {
    if (!(inTime > 0.0F) || !std::isfinite(inTime) || !std::isfinite(inValue) ||
        !leavesOrder(pivotFrame, inTime))
        return;
    const auto scaled = [&](const osg::Pnt2f& p) {
        return osg::Pnt2f(pivotFrame + (p[0] - pivotFrame) * inTime,
                          pivotValue + (p[1] - pivotValue) * inValue);
    };
    for (const Start& start : _starts) {
        kaControlPoint2D& key = *keyOf(start.key);
        key.setPosition(scaled(start.position));
        if (kaControlPoint2D* in = key.getInTangent())
            in->setPosition(scaled(start.in));
        if (kaControlPoint2D* out = key.getOutTangent())
            out->setPosition(scaled(start.out));
    }
    for (const Start& start : _starts)
        computeTangentsAround(*keyOf(start.key), *curveOf(start.key));
    for (const kaUID curve : _curves)
        takeInChange(*kaAnimationManager::the()->getCurve2D(curve));
    _document.announce(_curves);
}

bool KeyScale::commit() {
    return _gesture.commit(tr("Scale keys"));
}

} // namespace ka::studio
