#include "AsUser.h"
#include "FolderTest.h"
#include "kaFile.h"
#include "kaFileWriter.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr uid_t OWNER = 41001, SAVER = 41002, NAMED = 41003, STRANGER = 41004;
constexpr gid_t GROUP = 42001, SAVERS = 42002, NAMED_GROUP = 42003, NOBODYS = 42004;

/// One entry of an access list as the system stores it.
struct Entry {
    std::uint16_t kind, rights;
    std::uint32_t id;
};
constexpr std::uint32_t NO_ID = 0xFFFFFFFF;
constexpr std::uint16_t USER_OBJ = 1, USER = 2, GROUP_OBJ = 4, GROUP_ENTRY = 8, MASK = 16, OTHER = 32;
constexpr const char* LIST = "system.posix_acl_access";
constexpr const char* INHERITED_LIST = "system.posix_acl_default";

std::string bytesOf(const std::vector<Entry>& entries) {
    std::string bytes("\2\0\0\0", 4);
    for (const Entry& entry : entries)
        bytes.append(reinterpret_cast<const char*>(&entry), sizeof entry);
    return bytes;
}

class FileRights : public FolderTest {
  protected:
    void SetUp() override { fs::permissions(_folder.path(), fs::perms::all); }

    void putOwned(const std::string& name, uid_t user, gid_t group, unsigned mode) const {
        put(name, "old");
        ASSERT_EQ(::chown(at(name).c_str(), user, group), 0);
        ASSERT_EQ(::chmod(at(name).c_str(), mode), 0);
    }

    struct stat statusOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(::lstat(at(name).c_str(), &status), 0);
        return status;
    }
    unsigned modeOf(const std::string& name) const { return statusOf(name).st_mode & 07777U; }

    std::string attributeOf(const std::string& name, const char* attribute) const {
        std::string value(65536, '\0');
        const ssize_t size = ::lgetxattr(at(name).c_str(), attribute, value.data(), value.size());
        value.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        return size < 0 ? "none" : value;
    }
    bool setAttribute(const std::string& name, const char* attribute, const std::string& value) const {
        return ::lsetxattr(at(name).c_str(), attribute, value.data(), value.size(), 0) == 0;
    }

    /// Replaces a file by one with "new" in it.
    /// @return the warning; the error when it failed.
    std::string save(const std::string& name) const {
        std::string error, warning;
        return kaFile::writeSafely(at(name), "new", error, warning) ? warning : error;
    }
    std::string warningAbout(const std::string& name, const std::string& what) const {
        return "'" + at(name) + "' could not keep " + what + "; nobody may do more with it than before";
    }
};

/// Those that need several users.
class FileRightsOfOthers : public FileRights {
  protected:
    void SetUp() override {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only root can act as several users";
        FileRights::SetUp();
    }
    std::string saveAs(const std::string& name, uid_t user, const std::vector<gid_t>& groups) const {
        const AsUser other(user, groups);
        EXPECT_TRUE(other.isInForce());
        return save(name);
    }
};

struct Person {
    const char* who;
    uid_t user;
    std::vector<gid_t> groups;
};

const std::vector<Person> people{
    {"the owner, of the file's group", OWNER, {GROUP}},
    {"the owner, of the saver's group", OWNER, {SAVERS}},
    {"a member of the file's group", STRANGER, {GROUP}},
    {"a member of the saver's group", STRANGER, {SAVERS}},
    {"a member of both", STRANGER, {GROUP, SAVERS}},
    {"the named user", NAMED, {NOBODYS}},
    {"the named user, of the saver's group", NAMED, {SAVERS}},
    {"the named user, of the file's group", NAMED, {GROUP}},
    {"a member of the named group", STRANGER, {NAMED_GROUP}},
    {"a member of the named group and the saver's", STRANGER, {NAMED_GROUP, SAVERS}},
    {"a member of the named group and the file's", STRANGER, {NAMED_GROUP, GROUP}},
    {"a stranger", STRANGER, {NOBODYS}},
};

