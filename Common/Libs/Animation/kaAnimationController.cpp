#include "kaAnimationController.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"
#include "kaEvaluation.h"
#include "kaObjectStore.h"
#include "kaPlayedObjects.h"
#include "kaReentryGuard.h"
#include "kaSceneObjects.h"
#include "kaWeak.h"

#include <chrono>

float kaAnimationController::_fps = 25.0F;
float kaAnimationController::_currentFrame = 0.0F;
float kaAnimationController::_fullFrame = 0.0F;
float kaAnimationController::_pauseStartTime = 0.0F;
bool kaAnimationController::_pausing = false;
bool kaAnimationController::_emitCurrentFrame = false;
bool kaAnimationController::_callWidgets = false;
double (*kaAnimationController::_timeCB)() = nullptr;
void (*kaAnimationController::_cameraCB)(osg::PerspectiveCamera2Ptr& camera) = nullptr;
void (*kaAnimationController::_updateNavCB)(int) = nullptr;
void (*kaAnimationController::_seqCB)(std::string name) = nullptr;
void (*kaAnimationController::_enableSimCB)(bool enable) = nullptr;
bool (*kaAnimationController::_isSimEnableCB)() = nullptr;
void (*kaAnimationController::_currentFrameTimeLineCB)(float frame) = nullptr;
void (*kaAnimationController::_currentFrameCurveEditorCB)(float frame) = nullptr;
void (*kaAnimationController::_currentFrameClipMakerCB)(float frame) = nullptr;
float kaAnimationController::_begin = 0.0F;
float kaAnimationController::_end = 0.0F;
float kaAnimationController::_start = 0.0F;
float kaAnimationController::_startTime = 0.0F;
bool kaAnimationController::_playing = false;
bool kaAnimationController::_repeat = false;
bool kaAnimationController::_reverse = false;
bool kaAnimationController::_forcePlayLoopFullFrame = false;

kaAnimationController* kaAnimationController::the() {
    static kaAnimationController instance;
    return &instance;
}

kaAnimationController::kaAnimationController()
    : _evaluation(
          std::make_unique<kaEvaluation>([](const std::vector<kaAnimationSequence*>& sequences, float frame) {
              the()->evaluateSequences(sequences, frame);
          })),
      _played(std::make_unique<kaPlayedObjects>()) {}

kaAnimationController::~kaAnimationController() = default;

const std::vector<kaAnimationCurve2D*>& kaAnimationController::getCurves() {
    return the()->_played->curves.objects();
}

const std::vector<kaAnimationSequence*>& kaAnimationController::getSeqs() {
    return the()->_played->sequences.objects();
}

const std::map<kaUID, kaAnimationObject*>& kaAnimationController::getRunningObjects() const {
    return _played->running.map();
}

const std::vector<kaAnimationObject*>& kaAnimationController::getWaitingObjects() const {
    return _played->waiting.objects();
}

void kaAnimationController::addWaitingObject(kaAnimationObject* object) {
    if (object)
        _played->waiting.append(*object);
}

void kaAnimationController::subRunningObject(kaUID id) {
    _played->running.erase(id);
}

double kaAnimationController::now() {
    if (_timeCB)
        return _timeCB();
    using Microseconds = std::chrono::duration<double, std::micro>;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Microseconds>(sinceEpoch).count() / 1e6;
}

// Evaluation.

bool kaAnimationController::computeCurveValue(kaAnimationCurve2D* curve, float frame, float& value) {
    return _evaluation->computeCurveValue(curve, frame, value);
}

void kaAnimationController::collectCurvesWithFrame(kaAnimationObject* object, float frame,
                                                   CurveFrames& finished, CurveFrames& running,
                                                   CurveFrames& upcoming, bool motionBlurOnly) {
    _evaluation->collectCurvesWithFrame(object, frame, finished, running, upcoming, motionBlurOnly);
}

bool kaAnimationController::evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly) {
    return _evaluation->evaluateObject(object, frame, motionBlurOnly);
}

