#pragma once

#include "MotionTesting.h"

#include <functional>
#include <string>
#include <vector>

namespace ka::tools::testing {

using namespace motion::testing;

/// What a run of `ka-anim` gave.
struct ProgramRun {
    int code = -1; ///< exit code; -1 when the program did not end by itself
    std::string output, messages;

    /// Whether the messages are exactly one line that starts with the program's name.
    bool isOneLine() const;
};

/// Runs `ka-anim` as a process of its own.
/// @param folder  the current folder of the run.
/// @param prepare  called in that process before the program begins.
ProgramRun runKaAnim(
    const std::vector<std::string>& arguments, const std::string& folder = "/",
    const std::function<void()>& prepare = [] {});

/// Runs a shell command in which `ka-anim` is found.
ProgramRun runShell(const std::string& command, const std::string& folder);

} // namespace ka::tools::testing
