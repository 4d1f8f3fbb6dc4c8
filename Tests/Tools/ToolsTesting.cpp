#include "ToolsTesting.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace ka::tools::testing {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "ka-tools-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        std::abort();
    _path = fs::canonical(name);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(_path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string shortCapture(int frames) {
    std::ifstream file(modelPath("BVH/01_01.bvh"));
    std::string text, line;
    while (std::getline(file, line) && line.rfind("Frames:", 0) != 0)
        text += line + "\n";
    text += "Frames: " + std::to_string(frames) + "\n";
    for (int i = 0; i <= frames && std::getline(file, line); ++i)
        text += line + "\n";
    return text;
}

std::string modelPath(const std::string& name) {
    return "/usr/share/assimp/models/" + name;
}

} // namespace ka::tools::testing
