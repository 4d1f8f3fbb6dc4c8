#include "import/ReaderProcess.h"

#include "base/Failure.h"
#include "base/Text.h"
#include "import/ConfinedFolder.h"
#include "import/MotionStream.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ka::tools {

namespace {

using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool addressSpaceIsShadowed = true;
#elif defined(__has_feature)
constexpr bool addressSpaceIsShadowed = __has_feature(address_sanitizer);
#else
constexpr bool addressSpaceIsShadowed = false;
#endif

// The answer's first byte.
constexpr char motionFollows = 'M';
constexpr char reasonFollows = 'E';

/// Column `column` of /proc/PID/statm in bytes: 0 the address space, 1 what of it is resident. 0 when
/// unknown.
std::size_t memoryOf(pid_t process, int column) {
    const std::string path = "/proc/" + std::to_string(process) + "/statm";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "re"), std::fclose);
    unsigned long long pages[2]{};
    if (!file || std::fscanf(file.get(), "%llu %llu", &pages[0], &pages[1]) != 2)
        return 0;
    return static_cast<std::size_t>(pages[column]) * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void limitTo(int resource, unsigned long long value) {
    const struct rlimit limit { static_cast<rlim_t>(value), static_cast<rlim_t>(value) };
    setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

void silenceStandardStreams() {
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int stream = 0; stream <= 2; ++stream)
        dup2(nowhere, stream);
}

void send(int pipe, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t wrote = write(pipe, bytes.data() + done, bytes.size() - done);
        if (wrote < 0 && errno != EINTR)
            return;
        done += wrote > 0 ? static_cast<std::size_t>(wrote) : 0;
    }
}

std::string answerOf(const std::function<Motion()>& read) {
    try {
        return motionFollows + packMotion(read());
    } catch (const std::bad_alloc&) {
        return reasonFollows + std::string("the reader ran out of memory");
    } catch (const std::exception& failure) {
        return reasonFollows + std::string(failure.what());
    } catch (...) {
        return reasonFollows + std::string("the reader failed");
    }
}

[[noreturn]] void runChild(int pipe, const ConfinedFolder& folder, const ReaderLimits& limits,
                           const std::function<Motion()>& read) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (const int fatal : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL, SIGPIPE})
        std::signal(fatal, SIG_DFL);
    silenceStandardStreams();
    limitTo(RLIMIT_CORE, 0);
    limitTo(RLIMIT_FSIZE, 0);
    limitTo(RLIMIT_CPU, static_cast<unsigned long long>(limits.seconds) + 1);
    // Under the address sanitizer the shadow alone is larger than any limit; there the watching parent must
    // do.
    if (!addressSpaceIsShadowed)
        limitTo(RLIMIT_AS, memoryOf(getpid(), 0) + limits.megabytes * 1024 * 1024);
    folder.confineProcess();
    send(pipe, answerOf(read));
    _exit(0);
}

/// The child, seen from here. Gone, at the latest, when this is.
class Child {
  public:
    explicit Child(pid_t id) : _id(id) {}
    ~Child() {
        if (_id > 0) {
            kill(_id, SIGKILL);
            wait();
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t id() const { return _id; }

    int wait() {
        int status = 0;
        while (waitpid(_id, &status, 0) < 0 && errno == EINTR) {
        }
        _id = -1;
        return status;
    }

  private:
    pid_t _id;
};

/// Gathers the child's answer until it closes the pipe.
/// @param inherited  bytes of memory that the child began with, its parent's.
/// @throws Failure when it takes longer or grows larger than allowed.
std::string receive(int pipe, const Child& child, std::size_t inherited, const std::string& name,
                    const ReaderLimits& limits) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(limits.seconds));
    const std::size_t bytes = limits.megabytes * 1024 * 1024;
    std::string answer;
    std::vector<char> buffer(1 << 16);
    for (;;) {
        if (Clock::now() > end)
            throw unreadable(name,
                             "the reader was stopped after " + formatNumber(limits.seconds) + " seconds");
        if (memoryOf(child.id(), 1) > inherited + bytes || answer.size() > bytes)
            throw unreadable(name, "the reader was stopped: it uses more than " +
                                       std::to_string(limits.megabytes) + " MB of memory");
        struct pollfd ready {
            pipe, POLLIN, 0
        };
        if (poll(&ready, 1, 20) <= 0)
            continue;
        const ssize_t got = ::read(pipe, buffer.data(), buffer.size());
        if (got == 0)
            return answer;
        if (got > 0)
            answer.append(buffer.data(), static_cast<std::size_t>(got));
        else if (errno != EINTR)
            throw unreadable(name, std::string("no answer from the reader: ") + std::strerror(errno));
    }
}

std::string causeOfDeath(int status) {
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU)
        return "the reader used up its time";
    if (WIFSIGNALED(status))
        return std::string("the reader crashed (") + strsignal(WTERMSIG(status)) + ")";
    return "the reader crashed";
}

} // namespace

Motion readInChild(const ConfinedFolder& folder, const std::string& name, const ReaderLimits& limits,
                   const std::function<Motion()>& read) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw unreadable(name, std::string("no pipe to a reader: ") + std::strerror(errno));
    std::fflush(nullptr);
    const std::size_t inherited = memoryOf(getpid(), 1);
    const pid_t id = fork();
    if (id == 0)
        runChild(ends[1], folder, limits, read);
    close(ends[1]);
    const std::unique_ptr<int, void (*)(int*)> pipe(&ends[0], [](int* end) { close(*end); });
    if (id < 0)
        throw unreadable(name, std::string("no process for a reader: ") + std::strerror(errno));
    Child child(id);
    const std::string answer = receive(*pipe, child, inherited, name, limits);
    const int status = child.wait();
    if (answer.empty() || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw unreadable(name, causeOfDeath(status));
    if (answer.front() == reasonFollows)
        throw unreadable(name, oneLine(std::string_view(answer).substr(1)));
    std::optional<Motion> motion = unpackMotion(std::string_view(answer).substr(1));
    if (answer.front() != motionFollows || !motion)
        throw unreadable(name, "the reader's answer is damaged");
    return std::move(*motion);
}

} // namespace ka::tools
