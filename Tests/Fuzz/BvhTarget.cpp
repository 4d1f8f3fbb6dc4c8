#include "base/Failure.h"
#include "import/BvhReader.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Any bytes give a motion or one clear failure.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        ka::tools::readBvh(std::string_view(reinterpret_cast<const char*>(data), size), "input.bvh", "take");
    } catch (const ka::tools::Failure&) {
    }
    return 0;
}