/// What the system lets each of the people do, as one digit of a mode.
std::vector<int> rightsOfPeople(const std::string& path) {
    std::vector<int> rights;
    for (const Person& person : people) {
        const AsUser other(person.user, person.groups);
        int digit = 0;
        for (const int right : {R_OK, W_OK, X_OK})
            digit |= ::faccessat(AT_FDCWD, path.c_str(), right, AT_EACCESS) == 0 ? right : 0;
        rights.push_back(digit);
    }
    return rights;
}

} // namespace

TEST_F(FileRights, GoOverToTheNewFileWithItsAttributes) {
    put("file", "old");
    fs::permissions(at("file"), fs::perms(0604));
    if (!setAttribute("file", "user.note", std::string("a\0b", 3)) ||
        !setAttribute("file", "user.empty", "") || !setAttribute("file", "user.long", std::string(3000, 'l')))
        GTEST_SKIP() << "the file system of the temporary folder has no extended attributes";
    EXPECT_EQ(save("file"), "");
    EXPECT_EQ(ka_test::contentOf(at("file")), "new");
    EXPECT_EQ(modeOf("file"), 0604U);
    EXPECT_EQ(attributeOf("file", "user.note"), std::string("a\0b", 3));
    EXPECT_EQ(attributeOf("file", "user.empty"), "");
    EXPECT_EQ(attributeOf("file", "user.long"), std::string(3000, 'l'));
}

TEST_F(FileRights, IncludeTheAccessList) {
    put("file", "old");
    const std::string list = bytesOf({{USER_OBJ, 6, NO_ID},
                                      {USER, 4, NAMED},
                                      {GROUP_OBJ, 0, NO_ID},
                                      {GROUP_ENTRY, 6, NAMED_GROUP},
                                      {MASK, 6, NO_ID},
                                      {OTHER, 0, NO_ID}});
    if (!setAttribute("file", LIST, list))
        GTEST_SKIP() << "the file system of the temporary folder has no access lists";
    EXPECT_EQ(save("file"), "");
    EXPECT_EQ(attributeOf("file", LIST), list);
    EXPECT_EQ(modeOf("file"), 0660U);
}

TEST_F(FileRights, AreNotThoseThatAFolderHandsDown) {
    put("file", "old");
    fs::permissions(at("file"), fs::perms(0640));
    const std::string handedDown = bytesOf(
        {{USER_OBJ, 7, NO_ID}, {USER, 7, NAMED}, {GROUP_OBJ, 7, NO_ID}, {MASK, 7, NO_ID}, {OTHER, 7, NO_ID}});
    if (!setAttribute(".", INHERITED_LIST, handedDown))
        GTEST_SKIP() << "the file system of the temporary folder has no access lists";
    EXPECT_EQ(save("file"), "");
    EXPECT_EQ(attributeOf("file", LIST), "none");
    EXPECT_EQ(modeOf("file"), 0640U);
    // A file that was not there before takes them like any other new file.
    put("by hand", "");
    EXPECT_EQ(save("new"), "");
    EXPECT_EQ(attributeOf("new", LIST), attributeOf("by hand", LIST));
    EXPECT_EQ(modeOf("new"), modeOf("by hand"));
}

TEST_F(FileRights, AreThoseOfTheMomentOfTheCommit) {
    put("file", "old");
    kaFileWriter writer(at("file"));
    writer.write("new");
    fs::permissions(at("file"), fs::perms(0600));
    EXPECT_TRUE(writer.commit());
    EXPECT_EQ(modeOf("file"), 0600U);

    fs::permissions(at("file"), fs::perms(0640));
    kaFileWriter orphaned(at("file"));
    fs::remove(at("file"));
    EXPECT_TRUE(orphaned.commit());
    EXPECT_EQ(modeOf("file"), 0640U);
}

TEST_F(FileRights, NeverIncludeThatOfRunningAsSomebodyElse) {
    put("file", "old");
    ASSERT_EQ(::chmod(at("file").c_str(), 06755), 0);
    EXPECT_EQ(save("file"), warningAbout("file", "its set-user-ID or set-group-ID bit"));
    EXPECT_EQ(modeOf("file"), 0755U);
}

