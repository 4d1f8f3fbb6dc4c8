#include "ModelFile.h"
#include "readers/ConfinedFolder.h"
#include "readers/GltfReader.h"

#include <kaMotion/Failure.h>

/// Any bytes, text or binary, give a motion that passes its check, or one clear failure.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ModelFile file;
    try {
        const ka::motion::ConfinedFolder folder(file.write("input.gltf", data, size));
        if (ka::motion::isFirstGltf(folder))
            return 0;
        ka::motion::Motion motion = ka::motion::readGltf(folder, ka::motion::KeyBudget(64));
        checkMotion(motion);
    } catch (const ka::motion::Failure&) {
    }
    return 0;
}
