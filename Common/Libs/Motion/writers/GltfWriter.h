#pragma once

#include "kaMotion/Motion.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ka::motion {

/// A glTF file that is ready to be written, and what it could not hold.
struct WrittenGltf {
    std::string bytes;
    std::size_t animations = 0, channels = 0;
    std::size_t mergedKeys = 0;     ///< that single precision cannot tell from the next in time
    std::vector<std::string> notes; ///< one line each
};

/// Writes a motion as glTF 2: its nodes with their rest transforms, and one animation for each take, with the
/// motion's own interpolation.
///
/// Times are single precision, rounded down, so that a player that asks for a key's time has reached it.
/// Since glTF knows no time before 0, a take that begins earlier is moved as a whole, which is noted. Lists
/// of numbers that are equal are stored once.
/// @param isBinary  a .glb file, its numbers in one binary chunk; else JSON with the numbers in a data URI.
/// @throws Failure (OutputFailed) for more than the 4 GiB that a .glb file can hold.
WrittenGltf writeGltf(const Motion& motion, bool isBinary);

} // namespace ka::motion
