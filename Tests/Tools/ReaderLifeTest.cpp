// A reader's process from outside: how it ends, where it finds itself, and what the program says of it.

#include "MotionTesting.h"
#include "ProgramRun.h"
#include "readers/ConfinedFolder.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <kaMotion/ReaderProcess.h>
#include <pthread.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ka::tools {

using namespace motion;
namespace {

using ::testing::HasSubstr;
using testing::ProgramRun;
using testing::runKaAnim;
using namespace std::chrono_literals;

/// Waits until `isSo`, for ten seconds at most.
bool comes(const std::function<bool()>& isSo) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

/// A process that waits for a reader, which waits for ever.
class WaitingTool {
  public:
    /// @param prepare  called in the tool before it starts the reader.
    explicit WaitingTool(
        ReaderLimits limits, void (*prepare)() = [] {}) {
        // Whatever outlives the tool becomes a child of this process.
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        _id = fork();
        if (_id == 0) {
            setpgid(0, 0);
            prepare();
            testing::failureOf([&] {
                readInChild(_folder, "a.x", limits, [] { return std::promise<Motion>().get_future().get(); });
            });
            _exit(0);
        }
        setpgid(_id, _id); // whichever of the two comes first
    }
    ~WaitingTool() {
        kill(-_id, SIGKILL);
        while (waitpid(-_id, nullptr, 0) > 0) {
        }
        prctl(PR_SET_CHILD_SUBREAPER, 0);
    }
    WaitingTool(const WaitingTool&) = delete;
    WaitingTool& operator=(const WaitingTool&) = delete;

    pid_t id() const { return _id; }

    /// Whether the tool and its reader, all of their group, are gone.
    bool isGone() const {
        while (waitpid(-_id, nullptr, WNOHANG) > 0) {
        }
        return kill(-_id, 0) != 0 && errno == ESRCH;
    }

    /// The tool's one child; 0 when it has none.
    pid_t reader() const {
        pid_t found = 0;
        std::ifstream("/proc/" + std::to_string(_id) + "/task/" + std::to_string(_id) + "/children") >> found;
        return found;
    }

  private:
    testing::TemporaryFolder _temporary;
    ConfinedFolder _folder{_temporary.put("a.x", "model")};
    pid_t _id = 0;
};

TEST(ReaderLife, EndsWithItsToolWhateverTheMoment) {
    for (int round = 0; round < 60; ++round) {
        const WaitingTool tool({256, 60.0});
        std::this_thread::sleep_for(round * 40us);
        kill(tool.id(), round % 2 == 0 ? SIGTERM : SIGKILL);
        ASSERT_TRUE(comes([&] { return tool.isGone(); })) << "round " << round;
    }
}

TEST(ReaderLife, EndsWithAToolThatIsGoneBeforeTheReaderBegins) {
    const WaitingTool tool({256, 60.0}, [] {
        pthread_atfork(
            nullptr, [] { raise(SIGKILL); }, [] { std::this_thread::sleep_for(100ms); });
    });
    EXPECT_TRUE(comes([&] { return tool.isGone(); }));
}

TEST(ReaderLife, EndsByItsOwnAlarmWhileItsToolStandsStill) {
    const WaitingTool tool({256, 0.2});
    pid_t reader = 0;
    if (!comes([&] { return (reader = tool.reader()) != 0; }))
        GTEST_SKIP() << "this kernel does not tell the children of a process";
    kill(tool.id(), SIGSTOP);
    EXPECT_TRUE(comes([&] {
        std::string id, name, state;
        std::ifstream("/proc/" + std::to_string(reader) + "/stat") >> id >> name >> state;
        return state != "S" && state != "R" && state != "D"; // dead, though nobody has asked for its end yet
    }));
    kill(tool.id(), SIGCONT);
}

TEST(ReaderLife, ReadsWithTheStandardStreamsClosed) {
    const std::string model = testing::modelPath("X/test.x");
    for (const char* closed : {"<&-", ">&-", "<&- >&-", "<&- >&- 2>&-"}) {
        const ProgramRun run = testing::runShell("ka-anim import " + model + " " + closed, "/");
        EXPECT_EQ(run.code, 0) << closed << ": " << run.messages;
    }
}

/// Has the kernel answer as one does that lacks what confines a reader.
class Without {
  public:
    Without& filters() {
        _prctl = true;
        _calls.push_back(SCMP_SYS(seccomp));
        return *this;
    }
    Without& landlock() {
        _calls.push_back(SCMP_SYS(landlock_create_ruleset));
        return *this;
    }

    ProgramRun run(const std::vector<std::string>& arguments) const {
        return runKaAnim(arguments, "/", [this] {
            const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
            for (const int call : _calls)
                seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), call, 0);
            const scmp_arg_cmp asksForFilter{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
            if (_prctl)
                seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(prctl), 1, &asksForFilter);
            if (seccomp_load(filter) != 0)
                _exit(99);
        });
    }

  private:
    std::vector<int> _calls;
    bool _prctl = false;
};

constexpr int noFilterToTestWith = 99;

TEST(ReaderLife, WithoutFiltersOfCallsForeignReadersNeedTrust) {
    const testing::TemporaryFolder folder;
    const std::string capture = folder.put("walk.bvh", testing::shortCapture(3));
    const std::string model = testing::modelPath("X/test.x");
    for (const Without& without : {Without().filters(), Without().filters().landlock()}) {
        const ProgramRun refused = without.run({"import", model});
        if (refused.code == noFilterToTestWith)
            GTEST_SKIP() << "this kernel has no filters of system calls";
        EXPECT_EQ(refused.code, 3);
        EXPECT_TRUE(refused.isOneLine());
        EXPECT_THAT(refused.messages, HasSubstr("no filters of system calls"));
        EXPECT_THAT(refused.messages, HasSubstr("--trust"));
        const ProgramRun trusted = without.run({"import", model, "--trust"});
        EXPECT_EQ(trusted.code, 0);
        EXPECT_THAT(trusted.messages, HasSubstr("cannot confine the reader of a model"));
        const ProgramRun own = without.run({"import", capture});
        EXPECT_EQ(own.code, 0);
        EXPECT_EQ(own.messages.find("confine"), own.messages.npos) << own.messages;
    }
}

TEST(ReaderLife, WithoutLandlockItReadsAndSaysSoOnce) {
    const std::string model = testing::modelPath("X/test.x");
    const ProgramRun run = Without().landlock().run({"diff", model, model});
    if (run.code == noFilterToTestWith)
        GTEST_SKIP() << "this kernel has no filters of system calls";
    EXPECT_EQ(run.code, 0);
    const std::size_t first = run.messages.find("no Landlock");
    EXPECT_NE(first, run.messages.npos) << run.messages;
    EXPECT_EQ(run.messages.find("no Landlock", first + 1), run.messages.npos) << run.messages;
}

TEST(ReaderLife, WhereTheKernelHasAllOfItNothingIsSaid) {
    const ProgramRun run = runKaAnim({"import", testing::modelPath("X/test.x"), "--trust"});
    EXPECT_EQ(run.code, 0);
    if (run.messages.find("Landlock") != run.messages.npos)
        GTEST_SKIP() << "this kernel has no Landlock";
    EXPECT_EQ(run.messages.find("confine"), run.messages.npos) << run.messages;
}

} // namespace
} // namespace ka::tools
