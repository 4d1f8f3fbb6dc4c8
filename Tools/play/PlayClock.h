#pragma once

namespace ka::tools {

/// The host's clock: while one exists, the player reads its time from it, and at `framesPerSecond`. It starts
/// at zero, because the player keeps times as floats, which are fine near zero and coarse far from it.
class PlayClock {
  public:
    explicit PlayClock(float framesPerSecond);
    ~PlayClock();
    PlayClock(const PlayClock&) = delete;
    PlayClock& operator=(const PlayClock&) = delete;

    void set(double seconds) { _seconds = seconds; }

  private:
    static double _seconds;

    float _previousFps;
};

/// The time, in seconds, at which the player's single-precision arithmetic has run for `frames`: the first
/// one at which it has come that far, or, for `atMost`, the last one at which it has come no further. Ticks
/// at these times reach every whole frame, where ticks at the plain quotient would often stop just short of
/// one.
/// @param frames           0 or more.
/// @param framesPerSecond  above 0.
float timeOfRun(float frames, float framesPerSecond, bool atMost);

} // namespace ka::tools
