#pragma once

#include "kaAnimationObject.h"
#include "kaChildList.h"

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

class kaEvaluationPlan;

/// What every object but keys and handles has: children and the ids below them. What only objects that play
/// or fire have stands here too, so that keys do not even carry a pointer for it.
struct kaAnimationObject::Group {
    explicit Group(kaAnimationObject& owner) : children(owner) {}

    kaChildList children;
    std::set<kaUID> curves;
    std::set<kaUID> sequences;
    std::uint64_t curvesRevision = 0;
    std::unique_ptr<Playback> playback;
    kaEvaluationPlan* plan = nullptr;   ///< what evaluation has made of the object, while it keeps that
    kaAnimationObject* above = nullptr; ///< where destruction goes on once this one's children have gone

    /// The curves that `curves` names, while registry and set are as they were.
    std::vector<kaAnimationCurve2D*> resolved;
    std::uint64_t resolvedEpoch = 0;
    std::uint64_t resolvedRevision = 0;
};
