#include "readers/BvhReader.h"

#include <cstddef>
#include <cstdint>
#include <kaMotion/Failure.h>
#include <string_view>

/// Any bytes give a motion or one clear failure.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        ka::motion::readBvh(std::string_view(reinterpret_cast<const char*>(data), size), "input.bvh", "take");
    } catch (const ka::motion::Failure&) {
    }
    return 0;
}
