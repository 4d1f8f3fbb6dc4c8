#include "cli/Output.h"

#include "MotionTesting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <kaMotion/Failure.h>
#include <unistd.h>

namespace ka::tools {

using namespace motion;
namespace {

using ::testing::HasSubstr;

TEST(ReplaceFile, WritesAWholeFileOrSaysWhyNot) {
    const motion::testing::TemporaryFolder folder;
    replaceFile(folder.at("a.txt"), "text");
    EXPECT_EQ(motion::testing::contentOf(folder.at("a.txt")), "text");
    try {
        replaceFile(folder.at("none/a.txt"), "text");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::OutputFailed);
        EXPECT_THAT(failure.what(), HasSubstr("none"));
    }
}

/// Points standard output elsewhere for a while.
class StandardOutputAt {
  public:
    explicit StandardOutputAt(int descriptor) : _saved(dup(STDOUT_FILENO)) {
        dup2(descriptor, STDOUT_FILENO);
    }
    ~StandardOutputAt() {
        dup2(_saved, STDOUT_FILENO);
        close(_saved);
    }

  private:
    int _saved;
};

TEST(StandardOutput, CarriesDataOnly) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        const StandardOutputAt piped(ends[1]);
        close(ends[1]);
        Output output;
        output.write("data");
        ::testing::internal::CaptureStderr();
        std::printf("chatter of a library\n");
        std::fflush(stdout);
        ::testing::internal::GetCapturedStderr();
        output.finish();
    }
    char buffer[100];
    const ssize_t got = read(ends[0], buffer, sizeof buffer);
    close(ends[0]);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(std::max<ssize_t>(got, 0))), "data");
}

TEST(StandardOutput, AClosedPipeIsAFailureToWrite) {
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    const StandardOutputAt piped(ends[1]);
    close(ends[1]);
    Output output;
    output.write("data");
    EXPECT_EQ(testing::failureOf([&] { output.finish(); }), "standard output was closed by its reader");
}

} // namespace
} // namespace ka::tools
