#pragma once

#include <kaMotion/Motion.h>
#include <kaMotion/ReaderProcess.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What came of reading a model file.
struct ReadModel {
    Motion motion;            ///< checked and fit to build from; `notes` tells what was lost
    std::size_t findings = 0; ///< how many of the notes are damage in the file
    /// How far the system held a third-party reader to reading; whole for the project's own.
    Confinement confinement = Confinement::Whole;
};

/// Whether a file of this name would be given to one of the model readers.
bool isModel(const std::string& path);

/// Reads a model by the extension of its name, in a child process: .bvh by the project's own reader, .gltf
/// and .glb (version 2) and everything else through third-party readers.
/// @throws Failure (Unreadable) with one line.
ReadModel readModel(const std::string& path, const ReaderLimits& limits);

} // namespace ka::motion
#pragma GCC visibility pop
