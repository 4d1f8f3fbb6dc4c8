#include "MotionTesting.h"
#include "ProgramRun.h"

#include <QByteArray>
#include <gmock/gmock.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <map>
#include <nlohmann/json.hpp>

namespace ka::tools {

using namespace motion;
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::Pair;
using ::testing::SizeIs;

/// A file of two nodes with three animations, each a straight move along X from 0 to `to` of some of the
/// nodes.
std::string threeTakes() {
    struct Take {
        const char* name;
        float seconds, to;
        std::vector<int> nodes;
    };
    const Take takes[] = {{"walk", 1, 10, {0, 1}}, {"run", 2, 20, {0}}, {"rest", 4, 30, {1}}};
    json file{{"asset", {{"version", "2.0"}}}};
    file["nodes"] = {{{"name", "hip"}, {"children", {1}}}, {{"name", "leg"}}};
    QByteArray bytes;
    const auto accessor = [&](const std::vector<float>& numbers, const char* type, int count) {
        const auto size = static_cast<int>(numbers.size() * sizeof(float));
        file["bufferViews"].push_back({{"buffer", 0}, {"byteOffset", bytes.size()}, {"byteLength", size}});
        file["accessors"].push_back({{"bufferView", file["bufferViews"].size() - 1},
                                     {"componentType", 5126},
                                     {"count", count},
                                     {"type", type}});
        bytes.append(reinterpret_cast<const char*>(numbers.data()), size);
        return file["accessors"].size() - 1;
    };
    for (const Take& take : takes) {
        json animation{{"name", take.name}};
        animation["samplers"] = {{{"input", accessor({0, take.seconds}, "SCALAR", 2)},
                                  {"output", accessor({0, 0, 0, take.to, 0, 0}, "VEC3", 2)}}};
        for (const int node : take.nodes)
            animation["channels"].push_back(
                {{"sampler", 0}, {"target", {{"node", node}, {"path", "translation"}}}});
        file["animations"].push_back(animation);
    }
    const std::string encoded = bytes.toBase64().toStdString();
    file["buffers"] = {
        {{"byteLength", bytes.size()}, {"uri", "data:application/octet-stream;base64," + encoded}}};
    return file.dump();
}

/// The names of a clip's blocks, by the number of their track.
std::multimap<unsigned int, std::string> blocksOf(const kaAnimationStrip& clip) {
    std::multimap<unsigned int, std::string> blocks;
    for (const auto& [number, track] : clip.getStreaks())
        for (const kaAnimationUnit* block : track->getUnits())
            blocks.emplace(number, block->getName());
    return blocks;
}

TEST(Takes, EachAnimationOfAFileIsAClipWithABlockForEachNodeItMoves) {
    const testing::TemporaryFolder folder;
    ProjectFiles files;
    files.file = folder.put("takes.gltf", threeTakes());
    const Project project(files);
    std::map<std::string, const kaAnimationStrip*> clips;
    for (const kaAnimationStrip* clip : kaAnimationManager::the()->getSceneStrips())
        clips[clip->getName()] = clip;
    ASSERT_THAT(clips, SizeIs(3));
    ASSERT_THAT(kaAnimationManager::the()->getSceneStrips(), SizeIs(3));
    EXPECT_THAT(blocksOf(*clips.at("walk")), ElementsAre(Pair(0, "hip"), Pair(1, "leg")));
    EXPECT_THAT(blocksOf(*clips.at("run")), ElementsAre(Pair(0, "hip")));
    EXPECT_THAT(blocksOf(*clips.at("rest")), ElementsAre(Pair(0, "leg")));
    EXPECT_EQ(clips.at("walk")->getEnd(), 25.0F);
    EXPECT_EQ(clips.at("run")->getEnd(), 50.0F);
    EXPECT_EQ(clips.at("rest")->getEnd(), 100.0F);
}

TEST(Takes, EachPlaysAsItsAnimationMeansIt) {
    const testing::TemporaryFolder folder;
    ProjectFiles files;
    files.file = folder.put("takes.gltf", threeTakes());
    const Project project(files);
    const auto placeAt = [&](const char* take, float frame) {
        evaluate(project.playable(take), frame);
        std::map<std::string, float> places;
        for (const NodePose& pose : readPose(project.placedNodes()))
            places[pose.name] = pose.translation[0];
        return places;
    };
    EXPECT_THAT(placeAt("walk", 12.5F), ElementsAre(Pair("hip", 5.0F), Pair("leg", 5.0F)));
    EXPECT_THAT(placeAt("run", 25.0F), ElementsAre(Pair("hip", 10.0F), Pair("leg", 5.0F)));
    EXPECT_THAT(placeAt("rest", 100.0F), ElementsAre(Pair("hip", 10.0F), Pair("leg", 30.0F)));
}

TEST(Takes, AreCountedAndPlayedByName) {
    const testing::TemporaryFolder folder;
    folder.put("takes.gltf", threeTakes());
    const auto report =
        json::parse(testing::runKaAnim({"import", "takes.gltf", "--json"}, folder.at("")).output);
    EXPECT_EQ(report["clips"], 3);
    EXPECT_EQ(report["blocks"], 4);
    EXPECT_EQ(report["curves"], 12);
    const testing::ProgramRun run =
        testing::runKaAnim({"play", "takes.gltf", "--object", "run", "--frames", "1000"}, folder.at(""));
    EXPECT_EQ(run.messages, "ka-anim: finished at frame 51 after 52 ticks\n");
}

} // namespace
} // namespace ka::tools
