#include "ModelFile.h"

#include <kaMotion/Failure.h>
#include <kaMotion/ModelReader.h>
#include <string>

/// Any bytes under any of the extensions give a checked motion, or one line: the library that reads them has faults of
/// its own, which the child process keeps. The first byte chooses the extension.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ModelFile file;
    constexpr const char* extensions[] = {"fbx", "dae",  "3ds",     "x",   "obj", "ply",
                                          "stl", "ms3d", "md5mesh", "b3d", "ase"};
    if (size == 0)
        return 0;
    const std::string path =
        file.write(std::string("input.") + extensions[data[0] % std::size(extensions)], data + 1, size - 1);
    ka::motion::ReaderLimits limits;
    limits.unconfined = true; // what the system allows here is not what this is about
    try {
        ka::motion::readModel(path, limits);
    } catch (const ka::motion::Failure& failure) {
        const std::string line = failure.what();
        if (line.empty() || line.find('\n') != std::string::npos)
            std::abort();
    }
    std::filesystem::remove(path);
    return 0;
}
