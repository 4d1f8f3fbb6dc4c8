#include "RunningProgram.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace ka::tools::testing {

namespace {

/// Without this a terminal throws away what was printed around a Ctrl-C and not yet read.
void keepOutputOnInterrupt() {
    termios settings{};
    tcgetattr(STDIN_FILENO, &settings);
    settings.c_lflag |= NOFLSH;
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

[[noreturn]] void runChild(const std::vector<std::string>& arguments, const std::string& folder) {
    // Whoever started the tests in the background may have had these ignored.
    for (const int ending : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        std::signal(ending, SIG_DFL);
    const std::string program = std::string(KA_ANIM_FOLDER) + "/ka-anim";
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& word : arguments)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    if (chdir(folder.c_str()) == 0)
        execv(words[0], words.data());
    _exit(127);
}

} // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& arguments, const std::string& folder,
                               Streams streams) {
    if (streams == Streams::Terminal) {
        _child = forkpty(&_stream, nullptr, nullptr, nullptr);
        if (_child == 0) {
            keepOutputOnInterrupt();
            runChild(arguments, folder);
        }
        return;
    }
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        std::abort();
    _child = fork();
    if (_child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(open("/dev/null", O_RDWR), STDERR_FILENO);
        runChild(arguments, folder);
    }
    close(ends[1]);
    _stream = ends[0];
}

RunningProgram::~RunningProgram() {
    close(_stream);
    if (_child <= 0)
        return;
    kill(_child, SIGKILL);
    waitpid(_child, nullptr, 0);
}

void RunningProgram::readUntil(const std::function<bool(const std::string& seen)>& isEnough) {
    char bytes[4096];
    while (!isEnough(_seen)) {
        const ssize_t count = read(_stream, bytes, sizeof bytes);
        if (count <= 0) // a terminal gives an error once nobody has it open
            return;
        _seen.append(bytes, static_cast<std::size_t>(count));
    }
}

void RunningProgram::interrupt() const {
    kill(_child, SIGINT);
}

void RunningProgram::type(const std::string& keys) const {
    if (write(_stream, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        std::abort();
}

int RunningProgram::finish() {
    readUntil([](const std::string&) { return false; });
    int status = 0;
    waitpid(_child, &status, 0);
    _child = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace ka::tools::testing
