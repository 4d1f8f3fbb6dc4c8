#include "kaAnimationController.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationSequence.h"
#include "kaAnimationUtils.h"
#include "kaFold.h"
#include "kaObjectStore.h"
#include "kaOpenSGUtils.h"
#include "kaPlayedObjects.h"
#include "kaReentryGuard.h"

#include <algorithm>
#include <cmath>

// Global playback and jumps.

namespace {

void send(std::string_view name, std::string_view key, boost::any value) {
    kaMessage message;
    message.set(key, std::move(value), true);
    kaOpenSGUtils::call(name, message, 0);
}

float wholeFrame(float frame) {
    return static_cast<float>(kaAnimationUtils::floatToInt(frame));
}

/// The nearest whole frame that does not lie beyond a range that repeats. A range that holds none is played
/// as it is: a frame beyond it would end what never ends by itself.
float wholeFrameWithin(float frame, float begin, float end) {
    const float nearest = wholeFrame(frame);
    const float whole = nearest < begin ? std::ceil(begin) : nearest > end ? std::floor(end) : nearest;
    return begin <= whole && whole <= end ? whole : frame;
}

} // namespace

void kaAnimationController::playGlobal(const std::vector<kaUID>& ids, bool reverse, bool repeat, float begin,
                                       float end, float start) {
    ++_takeovers;
    _playingObjects = ids;
    _reverse = reverse;
    _repeat = repeat;
    _begin = begin;
    _end = end;
    _start = start;
    if (begin == 0.0F && end == 0.0F && start == 0.0F)
        setGlobalRange();
    reset();
    _startTime = nowAsFloat();
    _playing = true;
}

void kaAnimationController::setGlobalRange() {
    kaExtent joint;
    for (kaUID id : _playingObjects) {
        const kaAnimationObject* object = kaObjectStore::find(id);
        if (object)
            joint.includeSpan(object->getBegin(), object->getEnd());
    }
    _begin = joint.begin;
    _end = joint.end;
    _start = _currentFrame;
}

void kaAnimationController::playGlobal(kaUID id, bool reverse, bool repeat, float begin, float end,
                                       float start) {
    if (id != 0)
        playGlobal(std::vector<kaUID>{id}, reverse, repeat, begin, end, start);
}

void kaAnimationController::playLoop() {
    const kaReentryGuard tick(_played->playLoop, 1);
    if (!_playing || _pausing || !tick)
        return;
    const unsigned int takeovers = _takeovers;
    const auto isTakenOver = [this, takeovers] { return _takeovers != takeovers; };
    const float frame = globalFrame();
    if (!isTakenOver())
        setCurrentFrame(frame, WidgetGlobalPlayback);
    if (!isTakenOver())
        announceFullFrame(frame);
    const std::vector<kaUID> ids = _playingObjects;
    for (auto id = ids.begin(); id != ids.end() && !isTakenOver(); ++id)
        evaluateObject(kaObjectStore::find(*id), frame, false);
    const bool hasLeft = _reverse ? frame < _begin : frame > _end;
    if (isTakenOver() || !_playing || !hasLeft)
        return;
    _playing = false;
    send("finishedPlayingGlobal", "finished", true);
}

float kaAnimationController::globalFrame() {
    const float run = (nowAsFloat() - _startTime) * _fps;
    const float frame = _start + (_reverse ? -run : run);
    const float folded = _repeat ? kaFold(frame, _begin, _end) : frame;
    if (!_forcePlayLoopFullFrame)
        return folded;
    return _repeat && _begin <= _end ? wholeFrameWithin(folded, _begin, _end) : wholeFrame(folded);
}

void kaAnimationController::announceFullFrame(float frame) {
    const float previous = _fullFrame;
    _fullFrame = std::floor(frame);
    if (!(_fullFrame == previous))
        send("currentFullFrameChanged", "frame", kaAnimationUtils::floatToInt(_fullFrame));
}

void kaAnimationController::setCurrentFrame(float frame, AnimationWidget sender) {
    _currentFrame = frame;
    kaMessage message;
    message.set("frame", frame, true);
    message.set("sender", sender, true);
    kaOpenSGUtils::call("currentFrameChanged", message, 0);
}

void kaAnimationController::stopGlobal() {
    _playing = false;
    _played->curves.clear();
    _played->sequences.clear();
}

void kaAnimationController::gotoGlobalBegin(kaAnimationObject* object) {
    jumpTo(object, object ? object->getBegin() : 0.0F);
}

void kaAnimationController::gotoGlobalEnd(kaAnimationObject* object) {
    jumpTo(object, object ? object->getEnd() : 0.0F);
}

void kaAnimationController::jumpTo(kaAnimationObject* object, float frame) {
    _playing = false;
    if (!object)
        return;
    ++_takeovers;
    _played->curves.assign(object->getCurves());
    _played->sequences.assign(object->getSequencesRecursive());
    evaluateObject(object, frame, false);
    notifyFrame(frame);
}

void kaAnimationController::gotoGlobalBegin(const std::vector<kaAnimationCurve2D*>& curves) {
    float frame = 0.0F;
    for (const kaAnimationCurve2D* curve : curves)
        frame = curve ? std::min(frame, curve->getBegin()) : frame;
    jumpTo(curves, frame);
}

void kaAnimationController::gotoGlobalEnd(const std::vector<kaAnimationCurve2D*>& curves) {
    float frame = 0.0F;
    for (const kaAnimationCurve2D* curve : curves)
        frame = curve ? std::max(frame, curve->getEnd()) : frame;
    jumpTo(curves, frame);
}

void kaAnimationController::jumpTo(const std::vector<kaAnimationCurve2D*>& curves, float frame) {
    _playing = false;
    if (curves.empty())
        return;
    ++_takeovers;
    _played->curves.assign(curves);
    _played->sequences.clear();
    evaluateCurves(_played->curves.objects(), frame, false);
    notifyFrame(frame);
}

void kaAnimationController::notifyFrame(float frame) {
    const kaReentryGuard level(_played->notice);
    if (!level)
        return;
    if (_currentFrameTimeLineCB)
        _currentFrameTimeLineCB(frame);
    if (_currentFrameCurveEditorCB)
        _currentFrameCurveEditorCB(frame);
    if (_currentFrameClipMakerCB)
        _currentFrameClipMakerCB(frame);
}
