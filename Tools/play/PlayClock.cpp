#include "play/PlayClock.h"

#include <cmath>
#include <kaAnimationController.h>
#include <limits>

namespace ka::tools {

double PlayClock::_seconds = 0.0;

PlayClock::PlayClock(float framesPerSecond) : _previousFps(kaAnimationController::getFps()) {
    _seconds = 0.0;
    kaAnimationController::setFps(framesPerSecond);
    kaAnimationController::setTimeCB([] { return _seconds; });
}

PlayClock::~PlayClock() {
    kaAnimationController::setTimeCB(nullptr);
    kaAnimationController::setFps(_previousFps);
}

float timeOfRun(float frames, float framesPerSecond, bool atMost) {
    constexpr float endless = std::numeric_limits<float>::infinity();
    const float towards = atMost ? endless : 0.0F, away = atMost ? 0.0F : endless;
    const auto isFine = [&](float seconds) {
        const float run = seconds * framesPerSecond;
        return atMost ? run <= frames : run >= frames;
    };
    float seconds = frames / framesPerSecond;
    // The quotient is off by a rounding or two, never by more.
    for (int i = 0; i < 4 && !isFine(seconds); ++i)
        seconds = std::nextafter(seconds, away);
    for (int i = 0; i < 4 && isFine(std::nextafter(seconds, towards)); ++i)
        seconds = std::nextafter(seconds, towards);
    return seconds;
}

} // namespace ka::tools
