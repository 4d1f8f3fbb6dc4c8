#include "MotionTesting.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <random>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int endings[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

/// A `ka-anim` in a process group of its own, and all that it starts, told by a mark in their environment.
class MarkedProgram {
  public:
    /// @param prepare  runs in the new process before the program; false gives up.
    MarkedProgram(const std::vector<std::string>& arguments, const std::string& folder,
                  const std::function<bool()>& prepare = {})
        : _mark("KA_TEST_MARK=" + std::to_string(getpid()) + "-" + std::to_string(++_count)) {
        _child = fork();
        if (_child == 0)
            run(arguments, folder, prepare);
        setpgid(_child, _child);
    }
    ~MarkedProgram() {
        if (_child > 0) {
            kill(-_child, SIGKILL);
            waitpid(_child, nullptr, 0);
        }
    }
    MarkedProgram(const MarkedProgram&) = delete;
    MarkedProgram& operator=(const MarkedProgram&) = delete;

    void signal(int number, bool toWholeGroup) const { kill(toWholeGroup ? -_child : _child, number); }

    /// @return as waitpid() tells it; -1 when it has not ended after ten seconds.
    int wait() {
        int status = -1;
        for (int i = 0; i < 10000; ++i) {
            if (waitpid(_child, &status, WNOHANG) == _child) {
                _child = -1;
                return status;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return -1;
    }

    /// Whether everything that it started is gone, two seconds from now at the latest.
    bool isAllGone() const {
        for (const auto until = Clock::now() + std::chrono::seconds(2); Clock::now() < until;) {
            if (!isAnyThere())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return false;
    }

  private:
    [[noreturn]] void run(const std::vector<std::string>& arguments, const std::string& folder,
                          const std::function<bool()>& prepare) {
        setpgid(0, 0);
        for (const int ending : endings)
            std::signal(ending, SIG_DFL);
        dup2(open("/dev/null", O_RDWR), STDOUT_FILENO);
        dup2(STDOUT_FILENO, STDERR_FILENO);
        const std::string program = std::string(KA_ANIM_FOLDER) + "/ka-anim";
        std::vector<char*> words{const_cast<char*>(program.c_str())};
        for (const std::string& word : arguments)
            words.push_back(const_cast<char*>(word.c_str()));
        words.push_back(nullptr);
        // Without /proc the loader does not know the folder that a program's libraries are named relative to.
        std::string libraries = "LD_LIBRARY_PATH=" KA_ANIM_FOLDER "/../lib";
        char* environment[] = {_mark.data(), libraries.data(), nullptr};
        if (chdir(folder.c_str()) == 0 && (!prepare || prepare()))
            execve(words[0], words.data(), environment);
        _exit(127);
    }

    bool isAnyThere() const {
        for (const auto& process : fs::directory_iterator("/proc")) {
            std::ifstream file(process.path() / "environ", std::ios::binary);
            std::string environment((std::istreambuf_iterator<char>(file)), {});
            if (environment.find(_mark + '\0') != environment.npos)
                return true;
        }
        return false;
    }

    static inline int _count = 0;
    std::string _mark;
    pid_t _child = -1;
};

class Signals : public ::testing::Test {
  protected:
    std::vector<std::string> temporaries() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(_folder.path()))
            if (entry.path().filename().string().rfind(".ka-", 0) == 0)
                names.push_back(entry.path().filename().string());
        return names;
    }

    /// Ends a save that has written its scene and waits for the reader of its document.
    void endWhileItSaves(int signal, const std::function<bool()>& prepare, std::size_t temporariesBefore) {
        _folder.put("walk.bvh", shortCapture(400));
        _folder.put("walk.osg", "old");
        const std::string pipe = _folder.at("pipe.xml");
        fs::remove(pipe);
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
        MarkedProgram program({"convert", "walk.bvh", "-o", "walk.osg", "--animation", "pipe.xml"},
                              _folder.at(""), prepare);
        // Its first bytes come when the scene has been written, and the pipe does not hold all of them.
        char byte = 0;
        for (int i = 0; i < 10000 && read(reader, &byte, 1) != 1; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(byte, '<');
        EXPECT_EQ(temporaries().size(), temporariesBefore);
        program.signal(signal, false);
        const int status = program.wait();
        close(reader);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << ": " << status;
        EXPECT_EQ(temporaries().size(), 0U) << signal;
        EXPECT_EQ(contentOf(_folder.at("walk.osg")), "old");
        EXPECT_TRUE(program.isAllGone());
    }

    TemporaryFolder _folder;
};

TEST_F(Signals, LeaveNothingOfASave) {
    for (const int signal : endings)
        endWhileItSaves(signal, {}, 0);
}

/// Without /proc no file without a name could be given one.
bool hideProc() {
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", "/proc", "tmpfs", 0, nullptr) == 0;
}

TEST_F(Signals, LeaveNothingOfASaveWhereEveryFileNeedsAName) {
    const pid_t child = fork();
    if (child == 0)
        _exit(hideProc() ? 0 : 1);
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0)
        GTEST_SKIP() << "/proc cannot be hidden here";
    for (const int signal : endings)
        endWhileItSaves(signal, hideProc, 1);
}

TEST_F(Signals, ThatTheCallerHasHadIgnoredStayIgnored) {
    _folder.put("walk.bvh", shortCapture(31));
    const auto ignore = [] { return std::signal(SIGHUP, SIG_IGN) != SIG_ERR; };
    for (const char* command : {"info", "play"}) {
        MarkedProgram program({command, "walk.bvh"}, _folder.at(""), ignore);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        program.signal(SIGHUP, false);
        EXPECT_EQ(program.wait(), 0) << command;
    }
}

TEST_F(Signals, EndWhatPlaysToNobodyTheSecondTime) {
    _folder.put("walk.bvh", shortCapture(31));
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    MarkedProgram program({"play", "walk.bvh", "--frames", "1000000", "--repeat", "--format", "json"},
                          _folder.at(""), [&ends] { return dup2(ends[1], STDOUT_FILENO) >= 0; });
    char byte = 0;
    ASSERT_EQ(read(ends[0], &byte, 1), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the pipe fills
    program.signal(SIGTERM, false);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    program.signal(SIGTERM, false);
    const int status = program.wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    close(ends[0]);
    close(ends[1]);
}

/// At moments all over a run, to the program alone and to its whole group as a terminal does.
TEST_F(Signals, LeaveNothingAtAnyMoment) {
    _folder.put("walk.bvh", shortCapture(97));
    const std::string model = modelPath("FBX/animation_with_skeleton.fbx");
    const std::string third = fs::exists(model) ? model : modelPath("glTF2/simple_skin/simple_skin.gltf");
    const std::vector<std::vector<std::string>> commands{
        {"convert", third, "-o", "walk.osg", "--animation", "walk.xml"},
        {"convert", "walk.bvh", "-o", "walk.osg", "--animation", "walk.xml"},
        {"demo", "walk.bvh", "-o", "pictures"}};
    std::mt19937 random(11);
    int ended = 0;
    for (const auto& command : commands) {
        const auto begin = Clock::now();
        MarkedProgram whole(command, _folder.at(""));
        ASSERT_EQ(whole.wait(), 0) << command[0] << " " << command[1];
        const std::chrono::duration<double> length = Clock::now() - begin;
        for (int round = 0; round < 8; ++round) {
            MarkedProgram program(command, _folder.at(""));
            std::this_thread::sleep_for(length * std::uniform_real_distribution<>(0.0, 1.0)(random));
            program.signal(endings[round % 4], round % 8 < 4);
            const int status = program.wait();
            ended += WIFSIGNALED(status) ? 1 : 0;
            EXPECT_TRUE(WIFSIGNALED(status) || status == 0) << status;
            EXPECT_TRUE(program.isAllGone()) << command[1] << ", round " << round;
            EXPECT_EQ(temporaries().size(), 0U) << command[1] << ", round " << round;
        }
    }
    EXPECT_GT(ended, 8) << "the runs were over before they could be ended";
}

} // namespace
} // namespace ka::tools::testing
