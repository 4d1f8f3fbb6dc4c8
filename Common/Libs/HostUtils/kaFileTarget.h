#pragma once

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <system_error>

/// The file that a name leads to: symbolic links are followed, so that replacing the file keeps the links to
/// it.
class kaFileTarget {
  public:
    /// @return false, with the reason in getError(), for an empty name, one with a zero byte in it, a folder,
    /// a link that leads round in a circle, and a path that cannot be followed. A file that does not exist is
    /// no failure.
    bool resolve(const std::string& name);

    const std::filesystem::path& getPath() const { return _path; }
    std::filesystem::path getFolder() const;

    bool exists() const { return _exists; }

    /// Of an existing target: whether it is a file with content of its own, not a device or a pipe.
    bool isRegular() const { return S_ISREG(_status.st_mode); }

    /// Whether both are one file; devices do not count. Both have been resolved.
    bool isSameAs(const kaFileTarget& other) const;

    /// Whether this process may write the existing file, or make it in its folder.
    bool isWritable() const;

    /// Of an existing target.
    const struct stat& getStatus() const { return _status; }

    const std::error_code& getError() const { return _error; }

  private:
    bool followLinks();

    std::filesystem::path _path;
    struct stat _status {};
    bool _exists = false;
    std::error_code _error;
};
