#include "FolderTest.h"
#include "Privilege.h"
#include "kaFile.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

class CheckWrite : public FolderTest {
  protected:
    static bool isAllowed(const std::string& name) { return kaFile::checkWrite(name, true, false); }
};

} // namespace

TEST_F(CheckWrite, AllowsAFileThatExistsAndOneThatCanBeMade) {
    put("old.xml", "old");
    EXPECT_TRUE(isAllowed(at("old.xml")));
    EXPECT_TRUE(isAllowed(at("new.xml")));
    EXPECT_TRUE(isAllowed(at("\xC3\xA9t\xC3\xA9.xml")));
    EXPECT_EQ(ka_test::contentOf(at("old.xml")), "old");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(CheckWrite, RefusesWhatCannotBeAFile) {
    put("file", "");
    EXPECT_FALSE(isAllowed(""));
    EXPECT_FALSE(isAllowed(_folder.path().string()));
    EXPECT_FALSE(isAllowed(at("new/")));
    EXPECT_FALSE(isAllowed(at("missing/new.xml")));
    EXPECT_FALSE(isAllowed(at("file/new.xml")));
    EXPECT_FALSE(isAllowed(std::string("a\0b", 3)));
    EXPECT_FALSE(isAllowed(at(std::string(300, 'x') + "/new.xml")));
}

TEST_F(CheckWrite, FollowsLinksToWhereTheFileWouldBe) {
    fs::create_symlink("new.xml", at("dangling"));
    fs::create_symlink("missing/new.xml", at("nowhere"));
    fs::create_symlink(at("round"), at("round"));
    EXPECT_TRUE(isAllowed(at("dangling")));
    EXPECT_FALSE(isAllowed(at("nowhere")));
    EXPECT_FALSE(isAllowed(at("round")));
}

TEST_F(CheckWrite, GoesByThePermissions) {
    put("readonly.xml", "");
    fs::permissions(at("readonly.xml"), fs::perms(0444));
    fs::create_directory(at("closed"));
    fs::permissions(at("closed"), fs::perms(0555));
    fs::permissions(_folder.path(), fs::perms::all);

    const WithoutPrivilege plain;
    ASSERT_TRUE(plain.isInForce());
    EXPECT_FALSE(isAllowed(at("readonly.xml")));
    EXPECT_FALSE(isAllowed(at("closed/new.xml")));
    EXPECT_TRUE(isAllowed(at("new.xml")));
}

TEST_F(CheckWrite, LeavesTheDecisionToAHostThatWantsIt) {
    std::string asked;
    kaFile::setCheckWriteCallback([&](const std::string& name, bool ask, bool quiet) {
        asked = name + (ask ? " ask" : "") + (quiet ? " quiet" : "");
        return name == "yes";
    });
    EXPECT_TRUE(kaFile::checkWrite("yes", true, false));
    EXPECT_EQ(asked, "yes ask");
    EXPECT_FALSE(kaFile::checkWrite(at("new.xml"), false, true));
    EXPECT_EQ(asked, at("new.xml") + " quiet");

    kaFile::setCheckWriteCallback(nullptr);
    EXPECT_TRUE(isAllowed(at("new.xml")));
}

TEST_F(CheckWrite, LetsTheHostsCallbackTakeItselfAway) {
    const std::string held(100, 'x');
    kaFile::setCheckWriteCallback([held](auto&&...) {
        kaFile::setCheckWriteCallback(nullptr);
        return held.size() == 100;
    });
    EXPECT_TRUE(isAllowed("missing/folder"));
    EXPECT_FALSE(isAllowed("missing/folder"));
}

using SameFile = FolderTest;

TEST_F(SameFile, IsOneUnderAllTheNamesThatLeadToIt) {
    put("a", "");
    put("b", "");
    fs::create_hard_link(at("a"), at("hard"));
    fs::create_symlink("a", at("soft"));
    fs::create_symlink("soft", at("softer"));
    fs::create_symlink("made later", at("dangling"));
    fs::create_directory(at("folder"));
    fs::create_directory_symlink("folder", at("other folder"));
    const struct {
        const char *a, *b;
        bool isSame;
    } rows[] = {{"a", "a", true},
                {"a", "./folder/../a", true},
                {"a", "hard", true},
                {"a", "soft", true},
                {"hard", "softer", true},
                {"a", "b", false},
                {"a", "new", false},
                {"new", "new", true},
                {"new", "newer", false},
                {"dangling", "made later", true},
                {"dangling", "new", false},
                {"folder/new", "other folder/new", true},
                {"folder/new", "new", false},
                {"missing/new", "missing/new", false},
                {"folder", "other folder", false}};
    for (const auto& row : rows) {
        EXPECT_EQ(kaFile::isSameFile(at(row.a), at(row.b)), row.isSame) << row.a << ", " << row.b;
        EXPECT_EQ(kaFile::isSameFile(at(row.b), at(row.a)), row.isSame) << row.b << ", " << row.a;
    }
    EXPECT_FALSE(kaFile::isSameFile("/dev/null", "/dev/null"));
}
