#include "readers/ConfinedFolder.h"
#include "readers/GltfReader.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <kaMotion/Failure.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>

namespace {

/// One file in a folder of its own, for as long as the program runs.
class Model {
  public:
    Model() {
        std::string name = (std::filesystem::temp_directory_path() / "ka-fuzz-gltf-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        _folder = name;
    }
    ~Model() {
        std::error_code ignored;
        std::filesystem::remove_all(_folder, ignored);
    }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    std::string write(const std::uint8_t* data, std::size_t size) const {
        const std::string path = _folder + "/input.gltf";
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"),
                                                                   std::fclose);
        if (!file || std::fwrite(data, 1, size, file.get()) != size)
            std::abort();
        return path;
    }

  private:
    std::string _folder;
};

} // namespace

/// Any bytes, text or binary, give a motion that passes its check, or one clear failure.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Model model;
    try {
        const ka::motion::ConfinedFolder folder(model.write(data, size));
        if (ka::motion::isFirstGltf(folder))
            return 0;
        ka::motion::Motion motion = ka::motion::readGltf(folder, ka::motion::KeyBudget(64));
        checkMotion(motion);
    } catch (const ka::motion::Failure&) {
    }
    return 0;
}
