#pragma once

#include <functional>

/// What a piece of work took in a process of its own.
struct Measured {
    double seconds = 0.0;       ///< of processor time
    double peakMegabytes = 0.0; ///< above what the process had before the work
};

/// Runs `work` in a child process, so that its peak memory is its own, and waits for it.
/// @param prepare runs in the child before the measurement starts.
/// @return zeros when the child failed.
Measured measureInChild(const std::function<void()>& prepare, const std::function<void()>& work);
