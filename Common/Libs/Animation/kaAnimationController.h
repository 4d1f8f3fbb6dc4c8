#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"

#include <OpenSG/OSGPerspectiveCamera2.h>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationField;
class kaAnimationObject;
class kaAnimationSequence;
class kaEvaluation;

/// The playback engine: plays objects one by one (`loop`) or the global timeline (`playLoop`), evaluates
/// objects at a frame and writes the values into the scene, and tells the host by messages and callbacks.
///
/// The host's frame timer calls the ticks on the user-interface thread. A callback, a listener or a fired
/// trigger may do anything in the middle of a tick, destroying objects included; the tick finishes on what is
/// still there.
///
/// Times are stored as float seconds. The fallback clock is the time of day, which a float holds only to
/// about two minutes: for smooth playback register a clock that starts near zero (`setTimeCB`).
class KA_ANIMATION_API kaAnimationController {
  public:
    /// Origin of a frame change, the "sender" of "currentFrameChanged".
    enum AnimationWidget : int {
        WidgetTimeLine = 0,
        WidgetCurveEditor = 1,
        WidgetClipMaker = 2,
        WidgetGlobalPlayback = 3, ///< sent by `playLoop`
        WidgetHost = 4
    };

    /// Curves to sample by key, each with the frame to sample it at; equal keys keep their insertion order.
    using CurveFrames = std::multimap<float, std::pair<kaAnimationCurve2D*, float>>;

    static kaAnimationController* the();
    kaAnimationController(const kaAnimationController&) = delete;
    kaAnimationController& operator=(const kaAnimationController&) = delete;
    ~kaAnimationController();

    // Evaluation.

    /// Samples a curve, a piecewise cubic Bézier in (frame, value), by the closed cubic formula.
    /// @param frame any frame, whole or not.
    /// @param value in the field's unit; untouched where nothing is written.
    /// @return whether the curve has a value: false for null, fewer than two keys, or no root in [0, 1]. For
    /// a
    ///         segment of zero length (all keys at one frame) whether the first key's value differs from 0,
    ///         with `value` untouched.
    /// Edges: before the first key the *second* key's value; at or after the last key the last key's; handles
    /// lying
    ///        on their keys hold the left value; results below 1e-6 in magnitude become 0.
    /// Cost: O(log n) in keys, constant for frames in order; no allocation once the curve was sampled since
    /// its last
    ///       edit.
    bool computeCurveValue(kaAnimationCurve2D* curve, float frame, float& value);

    /// Gathers the curves that `object` reaches at `frame`: ended before it, running, or beginning after it.
    void collectCurvesWithFrame(kaAnimationObject* object, float frame, CurveFrames& finished,
                                CurveFrames& running, CurveFrames& upcoming, bool motionBlurOnly);

