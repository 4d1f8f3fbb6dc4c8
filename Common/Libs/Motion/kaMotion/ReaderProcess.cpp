#include "base/Descriptor.h"
#include "base/Sanitizer.h"
#include "readers/CallFilter.h"
#include "readers/ConfinedFolder.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <kaMotion/Failure.h>
#include <kaMotion/MotionStream.h>
#include <kaMotion/ReaderProcess.h>
#include <kaMotion/Text.h>
#include <memory>
#include <new>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ka::motion {

namespace {

using Clock = std::chrono::steady_clock;

/// Where the child's answer goes: the one descriptor above the standard streams that it has.
constexpr int answerDescriptor = 3;

// The first byte of the answer is the Confinement, sent before the reader sees the file. The second:
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

void limitTo(int resource, unsigned long long value, unsigned long long last) {
    const struct rlimit limit { static_cast<rlim_t>(value), static_cast<rlim_t>(last) };
    setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

void limitTo(int resource, unsigned long long value) {
    limitTo(resource, value, value);
}

/// Has the kernel end this process when `parent` ends; a parent that is gone already sends nothing any more.
void dieWith(pid_t parent) {
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent)
        _exit(1);
}

/// What the parent ignores or holds back is none of the child's.
void resetSignals() {
    for (int signal = 1; signal <= SIGRTMAX; ++signal)
        if (signal != SIGKILL && signal != SIGSTOP)
            std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Leaves the answer's descriptor and standard streams that lead nowhere.
void keepOnly(int answer) {
    if (answer != answerDescriptor && dup2(answer, answerDescriptor) < 0)
        _exit(1);
    closefrom(answerDescriptor + 1);
    const Descriptor nowhere(open("/dev/null", O_RDWR | O_CLOEXEC));
    for (int stream = 0; stream <= 2; ++stream)
        if (nowhere.get() != stream && dup2(nowhere.get(), stream) < 0)
            close(stream);
}

void limitResources(const ReaderLimits& limits) {
    const auto seconds = static_cast<unsigned>(std::ceil(limits.seconds)) + 1;
    alarm(seconds + 1);
    limitTo(RLIMIT_CORE, 0);
    limitTo(RLIMIT_FSIZE, 0);
    limitTo(RLIMIT_NPROC, 0);
    limitTo(RLIMIT_CPU, seconds, seconds + 1);
    // Under the address sanitizer the shadow alone is larger than any limit; there the watching parent must
    // do.
    if (!hasAddressSanitizer)
        limitTo(RLIMIT_AS, memoryOf(getpid(), 0) + limits.megabytes * 1024 * 1024);
}

Confinement confine(const ConfinedFolder& folder) {
    const bool isHeldToFolder = folder.confineProcess();
    if (!restrictSystemCalls(answerDescriptor))
        return Confinement::None;
    return isHeldToFolder ? Confinement::Whole : Confinement::CallsOnly;
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

[[noreturn]] void runChild(int answer, pid_t parent, const ConfinedFolder& folder, const ReaderLimits& limits,
                           const std::function<Motion()>& read) {
    dieWith(parent);
    resetSignals();
    keepOnly(answer);
    limitResources(limits);
    const Confinement reached = confine(folder);
    send(answerDescriptor, {static_cast<char>(reached)});
    if (reached != Confinement::None || limits.unconfined)
        send(answerDescriptor, answerOf(read));
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
        // Kept, unpacked and packed once more, an answer takes several times its size here.
        if (memoryOf(child.id(), 1) > inherited + bytes || answer.size() > bytes / 4)
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
    const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    switch (signal) {
    case 0:
        return "the reader crashed";
    case SIGSYS:
        return "the reader was stopped: it tried to do more than read, as a hostile file may make it do";
    case SIGXCPU:
    case SIGALRM:
        return "the reader used up its time";
    default:
        return std::string("the reader crashed (") + strsignal(signal) + ")";
    }
}

struct Pipe {
    Descriptor from, to;
};

/// A pipe beside the standard streams: with one of them closed, it would get their numbers.
std::optional<Pipe> makePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return std::nullopt;
    Pipe low{Descriptor(ends[0]), Descriptor(ends[1])};
    Pipe pipe{Descriptor(fcntl(low.from.get(), F_DUPFD_CLOEXEC, answerDescriptor)),
              Descriptor(fcntl(low.to.get(), F_DUPFD_CLOEXEC, answerDescriptor))};
    return pipe.from.isOpen() && pipe.to.isOpen() ? std::optional<Pipe>(std::move(pipe)) : std::nullopt;
}

/// The child's whole answer.
std::string ask(const ConfinedFolder& folder, const std::string& name, const ReaderLimits& limits,
                const std::function<Motion()>& read) {
    std::optional<Pipe> pipe = makePipe();
    if (!pipe)
        throw unreadable(name, std::string("no pipe to a reader: ") + std::strerror(errno));
    std::fflush(nullptr);
    const std::size_t inherited = memoryOf(getpid(), 1);
    const pid_t parent = getpid();
    const pid_t id = fork();
    if (id == 0)
        runChild(pipe->to.get(), parent, folder, limits, read);
    if (id < 0)
        throw unreadable(name, std::string("no process for a reader: ") + std::strerror(errno));
    Child child(id);
    pipe->to.close();
    std::string answer = receive(pipe->from.get(), child, inherited, name, limits);
    const int status = child.wait();
    if (answer.empty() || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw unreadable(name, causeOfDeath(status));
    return answer;
}

Failure failureOf(const std::string& name, const std::string& reason) {
    return !reason.empty() && reason.front() == ':' ? Failure(ExitCode::Unreadable, name + reason)
                                                    : unreadable(name, reason);
}

} // namespace

ReaderResult readInChild(const ConfinedFolder& folder, const std::string& name, const ReaderLimits& limits,
                         const std::function<Motion()>& read) {
    const std::string answer = ask(folder, name, limits, read);
    const auto confinement = static_cast<Confinement>(answer.front());
    if (confinement == Confinement::None && !limits.unconfined)
        throw unreadable(name, "not read: this system has no filters of system calls, which would hold the "
                               "reader to reading; --trust reads files of sources that are trusted");
    const std::string_view said = std::string_view(answer).substr(1);
    if (said.empty())
        throw unreadable(name, "the reader crashed");
    if (said.front() == reasonFollows)
        throw failureOf(name, oneLine(said.substr(1)));
    std::optional<Motion> motion = unpackMotion(said.substr(1));
    if (said.front() != motionFollows || !motion)
        throw unreadable(name, "the reader's answer is damaged");
    return {std::move(*motion), confinement};
}

} // namespace ka::motion
