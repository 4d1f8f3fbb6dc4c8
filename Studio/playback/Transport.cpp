#include "Transport.h"

#include <QElapsedTimer>
#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationObject.h>
#include <kaOpenSGUtils.h>

namespace ka::studio {

namespace {

constexpr int TickMilliseconds = 16; ///< Some sixty ticks a second.

/// The clock of the controller: seconds since it was last started, at the speed that is set, or those of the
/// frames counted so far. Read through a function without arguments, so it stands here.
struct Clock {
    QElapsedTimer timer;
    double speed = 1.0;
    bool counts = false;
    double counted = 0.0;
};

Clock& theClock() {
    static Clock clock;
    return clock;
}

QElapsedTimer& wallClock() {
    static QElapsedTimer timer = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return timer;
}

} // namespace

double Transport::clock() {
    const Clock& clock = theClock();
    return clock.counts ? clock.counted
                        : static_cast<double>(clock.timer.nsecsElapsed()) * 1e-9 * clock.speed;
}

Transport::Transport(PlayHead& head, QObject* parent) : QObject(parent), _head(head) {
    theClock().timer.start();
    kaAnimationController::setTimeCB(&Transport::clock);
    _timer.setTimerType(Qt::PreciseTimer);
    connect(&_timer, &QTimer::timeout, this, &Transport::tick);
    connect(&head, &PlayHead::scrubbed, this, [this](float frame) {
        pause();
        kaAnimationController::the()->setCurrentFrame(frame, kaAnimationController::WidgetTimeLine);
        evaluate();
    });
    _frames =
        kaOpenSGUtils::addListener("currentFrameChanged", [this](std::string_view, const kaMessage&, int) {
            if (_isPlaying)
                onFrame(kaAnimationController::getCurrentFrame());
        });
    _finished = kaOpenSGUtils::addListener("finishedPlayingGlobal",
                                           [this](std::string_view, const kaMessage&, int) { pause(); });
}

Transport::~Transport() {
    kaAnimationController::the()->stopGlobal();
    kaAnimationController::setTimeCB(nullptr);
}

void Transport::setObjects(const std::vector<kaUID>& objects) {
    pause();
    _objects = objects;
    float begin = KA_EMPTY_EXTENT, end = -KA_EMPTY_EXTENT;
    for (const kaUID id : objects)
        if (const kaAnimationObject* object = kaAnimationManager::the()->getObject(id)) {
            begin = std::min(begin, object->getPlayBegin());
            end = std::max(end, object->getPlayEnd());
        }
    _begin = begin < end ? begin : 0.0F;
    _end = begin < end ? end : 0.0F;
    emit stateChanged();
}

void Transport::setRange(float begin, float end) {
    if (!std::isfinite(begin) || !std::isfinite(end) || !(begin < end))
        return;
    _begin = begin;
    _end = end;
    if (_isPlaying)
        start();
    emit stateChanged();
}

/// The controller's own pause lets the timeline jump ahead by the paused time, so that playing always begins
/// anew, from the playhead.
void Transport::start() {
    theClock() = {theClock().timer, _speed, _everyFrame, 0.0};
    theClock().timer.restart();
    kaAnimationController::setFps(_head.framesPerSecond());
    const float last = _isReverse ? _begin : _end;
    float from = std::clamp(_head.frame(), _begin, _end);
    if (from == last)
        from = _isReverse ? _end : _begin;
    kaAnimationController::the()->playGlobal(_objects, _isReverse, _isLooping, _begin, _end, from);
}

void Transport::play(bool reverse) {
    if (!(_begin < _end))
        return;
    _isReverse = reverse;
    _isPlaying = true;
    _ticks = 0;
    _measuredFrom = wallClock().nsecsElapsed();
    start();
    _timer.start(_everyFrame ? 0 : TickMilliseconds);
    emit stateChanged();
}

void Transport::pause() {
    if (!_isPlaying)
        return;
    _isPlaying = false;
    _timer.stop();
    _reachedRate = 0.0;
    kaAnimationController::the()->stopGlobal();
    emit stateChanged();
}

void Transport::stop() {
    pause();
    _head.scrub(_begin);
}

void Transport::setLooping(bool looping) {
    _isLooping = looping;
    if (_isPlaying)
        start();
    emit stateChanged();
}

void Transport::setSpeed(double speed) {
    if (!std::isfinite(speed) || speed <= 0.0)
        return;
    _speed = speed;
    if (_isPlaying)
        start();
    emit stateChanged();
}

void Transport::setEveryFrame(bool everyFrame) {
    _everyFrame = everyFrame;
    if (_isPlaying)
        play(_isReverse);
    emit stateChanged();
}

void Transport::tick() {
    theClock().counted += 1.0 / static_cast<double>(_head.framesPerSecond());
    kaAnimationController::the()->playLoop();
    ++_ticks;
    const double seconds = static_cast<double>(wallClock().nsecsElapsed() - _measuredFrom) * 1e-9;
    if (seconds < 1.0)
        return;
    _reachedRate = _ticks / seconds;
    _ticks = 0;
    _measuredFrom = wallClock().nsecsElapsed();
    emit rateMeasured(_reachedRate);
}

void Transport::onFrame(float frame) {
    _head.show(frame);
    emit evaluated();
}

void Transport::evaluate() {
    kaAnimationController* controller = kaAnimationController::the();
    for (const kaUID id : _objects)
        if (kaAnimationObject* object = kaAnimationManager::the()->getObject(id))
            controller->evaluateObject(object, _head.frame(), false);
    emit evaluated();
}

} // namespace ka::studio
