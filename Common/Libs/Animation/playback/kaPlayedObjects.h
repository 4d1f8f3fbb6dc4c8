#pragma once

#include "kaForgetfulList.h"
#include "kaNesting.h"
#include "kaRunningObjects.h"

class kaAnimationCurve2D;
class kaAnimationSequence;

/// Every object that the controller holds by pointer, which one that is freed leaves at once, and what is
/// under way.
struct kaPlayedObjects {
    kaRunningObjects running;
    kaForgetfulList<kaAnimationObject> waiting;
    kaForgetfulList<kaAnimationObject> finished;    ///< in the tick under way
    kaForgetfulList<kaAnimationCurve2D> curves;     ///< of the last global jump
    kaForgetfulList<kaAnimationSequence> sequences; ///< of the last global jump

    /// Calls under way that may lead back into themselves.
    kaNesting::Depth loop, playLoop, reset, sequenceFiring, notice;

    void forget(const kaAnimationObject* object) {
        running.forget(object);
        waiting.forget(object);
        finished.forget(object);
        curves.forget(object);
        sequences.forget(object);
    }
};
