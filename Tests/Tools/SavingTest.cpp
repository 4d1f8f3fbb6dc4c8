#include "MotionTesting.h"
#include "ProgramRun.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class Saving : public ::testing::Test {
  protected:
    void SetUp() override { _folder.put("walk.bvh", shortCapture(31)); }

    ProgramRun run(const std::vector<std::string>& arguments) const {
        return runKaAnim(arguments, _folder.at(""));
    }
    ProgramRun convertTo(const std::string& scene, const std::string& document) const {
        return run({"convert", "walk.bvh", "-o", scene, "--animation", document});
    }

    TemporaryFolder _folder;
};

TEST_F(Saving, RefusesASceneAndADocumentThatLeadToOneFile) {
    _folder.put("there.osg", "old");
    fs::create_hard_link(_folder.at("there.osg"), _folder.at("hard.xml"));
    fs::create_symlink("there.osg", _folder.at("soft.xml"));
    fs::create_symlink("new.osg", _folder.at("dangling.xml"));
    fs::create_directory(_folder.at("folder"));
    fs::create_directory_symlink("folder", _folder.at("again"));
    fs::create_symlink("new.osg", _folder.at("folder/link.xml"));
    const struct {
        const char *scene, *document;
    } rows[] = {{"there.osg", "hard.xml"},
                {"there.osg", "soft.xml"},
                {"new.osg", "dangling.xml"},
                {"folder/new.osg", "again/link.xml"}};
    for (const auto& row : rows) {
        const ProgramRun result = convertTo(row.scene, row.document);
        EXPECT_EQ(result.code, 2) << row.document;
        EXPECT_EQ(result.messages, "ka-anim: the scene and the animation document would be one file: " +
                                       std::string(row.scene) + " and " + row.document + "\n");
    }
    EXPECT_EQ(contentOf(_folder.at("there.osg")), "old");
    EXPECT_FALSE(fs::exists(_folder.at("new.osg")));
    EXPECT_FALSE(fs::exists(_folder.at("folder/new.osg")));
}

TEST_F(Saving, KeepsWhatIsPrintedOutOfItsFilesThoughTheStandardStreamsAreClosed) {
    ASSERT_EQ(convertTo("open.osg", "open.xml").code, 0);
    for (const char* closed : {">&-", "2>&-", "<&- >&- 2>&-"}) {
        const ProgramRun run =
            runShell(std::string("ka-anim convert walk.bvh -o closed.osg --animation closed.xml ") + closed,
                     _folder.at(""));
        EXPECT_EQ(contentOf(_folder.at("closed.osg")), contentOf(_folder.at("open.osg"))) << closed;
        EXPECT_EQ(contentOf(_folder.at("closed.xml")), contentOf(_folder.at("open.xml"))) << closed;
    }
}

TEST_F(Saving, SaysWhatAFileCouldNotKeep) {
    _folder.put("walk.osg", "old");
    ASSERT_EQ(::chmod(_folder.at("walk.osg").c_str(), 04755), 0);
    const ProgramRun result = convertTo("walk.osg", "walk.xml");
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.messages, HasSubstr("ka-anim: 'walk.osg' could not keep its set-user-ID or "
                                           "set-group-ID bit; nobody may do more with it than before\n"));
}

TEST_F(Saving, DoesNotWaitForAPipeWithoutAPartner) {
    ASSERT_EQ(convertTo("walk.osg", "walk.xml").code, 0);
    for (const char* pipe : {"pipe.osg", "pipe.xml", "pipe.bvh", "pipe.glb", "pipe.fbx", "pipe.png"})
        ASSERT_EQ(::mkfifo(_folder.at(pipe).c_str(), 0600), 0);
    for (const char* command :
         {"info pipe.osg", "info pipe.xml", "info pipe.bvh", "info pipe.glb", "info pipe.fbx",
          "info walk.osg --animation pipe.xml", "validate pipe.xml", "validate walk.xml --scene pipe.osg",
          "diff pipe.xml walk.xml", "diff walk.xml pipe.xml", "upgrade pipe.osg -o x.osg --animation x.xml",
          "import pipe.bvh", "play pipe.bvh", "convert walk.bvh -o pipe.osg",
          "convert walk.bvh --animation pipe.xml", "convert walk.bvh -o x.osg --animation pipe.xml",
          "plot walk.bvh -o pipe.png"}) {
        const ProgramRun result =
            runShell("timeout 20 ka-anim " + std::string(command) + " 2>&1", _folder.at(""));
        EXPECT_TRUE(result.code == 3 || result.code == 4) << command << ": " << result.code;
        EXPECT_THAT(result.output, HasSubstr("pipe.")) << command;
    }
    EXPECT_FALSE(fs::exists(_folder.at("x.osg")));
    EXPECT_FALSE(fs::exists(_folder.at("x.xml")));
}

TEST_F(Saving, ReadsADocumentFromAnotherProgram) {
    ASSERT_EQ(convertTo("walk.osg", "walk.xml").code, 0);
    const ProgramRun result = runShell("ka-anim validate <(sleep 0.2; cat walk.xml)", _folder.at(""));
    EXPECT_EQ(result.code, 0) << result.output << result.messages;
}

TEST_F(Saving, WritesThroughAPipeThatIsRead) {
    ASSERT_EQ(::mkfifo(_folder.at("pipe.osg").c_str(), 0600), 0);
    const ProgramRun result =
        runShell("timeout 20 cat pipe.osg >copy & sleep 0.2; ka-anim convert walk.bvh -o pipe.osg && wait && "
                 "ka-anim convert walk.bvh -o walk.osg && cmp copy walk.osg",
                 _folder.at(""));
    EXPECT_EQ(result.code, 0) << result.messages;
}

} // namespace
} // namespace ka::tools::testing
