// Code that stands in for a reader which a hostile file has taken over: each test is one deed that it tries,
// once as root and once as an ordinary user, first in a bare child to see that the deed works at all, then
// confined.

#include "MotionTesting.h"
#include "base/Descriptor.h"
#include "readers/ConfinedFolder.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <kaMotion/Failure.h>
#include <kaMotion/ReaderProcess.h>
#include <linux/sched.h>
#include <memory>
#include <netinet/in.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ka::motion {
namespace {

using testing::TemporaryFolder;

constexpr uid_t ordinaryUser = 65534;

volatile std::sig_atomic_t signals = 0;

/// What a taken-over reader could do harm to: the process that called it, with a file beside the model's
/// folder, one that stands open, sockets that listen and another process of the same user.
class World {
  public:
    World() {
        std::filesystem::create_directory(_temporary.at("models"));
        _temporary.put("models/a.x", "model");
        _temporary.put("victim", "whole");
        _open = Descriptor(::open(victim().c_str(), O_RDWR)); // inherited: without O_CLOEXEC
        chmod(victim().c_str(), 0640);
        stat(victim().c_str(), &_before);
        listenOn(_tcp, AF_INET, &_address, sizeof _address);
        socklen_t size = sizeof _address;
        getsockname(_tcp.get(), reinterpret_cast<sockaddr*>(&_address), &size);
        _path = unixAddress(_temporary.at("socket"));
        listenOn(_unix, AF_UNIX, &_path, sizeof _path);
        _abstract = unixAddress(std::string(1, '\0') + "ka-anim test " + std::to_string(getpid()));
        listenOn(_hidden, AF_UNIX, &_abstract, sizeof _abstract);
        std::signal(SIGUSR1, [](int) { signals = signals + 1; });
        prctl(PR_SET_CHILD_SUBREAPER, 1); // so that whatever outlives the reader becomes a child of ours
        _tool = getpid();
        _neighbour = fork();
        if (_neighbour == 0)
            for (;;)
                pause();
    }
    ~World() {
        kill(_neighbour, SIGKILL);
        waitpid(_neighbour, nullptr, 0);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    std::string model() const { return _temporary.at("models/a.x"); }
    std::string victim() const { return _temporary.at("victim"); }
    std::string at(const std::string& name) const { return _temporary.at(name); }
    int open() const { return _open.get(); }
    pid_t tool() const { return _tool; }
    pid_t neighbour() const { return _neighbour; }

    int connectTo(int domain, const void* address, socklen_t size) const {
        const int from = static_cast<int>(syscall(SYS_socket, domain, SOCK_STREAM, 0));
        return from < 0 ? from : static_cast<int>(syscall(SYS_connect, from, address, size));
    }
    int connectByTcp() const { return connectTo(AF_INET, &_address, sizeof _address); }
    int connectToUnixSocket() const { return connectTo(AF_UNIX, &_path, sizeof _path); }
    int connectToAbstractSocket() const { return connectTo(AF_UNIX, &_abstract, sizeof _abstract); }

    /// What is no longer as it was; empty when all is whole.
    std::string harm() const {
        std::string found;
        struct stat now {};
        if (stat(victim().c_str(), &now) != 0)
            found += " gone";
        else if (now.st_size != _before.st_size || now.st_mode != _before.st_mode || now.st_nlink != 1 ||
                 now.st_ctim.tv_sec != _before.st_ctim.tv_sec ||
                 now.st_ctim.tv_nsec != _before.st_ctim.tv_nsec)
            found += " changed";
        if (_temporary.entryCount() != 3)
            found += " files-made";
        for (const Descriptor* socket : {&_tcp, &_unix, &_hidden}) {
            struct pollfd called {
                socket->get(), POLLIN, 0
            };
            found += poll(&called, 1, 0) > 0 ? " connected" : "";
        }
        if (signals != 0)
            found += " signalled";
        int status = 0;
        for (pid_t child = 0; (child = waitpid(-1, &status, WNOHANG | WUNTRACED | __WALL)) > 0;)
            found += child == _neighbour ? " neighbour-hurt" : " process-left";
        return found + (hasLivingStranger() ? " process-left" : "");
    }

  private:
    static sockaddr_un unixAddress(const std::string& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        return address;
    }

    static void listenOn(Descriptor& made, int domain, const void* address, socklen_t size) {
        made = Descriptor(socket(domain, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (bind(made.get(), static_cast<const sockaddr*>(address), size) != 0 || listen(made.get(), 8) != 0)
            throw std::runtime_error(std::string("no socket that listens: ") + std::strerror(errno));
    }

    /// Whether any child is there but the neighbour.
    bool hasLivingStranger() const {
        kill(_neighbour, SIGKILL);
        waitpid(_neighbour, nullptr, 0);
        return waitpid(-1, nullptr, WNOHANG | __WALL) == 0;
    }

    TemporaryFolder _temporary;
    Descriptor _open, _tcp, _unix, _hidden;
    struct stat _before {};
    sockaddr_in _address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    sockaddr_un _path{}, _abstract{};
    pid_t _tool = 0, _neighbour = 0;
};

struct Deed {
    const char* name;
    long (*act)(const World&); ///< not below 0: it worked
    enum Needs { Nothing, Landlock, Root } needs = Nothing;
};

template <class Value>
long number(Value value) {
    return static_cast<long>(value);
}

long leaveChild(long id) {
    if (id == 0)
        for (;;)
            pause();
    return id;
}

// By number, past the C library and what a sanitizer puts before it, as an attacker's own code would. What
// has no number on every architecture is asked for by its function.
const Deed deeds[] = {
    {"ReadAFileBesideTheFolder",
     [](const World& w) { return syscall(SYS_openat, AT_FDCWD, w.victim().c_str(), O_RDONLY); },
     Deed::Landlock},
    {"ReadThePasswords", [](const World&) { return syscall(SYS_openat, AT_FDCWD, "/etc/passwd", O_RDONLY); },
     Deed::Landlock},
    {"OpenTheModelForWriting",
     [](const World& w) { return syscall(SYS_openat, AT_FDCWD, w.model().c_str(), O_WRONLY); }},
    {"OpenForWritingByAnotherCall",
     [](const World& w) {
         const std::uint64_t how[3]{O_RDWR, 0, 0};
         return syscall(SYS_openat2, AT_FDCWD, w.victim().c_str(), how, sizeof how);
     }},
    {"EmptyByOpening",
     [](const World& w) { return syscall(SYS_openat, AT_FDCWD, w.victim().c_str(), O_RDONLY | O_TRUNC); }},
    {"MakeAFile",
     [](const World& w) {
         return syscall(SYS_openat, AT_FDCWD, w.at("new").c_str(), O_RDONLY | O_CREAT, 0600);
     }},
    {"Truncate", [](const World& w) { return syscall(SYS_truncate, w.victim().c_str(), 0L); }},
    {"ChangeTheMode",
     [](const World& w) { return syscall(SYS_fchmodat, AT_FDCWD, w.victim().c_str(), 0777); }},
    {"ChangeTheOwner",
     [](const World& w) {
         return syscall(SYS_fchownat, AT_FDCWD, w.victim().c_str(), getuid(), getgid(), 0);
     }},
    {"ChangeTheDates",
     [](const World& w) { return syscall(SYS_utimensat, AT_FDCWD, w.victim().c_str(), nullptr, 0); }},
    {"SetAnAttribute",
     [](const World& w) { return number(syscall(SYS_setxattr, w.victim().c_str(), "user.a", "b", 1L, 0)); }},
    {"Delete", [](const World& w) { return syscall(SYS_unlinkat, AT_FDCWD, w.victim().c_str(), 0); }},
    {"Rename",
     [](const World& w) {
         return syscall(SYS_renameat2, AT_FDCWD, w.victim().c_str(), AT_FDCWD, w.at("b").c_str(), 0);
     }},
    {"Link",
     [](const World& w) {
         return syscall(SYS_linkat, AT_FDCWD, w.victim().c_str(), AT_FDCWD, w.at("b").c_str(), 0);
     }},
    {"LinkByName",
     [](const World& w) { return syscall(SYS_symlinkat, "victim", AT_FDCWD, w.at("b").c_str()); }},
    {"MakeAFolder", [](const World& w) { return syscall(SYS_mkdirat, AT_FDCWD, w.at("b").c_str(), 0700); }},
    {"MakeAPipeFile",
     [](const World& w) { return syscall(SYS_mknodat, AT_FDCWD, w.at("b").c_str(), S_IFIFO | 0600, 0); }},
    {"ReadAnInheritedDescriptor",
     [](const World& w) {
         char byte = 0;
         return number(syscall(SYS_pread64, w.open(), &byte, 1L, 0L));
     }},
    {"WriteToAnInheritedDescriptor",
     [](const World& w) { return number(syscall(SYS_pwrite64, w.open(), "spoilt", 6L, 0L)); }},
    {"TruncateAnInheritedDescriptor", [](const World& w) { return syscall(SYS_ftruncate, w.open(), 0L); }},
    {"ConnectByTcp", [](const World& w) { return number(w.connectByTcp()); }},
    {"ConnectToAUnixSocket", [](const World& w) { return number(w.connectToUnixSocket()); }},
    {"ConnectToAnAbstractSocket", [](const World& w) { return number(w.connectToAbstractSocket()); }},
    {"MakeADatagramSocket", [](const World&) { return syscall(SYS_socket, AF_INET, SOCK_DGRAM, 0); }},
    {"MakeAPairOfSockets",
     [](const World&) {
         int ends[2];
         return syscall(SYS_socketpair, AF_UNIX, SOCK_STREAM, 0, ends);
     }},
    {"SignalTheTool", [](const World& w) { return syscall(SYS_kill, w.tool(), SIGUSR1); }},
    {"SignalTheToolsThread", [](const World& w) { return syscall(SYS_tgkill, w.tool(), w.tool(), SIGUSR1); }},
    {"KillAnotherProcess", [](const World& w) { return syscall(SYS_kill, w.neighbour(), SIGKILL); }},
    {"HoldAnotherProcess", [](const World& w) { return syscall(SYS_pidfd_open, w.neighbour(), 0); }},
    {"TraceAnotherProcess",
     [](const World& w) { return syscall(SYS_ptrace, PTRACE_SEIZE, w.neighbour(), nullptr, nullptr); }},
    {"ReadTheMemoryOfTheTool",
     [](const World& w) {
         char byte = 0;
         struct iovec here {
             &byte, 1
         }, there{const_cast<World*>(&w), 1};
         return number(syscall(SYS_process_vm_readv, w.tool(), &here, 1L, &there, 1L, 0L));
     }},
    {"WriteTheMemoryOfTheTool",
     [](const World& w) {
         struct iovec here {
             const_cast<World*>(&w), 1
         }, there{const_cast<World*>(&w), 1};
         return number(syscall(SYS_process_vm_writev, w.tool(), &here, 1L, &there, 1L, 0L));
     }},
    {"SlowTheToolDown", [](const World& w) { return syscall(SYS_setpriority, PRIO_PROCESS, w.tool(), 5); }},
    {"LimitTheTool",
     [](const World& w) {
         struct rlimit limit {};
         return syscall(SYS_prlimit64, w.tool(), RLIMIT_CORE, nullptr, &limit);
     }},
    {"Fork", [](const World&) { return leaveChild(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0)); }},
    {"ForkByTheNewerCall",
     [](const World&) {
         struct clone_args how {};
         how.exit_signal = SIGCHLD;
         return leaveChild(syscall(SYS_clone3, &how, sizeof how));
     }},
    {"RunAProgram",
     [](const World&) {
         char name[] = "/bin/sleep", seconds[] = "1000";
         char* const words[]{name, seconds, nullptr};
         char* const none[]{nullptr};
         return syscall(SYS_execve, name, words, none);
     }},
    {"LeaveTheSession", [](const World&) { return syscall(SYS_setsid); }},
    {"OutliveTheTool", [](const World&) { return syscall(SYS_prctl, PR_SET_PDEATHSIG, 0, 0, 0, 0); }},
    {"HoldTheAlarmBack",
     [](const World&) {
         const std::uint64_t all = ~std::uint64_t{0};
         return syscall(SYS_rt_sigprocmask, SIG_BLOCK, &all, nullptr, sizeof all);
     }},
    {"SwitchTheAlarmOff",
     [](const World&) {
         const struct itimerval none {};
         return syscall(SYS_setitimer, ITIMER_REAL, &none, nullptr);
     }},
    {"RaiseItsLimits",
     [](const World&) {
         struct rlimit limit {};
         getrlimit(RLIMIT_CPU, &limit);
         return syscall(SYS_prlimit64, 0, RLIMIT_CPU, &limit, nullptr);
     }},
    {"MakeMemoryToRun",
     [](const World&) {
         void* made =
             mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
         return made == MAP_FAILED ? -1L : 0L;
     }},
    {"MakeAFileInMemory", [](const World&) { return syscall(SYS_memfd_create, "a", 0); }},
    {"LookAtAllProcesses",
     [](const World&) { return syscall(SYS_openat, AT_FDCWD, "/proc", O_RDONLY | O_DIRECTORY); },
     Deed::Landlock},
    {"ChangeRoot", [](const World&) { return syscall(SYS_chroot, "/"); }, Deed::Root},
    {"BecomeSomeoneElse", [](const World&) { return syscall(SYS_setresuid, 1, 1, 1); }, Deed::Root},
    {"SetAnotherFilter",
     [](const World&) {
         return syscall(SYS_prctl, PR_SET_SECCOMP, 0, 0, 0, 0) == 0 || errno != EPERM ? 0L : -1L;
     }},
};

enum class Way { Bare, Confined };

/// How the deed went, as one word, and the harm seen afterwards.
struct Outcome {
    std::string word, harm;
    Confinement confinement = Confinement::None;
};

std::string wordOf(long result) {
    return result >= 0 ? "done" : std::string("refused: ") + std::strerror(errno);
}

std::string doBare(const Deed& deed, const World& world) {
    const pid_t child = fork();
    if (child == 0)
        _exit(deed.act(world) >= 0 ? 0 : errno);
    int status = 0;
    // One that has become another program does not end by itself.
    for (int tries = 0; waitpid(child, &status, WNOHANG) == 0; ++tries) {
        if (tries == 100)
            kill(child, SIGKILL);
        usleep(5000);
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
        return std::string("refused: ") + std::strerror(WEXITSTATUS(status));
    return "done";
}

Confinement confinementHere(const World& world) {
    const ConfinedFolder folder(world.model());
    return readInChild(folder, "a.x", {256, 20.0, true}, [] { return Motion(); }).confinement;
}

std::string doConfined(const Deed& deed, const World& world) {
    const ConfinedFolder folder(world.model());
    const std::string failure = testing::failureOf([&] {
        readInChild(folder, "a.x", {256, 2.0},
                    [&]() -> Motion { throw Failure(ExitCode::Unreadable, wordOf(deed.act(world))); });
    });
    return failure.find("tried to do more than read") != failure.npos ? "stopped" : failure.substr(5);
}

void become(uid_t user) {
    if (user != 0 && getuid() == 0 && (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0))
        _exit(1);
    prctl(PR_SET_DUMPABLE, 1);
}

/// Plays the tool in a process of its own, whose end takes all that was made with it.
Outcome play(const Deed& deed, Way way, uid_t user) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {};
    const pid_t tool = fork();
    if (tool == 0) {
        setpgid(0, 0);
        become(user);
        std::string said;
        try {
            const World world;
            const auto confinement = way == Way::Bare ? Confinement::None : confinementHere(world);
            said = way == Way::Bare ? doBare(deed, world) : doConfined(deed, world);
            said = static_cast<char>(confinement) + said + "\n" + world.harm();
        } catch (const std::exception& failure) {
            said = std::string("?") + failure.what() + "\n";
        }
        _exit(write(ends[1], said.data(), said.size()) < 0 ? 1 : 0);
    }
    close(ends[1]);
    std::string said(4096, '\0');
    const ssize_t got = read(ends[0], said.data(), said.size());
    close(ends[0]);
    waitpid(tool, nullptr, 0);
    kill(-tool, SIGKILL); // what the bare deeds have left behind
    said.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    const std::size_t line = said.find('\n');
    if (line == said.npos)
        return {"the tool did not survive", "", Confinement::None};
    return {said.substr(1, line - 1), said.substr(line + 1), static_cast<Confinement>(said[0])};
}

enum class As { Root, OrdinaryUser };

class TakenOverReader : public ::testing::TestWithParam<std::tuple<const Deed*, As>> {};

TEST_P(TakenOverReader, CannotDoIt) {
    const Deed& deed = *std::get<0>(GetParam());
    const bool asRoot = std::get<1>(GetParam()) == As::Root;
    if (asRoot && getuid() != 0)
        GTEST_SKIP() << "only root can try this as root";
    if (!asRoot && deed.needs == Deed::Root)
        GTEST_SKIP() << "an ordinary user cannot do this anyway";
    const uid_t user = asRoot ? 0 : ordinaryUser;
    const Outcome confined = play(deed, Way::Confined, user);
    if (confined.confinement == Confinement::None)
        GTEST_SKIP() << "this kernel has no filters of system calls (" << confined.word << ")";
    if (deed.needs == Deed::Landlock && confined.confinement == Confinement::CallsOnly)
        GTEST_SKIP() << "this kernel has no Landlock: any file can be read";
    EXPECT_TRUE(confined.word == "stopped" || confined.word.rfind("refused", 0) == 0) << confined.word;
    EXPECT_EQ(confined.harm, "");
    const Outcome bare = play(deed, Way::Bare, user);
    if (bare.word != "done")
        GTEST_SKIP() << "this system lets nobody do it, confined or not: " << bare.word;
}

std::vector<const Deed*> allDeeds() {
    std::vector<const Deed*> all;
    for (const Deed& deed : deeds)
        all.push_back(&deed);
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<TakenOverReader::ParamType>& test) {
    return std::string(std::get<0>(test.param)->name) +
           (std::get<1>(test.param) == As::Root ? "AsRoot" : "AsAnOrdinaryUser");
}

INSTANTIATE_TEST_SUITE_P(Deeds, TakenOverReader,
                         ::testing::Combine(::testing::ValuesIn(allDeeds()),
                                            ::testing::Values(As::Root, As::OrdinaryUser)),
                         nameOf);

} // namespace
} // namespace ka::motion
