#include "kaFileTarget.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

// As many as the system itself follows.
constexpr int MAX_LINKS = 40;

} // namespace

std::filesystem::path kaFileTarget::getFolder() const {
    return _path.has_parent_path() ? _path.parent_path() : std::filesystem::path(".");
}

bool kaFileTarget::isWritable() const {
    const auto isAllowed = [](const std::filesystem::path& path, int mode) {
        return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
    };
    return _exists ? isAllowed(_path, W_OK) : isAllowed(getFolder(), W_OK | X_OK);
}

bool kaFileTarget::isSameAs(const kaFileTarget& other) const {
    const auto areOne = [](const struct stat& a, const struct stat& b) {
        return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
    };
    if (_exists || other._exists) {
        return _exists && other._exists && areOne(_status, other._status) && !S_ISCHR(_status.st_mode);
    }
    struct stat folder {};
    struct stat otherFolder {};
    return _path.filename() == other._path.filename() && ::stat(getFolder().c_str(), &folder) == 0 &&
           ::stat(other.getFolder().c_str(), &otherFolder) == 0 && areOne(folder, otherFolder);
}

// By hand, because a link to a file that is yet to be made counts as well.
bool kaFileTarget::followLinks() {
    for (int links = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(_path, _error));
         ++links) {
        if (links == MAX_LINKS) {
            _error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
            return false;
        }
        const auto next = std::filesystem::read_symlink(_path, _error);
        if (_error) {
            return false;
        }
        _path = getFolder() / next; // an absolute target takes the place of the folder
    }
    return true;
}

bool kaFileTarget::resolve(const std::string& name) {
    _path = name;
    _exists = false;
    _error.clear();
    if (name.empty() || name.find('\0') != std::string::npos) {
        _error = std::make_error_code(std::errc::invalid_argument);
        return false;
    }
    if (!followLinks()) {
        return false;
    }
    if (::stat(_path.c_str(), &_status) == 0) {
        _exists = true;
        _error.clear();
        if (S_ISDIR(_status.st_mode)) {
            _error = std::make_error_code(std::errc::is_a_directory);
        }
    } else {
        _error.assign(errno, std::system_category());
        // Only the last part may be missing: "folder/" names a folder, which no file can become.
        if (_error == std::errc::no_such_file_or_directory && _path.has_filename() &&
            std::filesystem::is_directory(getFolder(), _error)) {
            _error.clear();
        }
    }
    return !_error;
}
