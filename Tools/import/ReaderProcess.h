#pragma once

#include "import/Motion.h"

#include <functional>
#include <string>

namespace ka::tools {

class ConfinedFolder;

/// What a third-party reader may use up before it is stopped.
struct ReaderLimits {
    std::size_t megabytes = 1024; ///< of memory
    double seconds = 30.0;        ///< of time, whether it computes or waits
};

/// Runs a reader in a process of its own: whatever a hostile file makes it do, this process and its files
/// stay whole.
///
/// The child may only read below the model's folder, write nothing but its answer, and use up no more than
/// `limits`; its standard output and error go nowhere. It dies with its parent.
/// @param read  runs in the child; a Failure that it throws is thrown here again.
/// @throws Failure (Unreadable) with one line, `name` first, when the reader fails, crashes, hangs, asks for
/// too much
///         memory or answers with anything but a motion.
/// Call it before threads are started: the child is a fork.
Motion readInChild(const ConfinedFolder& folder, const std::string& name, const ReaderLimits& limits,
                   const std::function<Motion()>& read);

} // namespace ka::tools