void kaAnimationController::evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float frame,
                                           bool motionBlurOnly) {
    kaExtent joint;
    for (const kaAnimationCurve2D* curve : curves)
        if (curve && curve->isActive())
            joint.includeSpan(curve->getBegin(), curve->getEnd());
    evaluateCurves(std::move(curves), joint.begin, joint.end, frame, motionBlurOnly);
}

void kaAnimationController::evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float lo, float hi,
                                           float frame, bool motionBlurOnly) {
    _evaluation->evaluateCurves(curves, lo, hi, frame, motionBlurOnly);
}

void kaAnimationController::evaluateSequences(const std::vector<kaAnimationSequence*>& sequences,
                                              float frame) {
    const kaReentryGuard level(_played->sequenceFiring);
    if (!level)
        return;
    const kaWeakList<kaAnimationSequence> present(sequences);
    const bool switchedOff = _isSimEnableCB && _isSimEnableCB() && _enableSimCB;
    if (switchedOff)
        _enableSimCB(false);
    present.visit([frame](kaAnimationSequence& sequence) {
        const bool reached = frame >= sequence.getBegin();
        if (!sequence.isActive() || !reached || !(sequence.isArmed() || frame <= sequence.getEnd()))
            return;
        const kaWeak<kaAnimationObject> alive(sequence);
        if (_seqCB)
            _seqCB(sequence.getName());
        if (alive)
            sequence.setArmed(false);
    });
    if (switchedOff && _enableSimCB)
        _enableSimCB(true);
}

unsigned int kaAnimationController::updateAnimationFields(std::vector<kaAnimationField*> fields) {
    return kaWeakList<kaAnimationField>(fields).visit(
        [](kaAnimationField& field) { kaAnimationUtils::setOSGFieldValue(&field); });
}

void kaAnimationController::initSequences(const std::vector<kaAnimationSequence*>& sequences) {
    for (kaAnimationSequence* sequence : sequences)
        if (sequence)
            sequence->setArmed(true);
}

void kaAnimationController::evaluate(float frame, bool motionBlurOnly) {
    evaluate(frame, true, true, _evalActiveUnits, motionBlurOnly);
}

void kaAnimationController::evaluate(float frame, bool evalObject, bool evalCurves, bool evalActiveUnits,
                                     bool motionBlurOnly) {
    if (evalObject)
        evaluateObject(kaObjectStore::find(_objectID), frame, motionBlurOnly);
    if (evalCurves && !_curveIDs.empty()) {
        std::vector<kaAnimationCurve2D*> curves;
        for (kaUID id : _curveIDs)
            if (kaAnimationCurve2D* curve = kaObjectStore::find<kaAnimationCurve2D>(id))
                curves.push_back(curve);
        evaluateCurves(std::move(curves), frame, motionBlurOnly);
    }
    if (evalActiveUnits)
        kaWeakList<kaAnimationUnit>(kaActiveSceneObjects<kaAnimationUnit>())
            .visit([&](kaAnimationUnit& unit) { evaluateObject(&unit, frame, motionBlurOnly); });
}

// Object playback.

namespace {

/// Fewer are in the caches from one tick to the next.
constexpr std::size_t FewObjects = 256;

/// Ids are random, so what plays under the next one lies anywhere: its memory is asked for while others play,
/// a step further each time.
void fetchAhead(const kaRunningObjects::Order& order, std::size_t place) {
    constexpr std::size_t Step = 8;
    const auto ahead = [&order, place](std::size_t steps) {
        return place + steps * Step < order.size() ? &order[place + steps * Step] : nullptr;
    };
    if (const kaRunningObjects::Entry* entry = ahead(4)) {
        entry->object.fetch();
        kaEvaluation::fetchObject(entry->address);
    }
    for (const std::size_t steps : {std::size_t(3), std::size_t(2), std::size_t(1)}) {
        const kaRunningObjects::Entry* entry = ahead(steps);
        if (const kaAnimationObject* object = entry ? entry->object.get() : nullptr)
            kaEvaluation::fetch(*object, steps);
    }
}

} // namespace

