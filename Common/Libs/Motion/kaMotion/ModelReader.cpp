#include "readers/AssimpReader.h"
#include "readers/BvhReader.h"
#include "readers/ConfinedFolder.h"
#include "readers/GltfReader.h"

#include <filesystem>
#include <fstream>
#include <kaMotion/Failure.h>
#include <kaMotion/ModelReader.h>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

constexpr std::size_t largestBvh = std::size_t{1} << 30;

bool isGltf(const std::string& extension) {
    return extension == "gltf" || extension == "glb";
}

/// Files of other names that are glTF inside, such as .vrm: binary, or the text of an object with an "asset".
bool startsAsGltf(const std::string& path) {
    constexpr std::size_t enough = 1 << 16;
    std::ifstream file(path, std::ios::binary);
    std::string start(enough, '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    if (start.compare(0, 4, "glTF") == 0)
        return true;
    const std::size_t first = start.find_first_not_of(" \t\r\n");
    return first != std::string::npos && start[first] == '{' && start.find("\"asset\"") != std::string::npos;
}

/// The project's own reader is held to the same limits, but it may run where the system cannot confine it.
Motion readBvhFile(const ConfinedFolder& folder, const std::string& path, ReaderLimits limits) {
    limits.unconfined = true;
    const auto read = [&] {
        const std::optional<std::string> text = folder.read(folder.modelName(), largestBvh);
        if (!text)
            throw Failure(ExitCode::Unreadable, "cannot be read, or larger than 1 GiB");
        return readBvh(*text, "", std::filesystem::path(path).stem().string(), KeyBudget(limits.megabytes));
    };
    return readInChild(folder, path, limits, read).motion;
}

ReaderResult readByExtension(const std::string& path, const ReaderLimits& limits) {
    const std::string extension = extensionOf(path);
    const ConfinedFolder folder(path);
    if (extension == "bvh")
        return {readBvhFile(folder, path, limits), Confinement::Whole};
    const bool isForGltf = isGltf(extension) || startsAsGltf(path);
    if (!isForGltf && !isKnownToAssimp(extension))
        throw unreadable(path, extension.empty() ? "no extension tells what kind of model it is"
                                                 : "no reader for '." + oneLine(extension, 20) + "' files");
    const KeyBudget budget(limits.megabytes);
    return readInChild(folder, path, limits, [&] {
        if (!isForGltf)
            return readWithAssimp(folder, budget);
        if (isFirstGltf(folder))
            throw Failure(ExitCode::Unreadable, "a file of glTF 1.0; only glTF 2.0 is read");
        return readGltf(folder, budget);
    });
}

} // namespace

bool isModel(const std::string& path) {
    const std::string extension = extensionOf(path);
    return extension == "bvh" || isGltf(extension) || isKnownToAssimp(extension);
}

ReadModel readModel(const std::string& path, const ReaderLimits& limits) {
    ReadModel result;
    ReaderResult read = readByExtension(path, limits);
    result.motion = std::move(read.motion);
    result.confinement = read.confinement;
    try {
        KeyBudget(limits.megabytes).check(result.motion);
        result.findings = checkMotion(result.motion);
    } catch (const Failure& failure) {
        throw unreadable(path, failure.what());
    }
    return result;
}

} // namespace ka::motion
