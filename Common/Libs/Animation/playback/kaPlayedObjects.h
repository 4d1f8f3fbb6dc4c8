#pragma once

#include "kaLiveObjects.h"
#include "kaReentryGuard.h"
#include "kaRunningObjects.h"

class kaAnimationCurve2D;
class kaAnimationSequence;

/// The objects that the controller plays or has played last, and which of its calls are under way.
struct kaPlayedObjects {
    kaRunningObjects running;
    kaLiveObjects<kaAnimationObject> waiting;
    kaLiveObjects<kaAnimationCurve2D> curves;     ///< of the last global jump
    kaLiveObjects<kaAnimationSequence> sequences; ///< of the last global jump

    /// Calls under way that may lead back into themselves.
    kaReentryGuard::Calls loop, playLoop, reset, sequenceFiring, notice;
};
