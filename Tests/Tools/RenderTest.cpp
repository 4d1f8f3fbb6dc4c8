#include "MotionTesting.h"
#include "ProgramRun.h"

#include <QImage>
#include <filesystem>
#include <gmock/gmock.h>
#include <set>

namespace ka::tools {
namespace {

using namespace testing;
using ::testing::HasSubstr;

class RenderTest : public ::testing::Test {
  protected:
    void SetUp() override { _folder.put("walk.bvh", shortCapture(25)); }

    ProgramRun run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "render");
        return runKaAnim(arguments, _folder.at(""));
    }

    QImage picture(const std::string& name) const { return QImage(QString::fromStdString(_folder.at(name))); }

    /// The cells of a sheet of four, without their labels.
    std::vector<QImage> cells(const std::string& name) const {
        const QImage sheet = picture(name);
        std::vector<QImage> cells;
        for (int i = 0; i < 4; ++i)
            cells.push_back(sheet.copy(24 + i * (sheet.width() - 48) / 4, 82, 100, sheet.height() - 82 - 54));
        return cells;
    }

    /// A program called ffmpeg in a folder of its own, which stands first on the search path.
    std::string withFfmpeg(const std::string& script) const {
        const std::string folder = _folder.at("bin");
        std::filesystem::create_directory(folder);
        _folder.put("bin/ffmpeg", "#!/bin/sh\n" + script);
        std::filesystem::permissions(folder + "/ffmpeg", std::filesystem::perms::owner_all);
        return "PATH=" + folder + ":$PATH ";
    }

    TemporaryFolder _folder;
};

TEST_F(RenderTest, AModelWithoutBonesShowsItsMeshesMove) {
    const std::string cube =
        modelPath("glTF2/glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf");
    for (const char* show : {"auto", "meshes", "boxes"}) {
        SCOPED_TRACE(show);
        EXPECT_EQ(
            run({cube, "-o", "a.png", "--width", "640", "--count", "4", "--show", show, "--to", "70"}).code,
            0);
        const std::vector<QImage> shown = cells("a.png");
        EXPECT_NE(shown[0], shown[1]);
        EXPECT_NE(shown[1], shown[3]);
    }
    EXPECT_EQ(run({cube, "-o", "a.png", "--show", "axes"}).code, 0);
}

TEST_F(RenderTest, ANodeThatTurnsOnTheSpotIsDrawnAsAxes) {
    _folder.put("spin.bvh",
                "HIERARCHY\nROOT top\n{\nOFFSET 0 0 0\nCHANNELS 3 Zrotation Xrotation Yrotation\n}\n"
                "MOTION\nFrames: 3\nFrame Time: 1\n0 0 0\n0 0 45\n0 0 90\n");
    EXPECT_EQ(run({"spin.bvh", "-o", "a.png", "--width", "640", "--count", "4"}).code, 0);
    const std::vector<QImage> shown = cells("a.png");
    EXPECT_NE(shown[0], shown[3]);
}

TEST_F(RenderTest, IsSeenFromWhereItIsAsked) {
    std::set<QByteArray> pictures;
    for (const std::vector<std::string>& view :
         {std::vector<std::string>{}, {"--turn", "-60"}, {"--tilt", "70"}, {"--up", "z"}}) {
        std::vector<std::string> words{"walk.bvh", "-o", "a.png", "--width", "640", "--count", "1"};
        words.insert(words.end(), view.begin(), view.end());
        EXPECT_EQ(run(words).code, 0);
        pictures.insert(QByteArray::fromStdString(contentOf(_folder.at("a.png"))));
    }
    EXPECT_EQ(pictures.size(), 4U);
}

TEST_F(RenderTest, WithoutMeshesRefusesToDrawThem) {
    const ProgramRun result = run({"walk.bvh", "-o", "a.png", "--show", "meshes"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.messages, HasSubstr("no meshes to draw"));
    EXPECT_EQ(run({"walk.bvh"}).code, 2);
}

TEST_F(RenderTest, AFilmGoesThroughFfmpegAtTheFrameRate) {
    // Keeps what it was told, and how much came in.
    const std::string path =
        withFfmpeg("echo \"$@\" > told; wc -c > came; for last; do :; done; echo film > \"$last\"\n");
    const ProgramRun result =
        runShell(path + "ka-anim render walk.bvh --fps 120 --film a.mp4 --width 320 --to 9", _folder.at(""));
    EXPECT_EQ(result.code, 0) << result.messages;
    EXPECT_EQ(contentOf(_folder.at("a.mp4")), "film\n");
    EXPECT_THAT(contentOf(_folder.at("told")), HasSubstr("-s 320x180 -r 120"));
    EXPECT_EQ(std::stoul(contentOf(_folder.at("came"))), 10U * 320 * 180 * 4);
    EXPECT_FALSE(std::filesystem::exists(_folder.at("a.mp4.part.mp4")));
}

TEST_F(RenderTest, AFilmThatFfmpegDoesNotMakeLeavesTheOldOne) {
    _folder.put("a.mp4", "old");
    const std::string path =
        withFfmpeg("for last; do :; done; echo half > \"$last\"; cat > /dev/null; exit 1\n");
    const ProgramRun result =
        runShell(path + "ka-anim render walk.bvh --film a.mp4 --width 320 --to 3", _folder.at(""));
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.messages, HasSubstr("a.mp4: ffmpeg made no film"));
    EXPECT_EQ(contentOf(_folder.at("a.mp4")), "old");
    EXPECT_FALSE(std::filesystem::exists(_folder.at("a.mp4.part.mp4")));
}

TEST_F(RenderTest, WithoutFfmpegAFilmIsAFolderOfPictures) {
    const std::string tool = runShell("command -v ka-anim", _folder.at("")).output;
    const std::string command = "PATH=/nowhere " + tool.substr(0, tool.size() - 1);
    const ProgramRun result =
        runShell(command + " render walk.bvh --film a.mp4 --width 320 --to 3", _folder.at(""));
    EXPECT_EQ(result.code, 0) << result.messages;
    EXPECT_THAT(result.messages, HasSubstr("ffmpeg is not installed"));
    EXPECT_EQ(picture("a/000001.png").size(), QSize(320, 180));
    EXPECT_TRUE(std::filesystem::exists(_folder.at("a/000004.png")));
    EXPECT_FALSE(std::filesystem::exists(_folder.at("a/000005.png")));
    // What is there already is nobody's to fill up.
    EXPECT_EQ(runShell(command + " render walk.bvh --film a.mp4 --to 3", _folder.at("")).code, 4);
}

TEST_F(RenderTest, OnlyFilmsOfTheKnownKindAreMade) {
    const ProgramRun result = run({"walk.bvh", "--film", "a.avi"});
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.messages, HasSubstr(".mp4"));
}

} // namespace
} // namespace ka::tools
