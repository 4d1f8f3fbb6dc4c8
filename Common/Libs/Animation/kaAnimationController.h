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
struct kaPlayedObjects;
template <class Object>
class kaWeakList;

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

    static kaAnimationController* the(); ///< Made on first use, destroyed at process exit.
    kaAnimationController(const kaAnimationController&) = delete;
    kaAnimationController& operator=(const kaAnimationController&) = delete;
    ~kaAnimationController();

    // Evaluation.

    /// Samples a curve, a piecewise cubic Bézier in (frame, value), by the closed cubic formula.
    /// @param curve may be null. @param frame any frame, whole or not.
    /// @param value in the field's unit; untouched where nothing is written.
    /// @return whether the curve has a value: false for null, fewer than two keys, or no root in [0, 1]. For
    /// a segment of zero length (all keys at one frame) whether the first key's value differs from 0, with
    /// `value` untouched.
    /// Edges: before the first key the *second* key's value; at or after the last key the last key's; handles
    /// lying on their keys hold the left value; results below 1e-6 in magnitude become 0.
    /// Cost: O(log n) in keys, constant for frames in order; no allocation once the curve was sampled since
    /// its last edit.
    bool computeCurveValue(kaAnimationCurve2D* curve, float frame, float& value);

    /// Gathers the curves that `object` reaches at `frame`: ended before it, running, or beginning after it.
    void collectCurvesWithFrame(kaAnimationObject* object, float frame, CurveFrames& finished,
                                CurveFrames& running, CurveFrames& upcoming, bool motionBlurOnly);

    /// Evaluates an object at a frame: samples its curves, writes the fields, fires sequences when the frame
    /// changed.
    /// @return true when the object has run past its end in its playing direction; true for null.
    bool evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly);

    /// Evaluates loose curves at a frame clamped to their joint range, or to [lo, hi]. Nulls and inactive
    /// curves are passed over.
    void evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float frame, bool motionBlurOnly);
    /// @copydoc evaluateCurves(std::vector<kaAnimationCurve2D*>, float, bool)
    void evaluateCurves(std::vector<kaAnimationCurve2D*> curves, float lo, float hi, float frame,
                        bool motionBlurOnly);

    /// Hands the names of the active sequences that fire at `frame` to the host, with the host's simulation
    /// off meanwhile. A sequence fires while the frame is in its span, and once armed as soon as the frame
    /// has reached its begin; then it is disarmed.
    /// Edges: a host whose sequence callback evaluates objects has their sequences fire too, a hundred levels
    /// deep; what is reached deeper does not fire. Where each call makes several, those below the fourth
    /// level are followed 65 536 times in all.
    void evaluateSequences(const std::vector<kaAnimationSequence*>& sequences, float frame);

    /// Writes every field into the scene, in order. Nulls and fields that are destroyed meanwhile are passed
    /// over.
    /// @return the number of fields that were written.
    unsigned int updateAnimationFields(std::vector<kaAnimationField*> fields);

    // Ticks. Neither does anything while paused, nor when called in the middle of itself.

    /// Plays every running object on to the clock's time: evaluates it, fires its start and end triggers and
    /// lets it go when it has run past its end. Objects that wait are started last and move with the next
    /// tick. Cost: that of the objects that run, however many are registered.
    void loop();

    /// Plays the global timeline on to the clock's time. Sends "currentFrameChanged" at every tick,
    /// "currentFullFrameChanged" at every whole frame and "finishedPlayingGlobal" when the frame leaves the
    /// range.
    /// Edges: a listener or callback that stops global playback ends it with this tick, without the last
    /// message; one that jumps or starts anew has taken the timeline over, and nothing more of the tick is
    /// done. Folding into a range of length zero gives its begin.
    void playLoop();

    /// Starts the waiting objects. One that is running already goes on.
    void enqueueWaitingObjects();
    /// Arms the sequences; nulls are passed over.
    void initSequences(const std::vector<kaAnimationSequence*>& sequences);

    // Transport.

    /// Makes `frame` the current one and sends "currentFrameChanged"; evaluates nothing.
    void setCurrentFrame(float frame, AnimationWidget sender);
    /// Evaluates what the host edits: the object of `setObjectID`, the curves of `setCurveIDs` and, with
    /// `setEvalActiveUnits`, the active blocks of the scene.
    void evaluate(float frame, bool motionBlurOnly);
    /// The same for the kinds asked for.
    void evaluate(float frame, bool evalObject, bool evalCurves, bool evalActiveUnits, bool motionBlurOnly);
    /// Freezes both playback modes, or lets them go on. The running objects go on where they were; the global
    /// clock is not moved, so that global playback jumps ahead by the paused time. Asking for the present
    /// state does nothing.
    void pause(bool pausing);
    /// Freezes one object, or lets it go on where it was. Letting go an object that was not paused moves its
    /// start by the time since its last pause. Null does nothing.
    void pause(kaAnimationObject* object, bool pausing);
    /// Ends object playback; values stay where they are.
    void stop();
    /// Ends object playback with every running object at its begin.
    void reset();
    /// Takes an object out of object playback and puts it at its begin, or its end: those of the custom range
    /// where that is used. Null does nothing.
    void reset(kaAnimationObject* object);
    void gotoEnd(kaAnimationObject* object); ///< As `reset(object)`, but to the end.
    /// Ends object playback as `reset()` does and starts the global timeline.
    /// @param ids what to play; ids that nobody knows are passed over. @param reverse backwards from `end`.
    /// @param repeat folded into the range, without end. @param begin,end,start frames. All three 0: the
    /// joint range of the objects, from the current frame on.
    void playGlobal(const std::vector<kaUID>& ids, bool reverse, bool repeat, float begin, float end,
                    float start);
    /// The same for one object; id 0 does nothing.
    void playGlobal(kaUID id, bool reverse, bool repeat, float begin, float end, float start);
    /// Stops the global timeline without a message and forgets the objects of the last jump.
    void stopGlobal();
    /// Stops the global timeline, evaluates an object at its begin or end and tells the host's time line,
    /// curve editor and clip editor, in this order.
    void gotoGlobalBegin(kaAnimationObject* object);
    void gotoGlobalEnd(kaAnimationObject* object); ///< As `gotoGlobalBegin`, but to the end.
    /// The same for loose curves: the smallest begin, but no later than frame 0, or the largest end, but no
    /// earlier than frame 0. An empty list only stops the timeline.
    void gotoGlobalBegin(const std::vector<kaAnimationCurve2D*>& curves);
    void gotoGlobalEnd(const std::vector<kaAnimationCurve2D*>& curves); ///< As above, but to the end.

    // Motion blur: before each sub-frame sample the host has the curves flagged for it moved to the sample's
    // time, the current frame + frames per second * sample / the active camera's shutter speed. Without a
    // camera one line goes to standard output and nothing moves.

    /// Moves what `evaluate` evaluates, then tells the host's navigation.
    void executeMotionBlur(float sample);
    /// Moves the curves of one object; null does nothing.
    void executeMotionBlur(float sample, kaAnimationObject* object);
    /// Moves the curves of the scene's active blocks.
    void executeMotionBlurOnActiveUnits(float sample);
    /// Puts what `evaluate` evaluates back to the current frame.
    void resetMotionBlur();

    /// @name What the host sets and reads
    /// @{

    /// Plain values of the global timeline: frames, frames per second, seconds of the clock, flags as they
    /// stand. Setting one sends nothing.
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
    /// What global playback evaluates.
    static const std::vector<kaUID>& getPlayingObjects() { return the()->_playingObjects; }
    /// Curves and sequences of the last global jump. Valid until the next jump or destruction.
    static const std::vector<kaAnimationCurve2D*>& getCurves();
    static const std::vector<kaAnimationSequence*>& getSeqs();
    /// @}

    /// @name Host callbacks
    /// @{

    /// Called by the ticks; null until set, and a null one is not called.
    static void setCameraCB(void (*callback)(osg::PerspectiveCamera2Ptr& camera)) { _cameraCB = callback; }
    /// Clock in seconds; null for the time of day. For smooth playback it must start near zero: times are
    /// kept as float, which holds a time of day to minutes only.
    static void setTimeCB(double (*callback)()) { _timeCB = callback; }
    static void setUpdateNavCB(void (*callback)(int)) { _updateNavCB = callback; }
    static void setSeqCB(void (*callback)(std::string name)) { _seqCB = callback; }
    static void setEnableSimCB(void (*callback)(bool enable)) { _enableSimCB = callback; }
    static void setIsSimEnableCB(bool (*callback)()) { _isSimEnableCB = callback; }
    static void setCurrentFrameTimeLineCB(void (*callback)(float)) { _currentFrameTimeLineCB = callback; }
    static void setCurrentFrameCurveEditorCB(void (*callback)(float)) {
        _currentFrameCurveEditorCB = callback;
    }
    static void setCurrentFrameClipMakerCB(void (*callback)(float)) { _currentFrameClipMakerCB = callback; }

    /// @}

    /// What `loop` plays, by id. Valid until the next change or destruction.
    const std::map<kaUID, kaAnimationObject*>& getRunningObjects() const;
    /// Valid until the next change or destruction.
    const std::vector<kaAnimationObject*>& getWaitingObjects() const;
    /// Queues an object to start at the end of the next `loop()`; null is ignored.
    void addWaitingObject(kaAnimationObject* object);
    /// Takes an object out of the running ones.
    void subRunningObject(kaUID id);

    /// @name What `evaluate` evaluates
    /// @{

    /// Ids that the host edits, and whether the scene's active blocks are evaluated too.
    kaUID getObjectID() const { return _objectID; }
    void setObjectID(kaUID id) { _objectID = id; }
    const std::vector<kaUID>& getCurveIDs() const { return _curveIDs; }
    void setCurveIDs(const std::vector<kaUID>& ids) { _curveIDs = ids; }
    bool isEvalActiveUnits() const { return _evalActiveUnits; }
    void setEvalActiveUnits(bool evalActiveUnits) { _evalActiveUnits = evalActiveUnits; }
    /// @}

  private:
    kaAnimationController();

    static double now();
    static float nowAsFloat() { return static_cast<float>(now()); }

    bool playOn(kaAnimationObject& object, double time, kaWeakList<kaAnimationObject>& ended);
    void leavePlayback(kaAnimationObject& object, float frame, bool rewound);
    void setGlobalRange();
    static float globalFrame();
    static void announceFullFrame(float frame);
    void jumpTo(kaAnimationObject* object, float frame);
    void jumpTo(const std::vector<kaAnimationCurve2D*>& curves, float frame);
    void notifyFrame(float frame);
    static bool blurredFrame(float sample, const char* operation, float& frame);

    /// The instance while there is one: objects may be freed before and after.
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

    std::vector<kaUID> _playingObjects;
    kaUID _objectID = 0;
    std::vector<kaUID> _curveIDs;
    bool _evalActiveUnits = false;
    std::unique_ptr<kaEvaluation> _evaluation;
    std::unique_ptr<kaPlayedObjects> _played;

    unsigned int _takeovers = 0; ///< how often the timeline was started or jumped
};
