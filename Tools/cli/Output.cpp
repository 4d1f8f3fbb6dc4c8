#include "cli/Output.h"

#include "cli/Progress.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <kaFile.h>
#include <kaMotion/Failure.h>
#include <unistd.h>

namespace ka::tools {

using namespace motion;

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

bool Output::isTerminal() const {
    return isatty(_descriptor) == 1;
}

void replaceFile(const std::string& path, std::string_view bytes) {
    std::string error, warning;
    if (!kaFile::writeSafely(path, bytes, error, warning))
        throw Failure(ExitCode::OutputFailed, error);
    if (!warning.empty())
        say(warning);
}

} // namespace ka::tools