TEST_F(FileRights, StayWithTheOldFileUnderItsOtherName) {
    put("file", "old");
    fs::create_hard_link(at("file"), at("other"));
    EXPECT_EQ(save("file"), "");
    EXPECT_EQ(ka_test::contentOf(at("file")), "new");
    EXPECT_EQ(ka_test::contentOf(at("other")), "old");
}

TEST_F(FileRightsOfOthers, ComeWithTheOwnerWhenRootSaves) {
    putOwned("file", OWNER, GROUP, 0460);
    EXPECT_EQ(save("file"), "");
    EXPECT_EQ(statusOf("file").st_uid, OWNER);
    EXPECT_EQ(statusOf("file").st_gid, GROUP);
    EXPECT_EQ(modeOf("file"), 0460U);
}

TEST_F(FileRightsOfOthers, KeepASharedGroup) {
    putOwned("file", OWNER, GROUP, 0660);
    EXPECT_EQ(saveAs("file", SAVER, {SAVERS, GROUP}), warningAbout("file", "its owner (user 41001)"));
    EXPECT_EQ(statusOf("file").st_uid, SAVER);
    EXPECT_EQ(statusOf("file").st_gid, GROUP);
    EXPECT_EQ(modeOf("file"), 0660U);
    const AsUser owner(OWNER, {GROUP});
    EXPECT_EQ(ka_test::contentOf(at("file")), "new");
}

TEST_F(FileRightsOfOthers, ShrinkWithAGroupThatCannotBeKept) {
    const struct {
        unsigned before, after;
    } rows[] = {{0666, 0666}, {0646, 0644}, {0606, 0600}, {0662, 0622}, {0642, 0600}, {0777, 0777}};
    for (const auto& row : rows) {
        putOwned("file", OWNER, GROUP, row.before);
        EXPECT_EQ(saveAs("file", SAVER, {SAVERS}),
                  warningAbout("file", "its owner (user 41001), its group (group 42001)"));
        EXPECT_EQ(statusOf("file").st_gid, SAVERS);
        EXPECT_EQ(modeOf("file"), row.after) << std::oct << row.before;
    }
}

/// What group and others may do in all ways, and lists made at random, against what the system itself then
/// lets people do.
TEST_F(FileRightsOfOthers, NeverGrowForAnybody) {
    std::mt19937 random(7);
    const auto digit = [&random] { return static_cast<std::uint16_t>(random() % 8); };
    const std::vector<std::vector<gid_t>> savers{{SAVERS}, {SAVERS, GROUP}, {GROUP}, {NAMED_GROUP, SAVERS}};
    unsigned saved = 0;
    for (unsigned i = 0; i < 320; ++i) {
        const unsigned mode = 0600 | i % 64;
        putOwned("file", i % 5 == 4 ? SAVER : OWNER, GROUP, mode);
        std::string list;
        if (i >= 64) {
            list = bytesOf({{USER_OBJ, digit(), NO_ID},
                            {USER, digit(), NAMED},
                            {GROUP_OBJ, digit(), NO_ID},
                            {GROUP_ENTRY, digit(), NAMED_GROUP},
                            {MASK, digit(), NO_ID},
                            {OTHER, static_cast<std::uint16_t>(digit() | 2), NO_ID}});
            if (!setAttribute("file", LIST, list))
                GTEST_SKIP() << "the file system of the temporary folder has no access lists";
        }
        const std::vector<int> before = rightsOfPeople(at("file"));
        saveAs("file", SAVER, savers[random() % savers.size()]);
        if (ka_test::contentOf(at("file")) != "new") {
            fs::remove(at("file"));
            continue;
        }
        ++saved;
        const std::vector<int> after = rightsOfPeople(at("file"));
        const bool hasSameOwner = i % 5 == 4;
        for (std::size_t p = 0; p < people.size(); ++p) {
            // Who owned it is somebody of the group or one of the others now.
            if (!hasSameOwner && people[p].user == OWNER)
                continue;
            EXPECT_EQ(after[p] & ~before[p], 0) << people[p].who << ", mode " << std::oct << mode << ", list "
                                                << ::testing::PrintToString(list);
        }
        fs::remove(at("file"));
    }
    EXPECT_GT(saved, 150U);
}

