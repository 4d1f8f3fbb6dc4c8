#include "cli/Film.h"

#include "cli/Output.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <kaMotion/Canvas.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace ka::tools {

using namespace motion;

namespace {

[[noreturn]] void failToWrite(const std::string& path, const std::string& why) {
    throw Failure(ExitCode::OutputFailed, printedPath(path) + ": " + why);
}

/// The program of that name on the search path; empty when there is none.
std::string programNamed(const std::string& name) {
    const char* const folders = std::getenv("PATH");
    std::istringstream list(folders == nullptr ? "" : folders);
    for (std::string folder; std::getline(list, folder, ':');) {
        const std::string path = (folder.empty() ? "." : folder) + "/" + name;
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0)
            return path;
    }
    return {};
}

} // namespace

Film::Film(std::string path, double framesPerSecond)
    : _path(std::move(path)), _program(programNamed("ffmpeg")), _framesPerSecond(framesPerSecond) {
    if (extensionOf(_path) != "mp4")
        throw Failure(ExitCode::Usage, "films are written to .mp4 files, not " + oneLine(_path));
    // In the folder that the film goes to, so that a rename ends it.
    _temporary = isFilm() ? _path + ".part.mp4" : _path.substr(0, _path.size() - 4);
    if (!isFilm() && std::filesystem::exists(_temporary))
        failToWrite(_temporary,
                    "there already; without ffmpeg, the film becomes a folder of pictures of this name");
    std::error_code error;
    if (!isFilm() && !std::filesystem::create_directory(_temporary, error))
        failToWrite(_temporary, error.message());
}

Film::~Film() {
    stop();
    std::error_code ignored;
    if (!_temporary.empty())
        std::filesystem::remove_all(_temporary, ignored);
}

void Film::stop() {
    if (_pipe != nullptr)
        std::fclose(_pipe);
    _pipe = nullptr;
    if (_process > 0)
        waitpid(_process, nullptr, 0);
    _process = -1;
}

void Film::start(const QImage& picture) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        failToWrite(_path, std::strerror(errno));
    const std::string size = std::to_string(picture.width()) + "x" + std::to_string(picture.height());
    std::vector<std::string> words{_program,     "-loglevel", "error",
                                   "-y",         "-f",        "rawvideo",
                                   "-pix_fmt",   "bgra",      "-s",
                                   size,         "-r",        formatNumber(_framesPerSecond, 9),
                                   "-i",         "-",         "-an",
                                   "-pix_fmt",   "yuv420p",   "-movflags",
                                   "+faststart", "--",        std::filesystem::absolute(_temporary).string()};
    words.erase(words.end() - 2); // paths that are absolute begin with no hyphen
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
    const int error = posix_spawn(&_process, _program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    _pipe = fdopen(ends[1], "wb");
    if (error != 0) {
        _process = -1;
        failToWrite(_path, "ffmpeg cannot be started: " + std::string(std::strerror(error)));
    }
}

void Film::add(const QImage& picture) {
    ++_count;
    if (!isFilm()) {
        char name[32];
        std::snprintf(name, sizeof name, "/%06zu.png", _count);
        return replaceFile(_temporary + name, pngBytes(picture));
    }
    if (_pipe == nullptr)
        start(picture);
    for (int y = 0; y < picture.height(); ++y) {
        const auto row = static_cast<std::size_t>(picture.width()) * 4;
        if (std::fwrite(picture.constScanLine(y), 1, row, _pipe) != row)
            failToWrite(_path, "ffmpeg does not take the pictures");
    }
}

std::string Film::finish() {
    if (!isFilm())
        return std::exchange(_temporary, "");
    const bool isSent = _pipe != nullptr && std::fclose(std::exchange(_pipe, nullptr)) == 0;
    int status = -1;
    const bool isEnded = _process > 0 && waitpid(std::exchange(_process, -1), &status, 0) > 0;
    if (!isSent || !isEnded || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        failToWrite(_path, "ffmpeg made no film");
    std::error_code error;
    std::filesystem::rename(_temporary, _path, error);
    if (error)
        failToWrite(_path, error.message());
    _temporary.clear();
    return _path;
}

} // namespace ka::tools
