#include "FolderTest.h"
#include "Privilege.h"
#include "kaFile.h"
#include "kaFileWriter.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class FileWriter : public FolderTest {
  protected:
    // Tries to replace a file that has content and expects that content, and nothing beside it, to be there
    // after.
    void expectFailureKeepsOld(std::size_t size, const std::string& reason) {
        put("file", "old");
        std::string error;
        EXPECT_FALSE(kaFile::writeSafely(at("file"), std::string(size, 'n'), error));
        EXPECT_EQ(error, "cannot write '" + at("file") + "': " + reason);
        EXPECT_EQ(ka_test::contentOf(at("file")), "old");
        EXPECT_EQ(fileCount(), 1U);
    }
    static std::string errorOf(const std::string& name) {
        std::string error;
        EXPECT_FALSE(kaFile::writeSafely(name, "new", error));
        return error;
    }
    static unsigned modeOf(const std::string& name) {
        struct stat status {};
        EXPECT_EQ(::stat(name.c_str(), &status), 0);
        return status.st_mode;
    }
};

// The greatest size of files that this process may write, for a scope. Going beyond it kills, as is usual:
// whoever started this process may have had that ignored.
class SizeLimit {
  public:
    explicit SizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &_before);
        const rlimit limit{bytes, _before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &_before);
        std::signal(SIGXFSZ, _handler);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

  private:
    rlimit _before{};
    void (*_handler)(int) = std::signal(SIGXFSZ, SIG_DFL);
};

} // namespace

TEST_F(FileWriter, MakesAndReplacesAFile) {
    std::string error = "untouched";
    EXPECT_TRUE(kaFile::writeSafely(at("file"), "first", error));
    EXPECT_EQ(ka_test::contentOf(at("file")), "first");
    EXPECT_TRUE(kaFile::writeSafely(at("file"), "", error));
    EXPECT_EQ(ka_test::contentOf(at("file")), "");
    EXPECT_EQ(error, "untouched");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileWriter, JoinsPiecesOfEverySize) {
    std::string expected;
    kaFileWriter writer(at("file"));
    for (const std::size_t size : {1U, 65535U, 1U, 65536U, 0U, 65537U, 300000U, 3U}) {
        const std::string piece(size, static_cast<char>('a' + size % 26));
        EXPECT_TRUE(writer.write(piece));
        expected += piece;
    }
    writer.getStream() << 42 << '!' << std::string(70000, 's');
    expected += "42!" + std::string(70000, 's');
    EXPECT_FALSE(fs::exists(at("file")));
    EXPECT_TRUE(writer.commit());
    EXPECT_TRUE(ka_test::contentOf(at("file")) == expected);
}

TEST_F(FileWriter, IsDoneAfterCommit) {
    kaFileWriter writer(at("file"));
    writer.write("whole");
    EXPECT_TRUE(writer.commit());
    EXPECT_FALSE(writer.write("more"));
    EXPECT_FALSE(writer.getStream() << "more");
    EXPECT_FALSE(writer.commit());
    EXPECT_EQ(ka_test::contentOf(at("file")), "whole");
}

TEST_F(FileWriter, LeavesNoTraceWithoutCommit) {
    put("file", "old");
    {
        kaFileWriter forgotten(at("file"));
        forgotten.write(std::string(100000, 'n'));
        kaFileWriter cancelled(at("file"));
        cancelled.write("new");
        cancelled.cancel();
        EXPECT_FALSE(cancelled.commit());
    }
    EXPECT_EQ(ka_test::contentOf(at("file")), "old");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileWriter, KeepsTheOldFileBeyondTheSizeLimit) {
    const SizeLimit limit(1000);
    expectFailureKeepsOld(1001, "File too large");
    expectFailureKeepsOld(200000, "File too large");
}

TEST_F(FileWriter, WritesUpToTheSizeLimit) {
    const SizeLimit limit(1000);
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely(at("file"), std::string(1000, 'n'), error)) << error;
}

TEST_F(FileWriter, RefusesWhatCannotBeAFile) {
    put("file", "");
    fs::create_symlink(at("round"), at("round"));
    EXPECT_EQ(errorOf(""), "cannot write '': Invalid argument");
    EXPECT_EQ(errorOf(_folder.path().string()),
              "cannot write '" + _folder.path().string() + "': Is a directory");
    EXPECT_EQ(errorOf(at("missing/x")), "cannot write '" + at("missing/x") + "': No such file or directory");
    EXPECT_EQ(errorOf(at("file/x")), "cannot write '" + at("file/x") + "': Not a directory");
    EXPECT_EQ(errorOf(at("round")), "cannot write '" + at("round") + "': Too many levels of symbolic links");
    EXPECT_EQ(errorOf("/proc/kaTest"), "cannot write '/proc/kaTest': No such file or directory");
    EXPECT_EQ(fileCount(), 2U);
}

