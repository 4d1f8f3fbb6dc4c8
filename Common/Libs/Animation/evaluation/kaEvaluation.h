#pragma once

#include "kaAnimationTypes.h"

#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationObject;
class kaAnimationSequence;
class kaEvaluationPass;
class kaEvaluationPlan;

/// Turns objects and a frame into values in the scene: gathers curves, samples them, writes their fields.
///
/// Sampling does not call the host; writing may (a container's `changed`, the camera callbacks). From the first
/// write on, fields are looked up by id again once the object model has been edited, and the evaluated object is
/// watched by a weak reference. Evaluations may nest; each level keeps its buffers, so that nothing is allocated
/// after the first frame.
class kaEvaluation {
  public:
    /// Curves to sample by key, each with the frame to sample it at; equal keys keep their insertion order.
    using CurveFrames = std::multimap<float, std::pair<kaAnimationCurve2D*, float>>;
    /// Is told the sequences that an evaluated object reaches at a frame.
    using SequenceSink = void (*)(const std::vector<kaAnimationSequence*>& sequences, float frame);

    explicit kaEvaluation(SequenceSink sequences);
    ~kaEvaluation();

    bool computeCurveValue(kaAnimationCurve2D* curve, float frame, float& value);
    void collectCurvesWithFrame(kaAnimationObject* object, float frame, CurveFrames& finished,
                                CurveFrames& running, CurveFrames& upcoming, bool motionBlurOnly);
    bool evaluateObject(kaAnimationObject* object, float frame, bool motionBlurOnly);
    void evaluateCurves(const std::vector<kaAnimationCurve2D*>& curves, float lo, float hi, float frame,
                        bool motionBlurOnly);

    /// Starts fetching from memory what evaluating an object and noting how it plays will read, in steps that
    /// go from one address to the next: first the object itself, then 3, 2 and 1.
    static void fetchObject(const void* address);
    static void fetch(const kaAnimationObject& object, std::size_t step);

  private:
    class PassLease;

    /// Stands while an evaluation runs and the object model is not edited.
    kaEvaluationPlan& planOf(const kaAnimationObject& object);
    static kaEvaluationPlan* keptPlanOf(const kaAnimationObject& object);
    static void keepPlanOf(const kaAnimationObject& object, kaEvaluationPlan* plan);
    kaEvaluationPlan& madePlanOf(const kaAnimationObject& object);
    void sweepPlans();
    static void fetchCurves(const kaAnimationCurve2D* soon, const kaAnimationCurve2D* next);

    std::unordered_map<const kaAnimationObject*, std::unique_ptr<kaEvaluationPlan>> _plans;
    std::uint64_t _uses = 0;
    std::size_t _orphans = 0;  ///< plans of objects that have gone since the last sweep
    std::size_t _plansAtSweep; ///< how many there are when those that are not used any more are looked for
    std::vector<std::unique_ptr<kaEvaluationPass>> _passes; ///< one for each depth
    std::size_t _depth = 0;
    SequenceSink _sequences;
};
