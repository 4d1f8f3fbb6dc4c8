#include "MotionTesting.h"

#include <gmock/gmock.h>
#include <kaMotion/ModelReader.h>
#include <kaMotion/Text.h>

namespace ka::motion {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr ReaderLimits limits{512, 30.0};

TEST(ReadModel, ReadsTheRealMotionCaptures) {
    struct Case {
        const char* name;
        std::size_t nodes, frames;
        EulerOrder order;
    };
    for (const Case& c : {Case{"01_01", 38, 2752, {2, 1, 0}}, Case{"01_03", 38, 4511, {2, 1, 0}},
                          Case{"Boxing_Toes", 26, 3069, {2, 0, 1}}}) {
        const ReadModel model = readModel(testing::modelPath("BVH/" + std::string(c.name) + ".bvh"), limits);
        EXPECT_EQ(model.findings, 0U);
        EXPECT_EQ(model.motion.nodes.size(), c.nodes) << c.name;
        EXPECT_EQ(model.motion.nodes[0].order, c.order);
        ASSERT_EQ(model.motion.takes.size(), 1U);
        EXPECT_EQ(model.motion.takes[0].name, c.name);
        EXPECT_EQ(model.motion.takes[0].tracks[0].angles.keys.size(), c.frames);
    }
}

TEST(ReadModel, ReadsOtherKindsThroughTheThirdPartyLibrary) {
    const ReadModel model = readModel(testing::modelPath("X/test.x"), limits);
    EXPECT_FALSE(model.motion.nodes.empty());
    const ReadModel animated = readModel(testing::modelPath("X/BCN_Epileptic.X"), limits);
    EXPECT_FALSE(animated.motion.takes.empty());
}

TEST(ReadModel, RefusesTheFirstGltfByName) {
    for (const char* file :
         {"glTF/CesiumMilkTruck/CesiumMilkTruck.gltf", "glTF/BoxTextured-glTF-Binary/BoxTextured.glb"})
        EXPECT_THAT(testing::failureOf([&] { readModel(testing::modelPath(file), limits); }),
                    EndsWith("a file of glTF 1.0; only glTF 2.0 is read"))
            << file;
}

TEST(ReadModel, KnowsBinaryGltfByWhatIsInside) {
    const testing::TemporaryFolder folder;
    const std::string box =
        testing::contentOf(testing::modelPath("glTF2/BoxTextured-glTF-Binary/BoxTextured.glb"));
    EXPECT_EQ(readModel(folder.put("figure.vrm", box), limits).motion.meshes.size(), 1U);
    EXPECT_THAT(testing::failureOf([&] { readModel(folder.put("other.vrm", "no such thing"), limits); }),
                EndsWith("no reader for '.vrm' files"));
}

TEST(ReadModel, SaysWhyInOneLine) {
    const testing::TemporaryFolder folder;
    const auto reason = [&](const std::string& path) {
        return testing::failureOf([&] { readModel(path, limits); });
    };
    EXPECT_THAT(reason(folder.at("none.bvh")), EndsWith("none.bvh: no such file"));
    EXPECT_THAT(reason(folder.put("a.txt", "text")), EndsWith("a.txt: no reader for '.txt' files"));
    EXPECT_THAT(reason(folder.put("plain", "text")),
                EndsWith("plain: no extension tells what kind of model it is"));
    EXPECT_THAT(reason(folder.put("a.glb", "text")), HasSubstr("a.glb: not readable as glTF"));
    EXPECT_THAT(reason(folder.put("a.gltf", "{")), HasSubstr("a.gltf: not readable as glTF"));
    EXPECT_THAT(reason(folder.put("a.fbx", "text")), StartsWith(folder.at("a.fbx") + ": "));
}

TEST(ReadModel, NothingThatAFileDoesReachesUs) {
    const std::string root = testing::modelPath("invalid");
    std::size_t tried = 0;
    for (const auto& entry : std::filesystem::directory_iterator(root)) {
        const std::string path = entry.path().string();
        if (!entry.is_regular_file() || !isModel(path))
            continue;
        const std::string message = testing::failureOf([&] { readModel(path, {256, 10.0}); });
        EXPECT_TRUE(message == "no failure" || message.rfind(path + ": ", 0) == 0) << message;
        EXPECT_EQ(message.find('\n'), message.npos);
        ++tried;
    }
    EXPECT_GT(tried, 3U);
}

std::string nested(int levels) {
    // Nodes inside nodes, deep enough to overflow the stack of a reader that recurses.
    std::string text =
        "<?xml version=\"1.0\"?><COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" "
        "version=\"1.4.1\"><library_visual_scenes><visual_scene id=\"s\">";
    for (int i = 0; i < levels; ++i)
        text += "<node id=\"n" + std::to_string(i) + "\">";
    for (int i = 0; i < levels; ++i)
        text += "</node>";
    return text + "</visual_scene></library_visual_scenes><scene><instance_visual_scene "
                  "url=\"#s\"/></scene></COLLADA>";
}

TEST(ReadModel, SurvivesAReaderThatOverflowsItsStack) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.put("deep.dae", nested(200000));
    EXPECT_THAT(testing::failureOf([&] { readModel(path, limits); }), StartsWith(path + ": "));
}

TEST(ReadModel, RefusesToLeadAReaderOutOfItsFolder) {
    const testing::TemporaryFolder folder;
    const std::string text =
        R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":4,"uri":"../../../../../../../../etc/passwd"}]})";
    const std::string path = folder.put("a.gltf", text);
    EXPECT_THAT(testing::failureOf([&] { readModel(path, limits); }),
                StartsWith(path + ": not readable as glTF"));
}

TEST(IsModel, GoesByTheExtension) {
    EXPECT_TRUE(isModel("a.BVH"));
    EXPECT_TRUE(isModel("a.glb"));
    EXPECT_TRUE(isModel("a.fbx"));
    EXPECT_FALSE(isModel("a.txt"));
    EXPECT_FALSE(isModel("a"));
}

} // namespace
} // namespace ka::motion