namespace {

/// Runs `check` in a process that sees nothing but the folder, so that no file without a name could be given
/// one later.
/// @return its exit code; -1 when there can be no such process.
int runInClosedFolder(const fs::path& folder, const std::function<int()>& check) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() != 0 && ::unshare(CLONE_NEWUSER) != 0)
            ::_exit(255);
        if (::chroot(folder.c_str()) != 0 || ::chdir("/") != 0)
            ::_exit(255);
        ::_exit(check());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 254;
    return code == 255 ? -1 : code;
}

/// The temporary files that have a name.
std::vector<std::string> temporariesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().rfind(".ka-", 0) == 0)
            names.push_back(entry.path().filename().string());
    return names;
}

} // namespace

TEST_F(FileRights, LetNobodySeeWhatIsBeingWritten) {
    put("private", "old");
    kaFileWriter writer(at("private"));
    writer.write(std::string(200000, 'n'));
    for (const std::string& name : temporariesIn(_folder.path()))
        EXPECT_EQ(modeOf(name), 0600U);
}

TEST_F(FileRights, LetNobodySeeItWhereEveryFileNeedsAName) {
    const mode_t mask = ::umask(0);
    put("open", "old");
    fs::permissions(at("open"), fs::perms(0666));
    const int code = runInClosedFolder(_folder.path(), [] {
        kaFileWriter writer("/open"), second("/open");
        writer.write(std::string(200000, 'n'));
        const auto names = temporariesIn("/");
        bool isRight = names.size() == 2 && names[0] != names[1];
        for (const std::string& name : names) {
            struct stat status {};
            isRight = isRight && ::stat(("/" + name).c_str(), &status) == 0 &&
                      (status.st_mode & 0777) == 0600 && name.size() == std::string(".ka-.tmp").size() + 32;
        }
        isRight = isRight && writer.commit() && temporariesIn("/").size() == 1;
        kaFileWriter::abandonAll();
        isRight = isRight && temporariesIn("/").empty() && !second.commit();
        struct stat status {};
        return isRight && ::stat("/open", &status) == 0 && (status.st_mode & 0777) == 0666 ? 0 : 1;
    });
    ::umask(mask);
    if (code == -1)
        GTEST_SKIP() << "no process may be shut into a folder here";
    EXPECT_EQ(code, 0);
}

TEST_F(FileRights, StayWithAPlantedLink) {
    put("victim", "untouched");
    const int code = runInClosedFolder(_folder.path(), [] {
        kaFileWriter writer("/file");
        const auto names = temporariesIn("/");
        if (names.size() != 1)
            return 1;
        // Somebody who may write the folder puts a link in the temporary file's place: it is what ends up
        // there, and what it leads to stays as it is.
        ::unlink(("/" + names[0]).c_str());
        if (::symlink("/victim", ("/" + names[0]).c_str()) != 0)
            return 2;
        writer.write("new");
        writer.commit();
        return ka_test::contentOf("/victim") == "untouched" ? 0 : 3;
    });
    if (code == -1)
        GTEST_SKIP() << "no process may be shut into a folder here";
    EXPECT_EQ(code, 0);
    EXPECT_EQ(ka_test::contentOf(at("victim")), "untouched");
}

TEST_F(FileRights, LeaveNoTraceOfAKilledWriter) {
    put("file", "old");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        kaFileWriter writer(at("file"));
        writer.write(std::string(200000, 'n'));
        ::raise(SIGKILL);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(ka_test::contentOf(at("file")), "old");
    const int unnamed = ::open(_folder.path().c_str(), O_TMPFILE | O_WRONLY, 0600);
    if (unnamed < 0)
        GTEST_SKIP() << "here every file needs a name";
    ::close(unnamed);
    EXPECT_EQ(fileCount(), 1U);
}
