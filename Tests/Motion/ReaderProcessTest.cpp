#include "MotionTesting.h"
#include "readers/ConfinedFolder.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <gmock/gmock.h>
#include <kaMotion/Failure.h>
#include <kaMotion/ReaderProcess.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ka::motion {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ReaderProcessTest : public ::testing::Test {
  protected:
    std::string outcome(const std::function<Motion()>& read, ReaderLimits limits = {256, 20.0}) {
        return testing::failureOf([&] { _motion = readInChild(_folder, "a.x", limits, read).motion; });
    }

    testing::TemporaryFolder _temporary;
    ConfinedFolder _folder{_temporary.put("a.x", "model")};
    Motion _motion;
};

/// Keeps the compiler from seeing that memory is never used.
void touch(std::vector<char>& bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += 4096)
        bytes[i] = static_cast<char>(i);
}

TEST_F(ReaderProcessTest, BringsBackTheMotion) {
    EXPECT_EQ(outcome([] {
                  Motion motion;
                  motion.nodes.emplace_back().name = std::string(1 << 20, 'n'); // more than a pipe holds
                  motion.notes = {"a note"};
                  return motion;
              }),
              "no failure");
    ASSERT_EQ(_motion.nodes.size(), 1U);
    EXPECT_EQ(_motion.nodes[0].name.size(), 1U << 20);
}

TEST_F(ReaderProcessTest, PassesOnTheReadersReasonAsOneLine) {
    EXPECT_EQ(outcome([]() -> Motion { throw Failure(ExitCode::Unreadable, "line 3\nis wrong"); }),
              "a.x: line 3 is wrong");
    EXPECT_EQ(outcome([]() -> Motion { throw 5; }), "a.x: the reader failed");
}

TEST_F(ReaderProcessTest, TurnsEveryDeathIntoOneLine) {
    EXPECT_THAT(outcome([]() -> Motion { std::abort(); }), StartsWith("a.x: the reader crashed"));
    EXPECT_THAT(outcome([]() -> Motion {
                    std::raise(SIGSEGV);
                    return {};
                }),
                StartsWith("a.x: the reader crashed"));
    EXPECT_EQ(outcome([]() -> Motion { _exit(0); }), "a.x: the reader crashed");
}

TEST_F(ReaderProcessTest, StopsAReaderThatComputesForEverAndOneThatWaitsForEver) {
    const auto start = std::chrono::steady_clock::now();
    const auto compute = []() -> Motion {
        for (volatile int i = 0;; i = i + 1) {
        }
    };
    const auto wait = []() -> Motion {
        std::promise<Motion> never;
        return never.get_future().get();
    };
    for (const std::function<Motion()>& read :
         {std::function<Motion()>(compute), std::function<Motion()>(wait)})
        EXPECT_EQ(outcome(read, {256, 0.3}), "a.x: the reader was stopped after 0.3 seconds");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_F(ReaderProcessTest, StopsAReaderThatEatsMemory) {
    const auto eat = []() -> Motion {
        std::vector<std::vector<char>> eaten;
        for (;;) {
            eaten.emplace_back(std::size_t{1} << 24);
            touch(eaten.back());
        }
    };
    EXPECT_THAT(outcome(eat), AnyOf("a.x: the reader ran out of memory",
                                    "a.x: the reader was stopped: it uses more than 256 MB of memory"));
}

TEST_F(ReaderProcessTest, KeepsTheReadersChatterOffOurStreams) {
    ::testing::internal::CaptureStdout();
    outcome([]() -> Motion {
        std::printf("chatter");
        std::fflush(stdout);
        return {};
    });
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(ReaderProcessTest, LeavesNoChildBehind) {
    outcome([]() -> Motion { std::abort(); });
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1); // no child at all, not even a dead one
}

} // namespace
} // namespace ka::motion
