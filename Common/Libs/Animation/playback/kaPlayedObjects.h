#pragma once

#include "kaForgetfulList.h"
#include "kaRunningObjects.h"

class kaAnimationCurve2D;
class kaAnimationSequence;

/// Every object that the controller holds by pointer; one that is freed leaves at once.
struct kaPlayedObjects {
    kaRunningObjects running;
    kaForgetfulList<kaAnimationObject> waiting;
    kaForgetfulList<kaAnimationObject> finished;    ///< in the tick under way
    kaForgetfulList<kaAnimationCurve2D> curves;     ///< of the last global jump
    kaForgetfulList<kaAnimationSequence> sequences; ///< of the last global jump

    void forget(const kaAnimationObject* object) {
        running.forget(object);
        waiting.forget(object);
        finished.forget(object);
        curves.forget(object);
        sequences.forget(object);
    }
};
