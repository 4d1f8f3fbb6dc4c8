// A frame timer that drives both playback modes, and a listener that keeps the host's time line in step.
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaOpenSGUtils.h>

namespace {

double seconds = 0.0;

/// What the host connects to its timer: both ticks; each does nothing while its mode is idle.
void onFrameTimer() {
    seconds += 0.02;
    kaAnimationController::the()->loop();
    kaAnimationController::the()->playLoop();
}

} // namespace

int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    kaAnimationManager* manager = kaAnimationManager::the();
    manager->init(nullptr);
    kaAnimationController::setTimeCB([] { return seconds; });
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    manager->createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
    manager->createCurvePoint(curve, 10.0F, 1.0F, false, false, false);

    int wholeFrame = -1;
    int ticks = 0;
    bool finished = false;
    const auto everyFrame = kaOpenSGUtils::addListener("currentFrameChanged", [&](auto&&...) { ++ticks; });
    const auto wholeFrames =
        kaOpenSGUtils::addListener("currentFullFrameChanged", [&](auto&&, const kaMessage& message, int) {
            wholeFrame = *message.get<int>("frame");
        });
    const auto end = kaOpenSGUtils::addListener("finishedPlayingGlobal", [&](auto&&...) { finished = true; });

    kaAnimationController::the()->playGlobal(curve->getId(), false, false, 0.0F, 10.0F, 0.0F);
    while (kaAnimationController::isPlaying())
        onFrameTimer();

    require(finished, "the host is told that playback ran out");
    require(wholeFrame == 10, "the last whole frame is the last of the range");
    require(ticks > 10, "every tick announces its frame");
    manager->destroyCurve2D(curve);
    manager->destroyAllFields();
    return 0;
}
