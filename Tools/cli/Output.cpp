#include "cli/Output.h"

#include "base/Failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace ka::tools {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t heldBack = 1 << 16;

Failure outputFailed(const std::string& what, int error) {
    return {ExitCode::OutputFailed, what + ": " + std::strerror(error)};
}

/// @return 0, or the error of the first write that failed.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t wrote = ::write(descriptor, bytes.data(), bytes.size());
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote < 0)
            return errno;
        bytes.remove_prefix(static_cast<std::size_t>(wrote));
    }
    return 0;
}

/// The permissions that the new file shall have: those of the old one, or what the user's mask leaves.
mode_t permissionsFor(const std::string& path) {
    struct stat old {};
    if (stat(path.c_str(), &old) == 0)
        return old.st_mode & 07777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

int writeInto(int descriptor, const std::string& path, std::string_view bytes) {
    if (descriptor < 0)
        return errno;
    int error = writeAll(descriptor, bytes);
    if (error == 0 && fchmod(descriptor, permissionsFor(path)) != 0)
        error = errno;
    // A full disk may show only when the data is really stored.
    if (error == 0 && fsync(descriptor) != 0)
        error = errno;
    if (close(descriptor) != 0 && error == 0)
        error = errno;
    return error;
}

void writeDirectly(const std::string& path, std::string_view bytes) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    int error = descriptor < 0 ? errno : writeAll(descriptor, bytes);
    if (descriptor >= 0 && close(descriptor) != 0 && error == 0)
        error = errno;
    if (error != 0)
        throw outputFailed(path, error);
}

} // namespace

Output::Output() {
    std::fflush(stdout);
    _descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

Output::~Output() {
    std::fflush(stdout);
    if (_descriptor >= 0) {
        dup2(_descriptor, STDOUT_FILENO);
        close(_descriptor);
    }
}

void Output::write(std::string_view text) {
    _pending += text;
    if (_pending.size() >= heldBack)
        finish();
}

void Output::finish() {
    const int error = _pending.empty() ? 0 : _descriptor < 0 ? EBADF : writeAll(_descriptor, _pending);
    _pending.clear();
    if (error == EPIPE)
        throw Failure(ExitCode::OutputFailed, "standard output was closed by its reader");
    if (error != 0)
        throw outputFailed("standard output", error);
}

void replaceFile(const std::string& path, std::string_view bytes) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored))
        throw outputFailed(path, EISDIR);
    if (fs::exists(path, ignored) && !fs::is_regular_file(path, ignored))
        return writeDirectly(path, bytes);
    const fs::path real = fs::exists(path, ignored) ? fs::canonical(path, ignored) : fs::path(path);
    std::string temporary = real.string() + ".XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    int error = descriptor < 0 ? errno : writeInto(descriptor, real.string(), bytes);
    if (error == 0 && std::rename(temporary.c_str(), real.c_str()) != 0)
        error = errno;
    if (error == 0)
        return;
    if (descriptor >= 0)
        unlink(temporary.c_str());
    throw outputFailed(path, error);
}

} // namespace ka::tools
