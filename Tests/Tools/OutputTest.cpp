#include "cli/Output.h"

#include "ToolsTesting.h"
#include "base/Failure.h"

#include <csignal>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ka::tools {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;

std::size_t filesIn(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(ReplaceFile, WritesAndReplaces) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.path("a.txt");
    replaceFile(path, "first");
    EXPECT_EQ(testing::readFile(path), "first");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    replaceFile(path, "second");
    EXPECT_EQ(testing::readFile(path), "second");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(filesIn(folder.path("")), 1U);
}

TEST(ReplaceFile, WritesThroughALink) {
    const testing::TemporaryFolder folder;
    folder.write("real.txt", "old");
    fs::create_symlink("real.txt", folder.path("link.txt"));
    replaceFile(folder.path("link.txt"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.path("link.txt")));
    EXPECT_EQ(testing::readFile(folder.path("real.txt")), "new");
}

TEST(ReplaceFile, KeepsTheOldFileWhenTheNewOneDoesNotFit) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.write("a.txt", "old");
    struct rlimit before {};
    getrlimit(RLIMIT_FSIZE, &before);
    struct rlimit small {
        100, before.rlim_max
    };
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string message = testing::failureOf([&] { replaceFile(path, std::string(1000, 'x')); });
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_THAT(message, HasSubstr("a.txt: File too large"));
    EXPECT_EQ(testing::readFile(path), "old");
    EXPECT_EQ(filesIn(folder.path("")), 1U);
}

TEST(ReplaceFile, WritesIntoADeviceInsteadOfReplacingIt) {
    replaceFile("/dev/null", "text");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(ReplaceFile, SaysWhyItCannot) {
    const testing::TemporaryFolder folder;
    EXPECT_THAT(testing::failureOf([&] { replaceFile(folder.path("none/a.txt"), "x"); }),
                EndsWith("none/a.txt: No such file or directory"));
    EXPECT_THAT(testing::failureOf([&] { replaceFile(folder.path(""), "x"); }), EndsWith("Is a directory"));
    EXPECT_THAT(testing::failureOf([&] { replaceFile("/dev/full", "x"); }),
                EndsWith("No space left on device"));
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
