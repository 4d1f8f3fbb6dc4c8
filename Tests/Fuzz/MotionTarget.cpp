#include <cstddef>
#include <cstdint>
#include <kaMotion/Failure.h>
#include <kaMotion/MotionStream.h>
#include <string_view>

/// Whatever a reader's process answers is no motion, or one that passes its check, or one clear failure.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto motion = ka::motion::unpackMotion(std::string_view(reinterpret_cast<const char*>(data), size));
    try {
        if (motion)
            checkMotion(*motion);
    } catch (const ka::motion::Failure&) {
    }
    return 0;
}
