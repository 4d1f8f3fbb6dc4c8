#pragma once

#include "import/Motion.h"
#include "import/ReaderProcess.h"

#include <string>

namespace ka::tools {

struct ReadModel {
    Motion motion;            ///< checked and fit to build from; `notes` tells what was lost
    std::size_t findings = 0; ///< how many of the notes are damage in the file
};

/// Whether a file of this name would be given to one of the model readers.
bool isModel(const std::string& path);

/// Reads a model by the extension of its name: .bvh by the project's own reader, .gltf and .glb (version 2)
/// and everything else through third-party readers in a child process.
/// @throws Failure (Unreadable) with one line.
ReadModel readModel(const std::string& path, const ReaderLimits& limits);

} // namespace ka::tools
