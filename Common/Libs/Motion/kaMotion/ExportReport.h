#pragma once

#include <cstddef>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How curves become the channels of a file.
struct SamplingOptions {
    double framesPerSecond = 25.0; ///< of the scene, for the seconds of the file
    /// Degrees that a rotation may be off anywhere. Other values may be off by this angle, in radians, of the
    /// largest distance that they cover in their channel.
    double tolerance = 0.01;
};

/// What became of the curves of one or more channels.
struct SamplingReport {
    std::size_t keys = 0;       ///< written
    std::size_t exact = 0;      ///< segments between source keys that needed no key inside
    std::size_t resampled = 0;  ///< those that did
    std::size_t jumps = 0;      ///< ends of holds within a channel that is not made of holds alone
    std::size_t unreached = 0;  ///< pieces beyond the tolerance that cannot be split further
    double worstRotation = 0.0; ///< degrees, the largest difference found
    double worstPart = 0.0;     ///< the same of other values, as a part of the distance their channel covers
};

/// What became of the registered animation.
struct ExportReport {
    std::size_t nodes = 0;          ///< of the scene
    std::size_t meshes = 0;         ///< of one material each
    std::size_t curves = 0;         ///< that were handed on
    std::size_t keys = 0;           ///< of those curves
    SamplingReport channels;        ///< what became of them
    std::vector<std::string> notes; ///< what the target cannot hold, one line each
};

} // namespace ka::motion
#pragma GCC visibility pop