    /// Evaluates an object at a frame: samples its curves, writes the fields, fires sequences when the frame
    /// changed.
    /// @return true when the object has run past its end in its playing direction; true for null.
    bool evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly);

    /// Evaluates loose curves at a frame clamped to their joint range, or to [lo, hi].
    void evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float frame, bool motionBlurOnly);
    void evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float lo, float hi, float frame,
                        bool motionBlurOnly);

    /// Hands the names of the sequences that fire at `frame` to the host, with the host's simulation off
    /// meanwhile.
    void evaluateSequences(const std::vector<kaAnimationSequence*>& sequences, float frame);

    /// Writes every field into the scene. @return the number of fields.
    unsigned int updateAnimationFields(std::vector<kaAnimationField*> fields);

    // Ticks.

    void loop();
    void playLoop();
    void enqueueWaitingObjects();
    void initSequences(const std::vector<kaAnimationSequence*>& sequences);

    // Transport.

    void setCurrentFrame(float frame, AnimationWidget sender);
    void evaluate(float frame, bool motionBlurOnly);
    void evaluate(float frame, bool evalObject, bool evalCurves, bool evalActiveUnits, bool motionBlurOnly);
    /// Freezes both playback modes. The global clock is not moved on resume: global playback jumps ahead by
    /// the paused time.
    void pause(bool pausing);
    void pause(kaAnimationObject* object, bool pausing);
    void stop();
    void reset();
    void reset(kaAnimationObject* object);
    void gotoEnd(kaAnimationObject* object);
    void playGlobal(const std::vector<unsigned long long>& ids, bool reverse, bool repeat, float begin,
                    float end, float start);
    void playGlobal(unsigned long long id, bool reverse, bool repeat, float begin, float end, float start);
    void stopGlobal();
    void gotoGlobalBegin(kaAnimationObject* object);
    void gotoGlobalEnd(kaAnimationObject* object);
    void gotoGlobalBegin(const std::vector<kaAnimationCurve2D*>& curves);
    void gotoGlobalEnd(const std::vector<kaAnimationCurve2D*>& curves);

    // Motion blur.

    void executeMotionBlur(float sample);
    void executeMotionBlur(float sample, kaAnimationObject* object);
    void executeMotionBlurOnActiveUnits(float sample);
    void resetMotionBlur();

    // What the host sets and reads.

    static float getFps() { return _fps; }
    static void setFps(float fps) { _fps = fps; }
    static float getCurrentFrame() { return _currentFrame; }
    static float getFullFrame() { return _fullFrame; }
    static bool isPausing() { return _pausing; }
    static bool isPlaying() { return _playing; }
    static bool isRepeat() { return _repeat; }
    static bool isReverse() { return _reverse; }
    static float getBegin() { return _begin; }
    static float getEnd() { return _end; }
    static float getStart() { return _start; }
    static float getStartTime() { return _startTime; }
    static float getPauseStartTime() { return _pauseStartTime; }
    static bool isForcePlayLoopFullFrame() { return _forcePlayLoopFullFrame; }
    static void setForcePlayLoopFullFrame(bool force) { _forcePlayLoopFullFrame = force; }
    static bool isEmitCurrentFrame() { return _emitCurrentFrame; }
    static void setEmitCurrentFrame(bool emitFrame) { _emitCurrentFrame = emitFrame; }
    static bool isCallWidgets() { return _callWidgets; }
    static void setCallWidgets(bool callWidgets) { _callWidgets = callWidgets; }
    static const std::vector<unsigned long long>& getPlayingObjects() { return _playingObjects; }
    static const std::vector<kaAnimationCurve2D*>& getCurves() { return _curves; }
    static const std::vector<kaAnimationSequence*>& getSeqs() { return _seqs; }

    static void setTimeCB(double (*callback)()) { _timeCB = callback; } ///< Seconds.
    static void setCameraCB(void (*callback)(osg::PerspectiveCamera2Ptr& camera)) { _cameraCB = callback; }
    static void setUpdateNavCB(void (*callback)(int)) { _updateNavCB = callback; }
    static void setSeqCB(void (*callback)(std::string name)) { _seqCB = callback; }
    static void setEnableSimCB(void (*callback)(bool enable)) { _enableSimCB = callback; }
    static void setIsSimEnableCB(bool (*callback)()) { _isSimEnableCB = callback; }
    static void setCurrentFrameTimeLineCB(void (*callback)(float)) { _currentFrameTimeLineCB = callback; }
    static void setCurrentFrameCurveEditorCB(void (*callback)(float)) {
        _currentFrameCurveEditorCB = callback;
    }
    static void setCurrentFrameClipMakerCB(void (*callback)(float)) { _currentFrameClipMakerCB = callback; }

    const std::map<unsigned long long, kaAnimationObject*>& getRunningObjects() const {
        return _runningObjects;
    }
    const std::vector<kaAnimationObject*>& getWaitingObjects() const { return _waitingObjects; }
    /// Queues an object to start at the end of the next `loop()`; null is ignored.
    void addWaitingObject(kaAnimationObject* object);
    /// Takes an object out of the running ones.
    void subRunningObject(unsigned long long id);
    unsigned long long getObjectID() const { return _objectID; }
    void setObjectID(unsigned long long id) { _objectID = id; }
    const std::vector<unsigned long long>& getCurveIDs() const { return _curveIDs; }
    void setCurveIDs(const std::vector<unsigned long long>& ids) { _curveIDs = ids; }
    bool isEvalActiveUnits() const { return _evalActiveUnits; }
    void setEvalActiveUnits(bool evalActiveUnits) { _evalActiveUnits = evalActiveUnits; }

    /// Drops every pointer to an object that is about to be freed. Called by the registry.
    static void forget(kaAnimationObject* object);

  private:
    kaAnimationController();

    static double now();
    static bool activeShutter(float& shutterSpeed);
    static void notifyFrame(float frame);

    static float _fps;
    static float _currentFrame;
    static float _fullFrame;
    static float _pauseStartTime;
    static bool _pausing;
    static bool _emitCurrentFrame;
    static bool _callWidgets;
    static double (*_timeCB)();
    static void (*_cameraCB)(osg::PerspectiveCamera2Ptr& camera);
    static void (*_updateNavCB)(int);
    static void (*_seqCB)(std::string name);
    static void (*_enableSimCB)(bool enable);
    static bool (*_isSimEnableCB)();
    static void (*_currentFrameTimeLineCB)(float frame);
    static void (*_currentFrameCurveEditorCB)(float frame);
    static void (*_currentFrameClipMakerCB)(float frame);
    static float _begin;
    static float _end;
    static float _start;
    static float _startTime;
    static bool _playing;
    static bool _repeat;
    static bool _reverse;
    static bool _forcePlayLoopFullFrame;
    static std::vector<unsigned long long> _playingObjects;
    static std::vector<kaAnimationCurve2D*> _curves;
    static std::vector<kaAnimationSequence*> _seqs;

    std::map<unsigned long long, kaAnimationObject*> _runningObjects;
    std::vector<kaAnimationObject*> _waitingObjects;
    unsigned long long _objectID = 0;
    std::vector<unsigned long long> _curveIDs;
    bool _evalActiveUnits = false;
    std::unique_ptr<kaEvaluation> _evaluation;
};