TEST_F(FileWriter, RefusesAReadOnlyFileAndAClosedFolder) {
    put("readonly", "old");
    fs::permissions(at("readonly"), fs::perms(0444));
    fs::create_directory(at("closed"));
    fs::permissions(at("closed"), fs::perms(0555));
    fs::permissions(_folder.path(), fs::perms::all);

    const WithoutPrivilege plain;
    ASSERT_TRUE(plain.isInForce());
    EXPECT_EQ(errorOf(at("readonly")), "cannot write '" + at("readonly") + "': Permission denied");
    EXPECT_EQ(errorOf(at("closed/x")), "cannot write '" + at("closed/x") + "': Permission denied");
    EXPECT_EQ(ka_test::contentOf(at("readonly")), "old");
}

TEST_F(FileWriter, KeepsPermissionsAndLinks) {
    put("target", "old");
    fs::permissions(at("target"), fs::perms(0640));
    fs::create_symlink("target", at("link"));
    fs::create_symlink("made", at("dangling"));
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely(at("link"), "new", error));
    EXPECT_TRUE(kaFile::writeSafely(at("dangling"), "made", error));
    EXPECT_EQ(ka_test::contentOf(at("target")), "new");
    EXPECT_EQ(ka_test::contentOf(at("made")), "made");
    EXPECT_TRUE(fs::is_symlink(at("link")));
    EXPECT_TRUE(fs::is_symlink(at("dangling")));
    EXPECT_EQ(modeOf(at("target")) & 0777U, 0640U);
}

TEST_F(FileWriter, GivesANewFileTheUsualPermissions) {
    const mode_t before = ::umask(027);
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely(at("file"), "new", error));
    ::umask(before);
    EXPECT_EQ(modeOf(at("file")) & 0777U, 0640U);
}

TEST_F(FileWriter, FitsBesideATargetWithTheLongestName) {
    const std::string name = at(std::string(255, 'x'));
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely(name, "new", error)) << error;
    EXPECT_EQ(ka_test::contentOf(name), "new");
}

/// Without root's rights, or a writer that does replace it would leave the machine without.
TEST_F(FileWriter, NeverReplacesADevice) {
    const WithoutPrivilege user;
    if (!user.isInForce())
        GTEST_SKIP() << "root's rights cannot be laid down here";
    ASSERT_TRUE(S_ISCHR(modeOf("/dev/full")));
    EXPECT_EQ(errorOf("/dev/full"), "cannot write '/dev/full': No space left on device");
    EXPECT_TRUE(S_ISCHR(modeOf("/dev/full")));
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely("/dev/null", "gone", error)) << error;
    EXPECT_TRUE(S_ISCHR(modeOf("/dev/null")));
}

TEST_F(FileWriter, WritesToAFileInTheCurrentFolderByItsBareName) {
    const fs::path before = fs::current_path();
    fs::current_path(_folder.path());
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely("bare", "new", error)) << error;
    fs::current_path(before);
    EXPECT_EQ(ka_test::contentOf(at("bare")), "new");
}

TEST_F(FileWriter, DoesNotWaitForTheReaderOfAPipe) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOf(at("pipe")), "cannot write '" + at("pipe") + "': nobody reads from this pipe");
}

TEST_F(FileWriter, WritesToAPipeThatIsRead) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    const int reader = ::open(at("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    std::string error;
    EXPECT_TRUE(kaFile::writeSafely(at("pipe"), "through", error)) << error;
    char bytes[16]{};
    EXPECT_EQ(::read(reader, bytes, sizeof bytes), 7);
    EXPECT_STREQ(bytes, "through");
    ::close(reader);
}

TEST_F(FileWriter, SurvivesTheReaderOfAPipeThatGoesAway) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    const int reader = ::open(at("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    kaFileWriter writer(at("pipe"));
    writer.write("x");
    ::close(reader);
    void (*const before)(int) = std::signal(SIGPIPE, SIG_DFL);
    EXPECT_FALSE(writer.commit());
    std::signal(SIGPIPE, before);
    EXPECT_EQ(writer.getError(), "cannot write '" + at("pipe") + "': Broken pipe");
}
