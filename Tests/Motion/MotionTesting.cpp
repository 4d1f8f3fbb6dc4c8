#include "MotionTesting.h"

#include <fstream>

namespace ka::motion::testing {

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

} // namespace ka::motion::testing
