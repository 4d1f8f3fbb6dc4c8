#pragma once

#include "import/Motion.h"

#include <filesystem>
#include <string>

namespace ka::tools::testing {

/// A folder of its own for one test, gone with the object.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& name) const { return (_path / name).string(); }
    /// Writes a file and gives its path.
    std::string write(const std::string& name, const std::string& bytes) const;

  private:
    std::filesystem::path _path;
};

std::string readFile(const std::string& path);

/// The message of the Failure that `action` throws, "no failure" when it does not.
template <class Action>
std::string failureOf(Action&& action) {
    try {
        action();
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return "no failure";
}

/// The first frames of a real capture of a walk, enough to see it move: 38 nodes, 96 channels, 1/120 s each.
std::string shortCapture(int frames);

/// Where Debian's package of test models puts them.
std::string modelPath(const std::string& name);

} // namespace ka::tools::testing
