#include "MotionTesting.h"
#include "ProgramRun.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>

namespace ka::tools {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;

class BatchTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directory(_folder.at("captures"));
        _folder.put("captures/a.bvh", shortCapture(3));
        _folder.put("captures/b.bvh", "no capture");
        _folder.put("captures/c.bvh", shortCapture(4));
        _folder.put("captures/notes.txt", "no model");
    }

    ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "batch");
        return runKaAnim(arguments, _folder.at(""));
    }

    static long lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

    TemporaryFolder _folder;
};

TEST_F(BatchTest, AFailedFileStopsNoOtherAndStandsInTheListAtTheEnd) {
    for (const char* jobs : {"1", "4"}) {
        const ProgramRun result = run({"captures", "--match", "*.bvh", "--jobs", jobs, "--run",
                                       "import {} -o {name}.osg --animation {name}.xml"});
        EXPECT_EQ(result.code, 1);
        EXPECT_EQ(lines(result.output), 5) << result.output;
        EXPECT_THAT(result.output, HasSubstr("captures/b.bvh: failed with code 3: "));
        EXPECT_THAT(result.output, HasSubstr("2 files fine, 1 failed\nfailed: captures/b.bvh\n"));
        for (const char* made : {"a.osg", "a.xml", "c.osg", "c.xml"})
            EXPECT_TRUE(std::filesystem::remove(_folder.at(made))) << made;
        EXPECT_FALSE(std::filesystem::exists(_folder.at("b.osg")));
    }
}

TEST_F(BatchTest, WithoutAFailureEndsWithCodeZero) {
    const ProgramRun result = run({"captures/a.bvh", "captures/c.bvh", "--run", "info {}"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.output, HasSubstr("2 files fine, 0 failed\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("failed:")));
}

TEST_F(BatchTest, OfNothingIsAMistakeInTheLine) {
    EXPECT_EQ(run({"captures", "--match", "*.fbx", "--run", "info {}"}).code, 2);
    EXPECT_EQ(run({"nothing", "--run", "info {}"}).code, 1);
}

} // namespace
} // namespace ka::tools
