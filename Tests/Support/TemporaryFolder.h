#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace ka_test {

/// An empty folder of its own for a test, which goes with the object.
class TemporaryFolder {
  public:
    /// Throws where none can be made.
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// Without symbolic links in it.
    const std::filesystem::path& path() const { return _path; }
    std::string at(const std::string& name) const { return (_path / name).string(); }
    /// Writes a file and gives its path.
    std::string put(const std::string& name, const std::string& content) const;
    /// Files and folders directly in it.
    std::size_t entryCount() const;

  private:
    std::filesystem::path _path;
};

/// Of a whole file. Fails the test where it cannot be opened.
std::string contentOf(const std::filesystem::path& file);

} // namespace ka_test