void kaAnimationController::loop() {
    const kaReentryGuard tick(_played->loop, 1);
    if (_pausing || !tick)
        return;
    const double time = now();
    std::vector<kaUID> finished;
    // The objects themselves, too: what ended may have been taken out of the running ones since.
    kaWeakList<kaAnimationObject> ended;
    const auto order = _played->running.order();
    for (std::size_t i = 0; i < order->size(); ++i) {
        if (order->size() > FewObjects)
            fetchAhead(*order, i);
        kaAnimationObject* object = _played->running.find(*order, i);
        if (object && object->isActive() && !object->isPausing() && playOn(*object, time, ended))
            finished.push_back((*order)[i].id);
    }
    ended.visit([](kaAnimationObject& object) { object.setUseCustomRange(false); });
    for (kaUID id : finished)
        _played->running.erase(id);
    enqueueWaitingObjects();
}

/// @return whether the object has run past its end; then it is entered among the `ended`, unless it has gone.
bool kaAnimationController::playOn(kaAnimationObject& object, double time,
                                   kaWeakList<kaAnimationObject>& ended) {
    const float begin = object.getPlayBegin();
    if (!object.isPlaying()) {
        const auto duration = static_cast<double>((object.getPlayEnd() - begin) / _fps);
        object.setStartTime(static_cast<float>(time));
        object.setEndTime(static_cast<float>(time + duration));
        initSequences(object.getSequencesRecursive());
    }
    const float run = (static_cast<float>(time) - object.getStartTime()) * _fps;
    const float origin = object.isUseCustomRange() ? object.getCustomStart() : begin;
    const float frame = object.isReversePlay() ? origin - run : origin + run;
    _currentFrame = frame;
    const kaWeak<kaAnimationObject> alive(object);
    const bool finished = evaluateObject(&object, frame, false);
    if (finished && alive)
        ended.append(object);
    if (alive)
        object.triggerLoop(frame);
    return finished;
}

void kaAnimationController::enqueueWaitingObjects() {
    for (kaAnimationObject* object : _played->waiting.objects())
        _played->running.insert(*object);
    _played->waiting.clear();
}

void kaAnimationController::pause(bool pausing) {
    if (pausing == _pausing)
        return;
    const float time = nowAsFloat();
    if (pausing) {
        _pauseStartTime = time;
    } else {
        for (const auto& entry : _played->running.map())
            entry.second->setStartTime(entry.second->getStartTime() + (time - _pauseStartTime));
    }
    _pausing = pausing;
}

void kaAnimationController::pause(kaAnimationObject* object, bool pausing) {
    if (!object)
        return;
    const kaWeak<kaAnimationObject> alive(*object);
    const float time = nowAsFloat();
    if (!alive)
        return;
    object->setPausing(pausing);
    if (pausing)
        object->setPauseTime(time);
    else
        object->setStartTime(object->getStartTime() + (time - object->getPauseTime()));
}

void kaAnimationController::stop() {
    for (const auto& entry : _played->running.map())
        entry.second->setPlaying(false);
    _played->running.clear();
}

void kaAnimationController::reset() {
    const kaReentryGuard level(_played->reset, 1);
    if (!level)
        return;
    const auto order = _played->running.order();
    for (std::size_t i = 0; i < order->size(); ++i) {
        kaAnimationObject* object = _played->running.find(*order, i);
        if (!object)
            continue;
        const kaWeak<kaAnimationObject> alive(*object);
        evaluateObject(object, object->getBegin(), false);
        if (alive)
            object->setPlaying(false);
    }
    _played->running.clear();
}

void kaAnimationController::reset(kaAnimationObject* object) {
    if (object)
        leavePlayback(*object, object->getPlayBegin(), true);
}

void kaAnimationController::gotoEnd(kaAnimationObject* object) {
    if (object)
        leavePlayback(*object, object->getPlayEnd(), false);
}

void kaAnimationController::leavePlayback(kaAnimationObject& object, float frame, bool rewound) {
    const kaWeak<kaAnimationObject> alive(object);
    evaluateObject(&object, frame, false);
    if (!alive)
        return;
    if (rewound)
        object.setPlaying(false);
    _played->running.erase(object.getId());
}
