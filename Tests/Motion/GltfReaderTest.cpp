#include "readers/GltfReader.h"

#include "GltfFile.h"
#include "MotionTesting.h"
#include "readers/ConfinedFolder.h"

#include <cmath>
#include <gmock/gmock.h>
#include <kaMotion/ModelReader.h>
#include <nlohmann/json.hpp>

namespace ka::motion {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

ReadModel read(const std::string& text) {
    const testing::TemporaryFolder folder;
    return readModel(folder.put("a.gltf", text), {512, 30.0});
}

std::string failure(const std::string& text) {
    const std::string message = testing::failureOf([&] { read(text); });
    return message.substr(std::min(message.find("a.gltf: "), message.size()));
}

GltfFile oneNode() {
    GltfFile file;
    file.document["nodes"] = json::array({{{"name", "arm"}}});
    return file;
}

TEST(GltfReader, ReadsTheHierarchyWithParentsFirst) {
    GltfFile file;
    file.document["nodes"] =
        json::array({{{"name", "hand"}, {"translation", {1, 2, 3}}},
                     {{"children", {0}}, {"scale", {2, 2, 2}}, {"rotation", {0, 1, 0, 0}}}});
    const Motion motion = read(file.document.dump()).motion;
    ASSERT_EQ(motion.nodes.size(), 2U);
    EXPECT_EQ(motion.nodes[0].name, "node 1");
    EXPECT_THAT(motion.nodes[0].scale, ElementsAre(2, 2, 2));
    EXPECT_EQ(motion.nodes[0].rotation.y, 1.0);
    EXPECT_EQ(motion.nodes[1].name, "hand");
    EXPECT_EQ(motion.nodes[1].parent, 0);
    EXPECT_THAT(motion.nodes[1].translation, ElementsAre(1, 2, 3));
}

TEST(GltfReader, TakesAMatrixApart) {
    GltfFile file;
    file.document["nodes"] = json::array({{{"matrix", {0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 2, 0, 5, 6, 7, 1}}}});
    const Motion motion = read(file.document.dump()).motion;
    EXPECT_THAT(motion.nodes[0].translation, ElementsAre(5, 6, 7));
    EXPECT_NEAR(motion.nodes[0].scale[1], 2.0, 1e-12);
    EXPECT_NEAR(angleBetween(matrixFromQuaternion(motion.nodes[0].rotation),
                             matrixFromAngles({0, 0, 90}, sceneOrder)),
                0, 1e-6);
}

TEST(GltfReader, ReadsEveryInterpolation) {
    GltfFile file = oneNode();
    const int times = file.floats({0, 0.5F}, "SCALAR");
    file.channel(0, "translation", times, file.floats({1, 2, 3, 4, 5, 6}, "VEC3"), "LINEAR");
    file.channel(0, "scale", times, file.floats({1, 1, 1, 2, 2, 2}, "VEC3"), "STEP");
    file.channel(
        0, "rotation", times,
        file.floats({1, 2, 3, 4, 0, 0, 0, 1, 5, 6, 7, 8, 9, 10, 11, 12, 1, 0, 0, 0, 13, 14, 15, 16}, "VEC4"),
        "CUBICSPLINE");
    const Motion motion = read(file.text()).motion;
    ASSERT_EQ(motion.takes.size(), 1U);
    EXPECT_EQ(motion.takes[0].name, "take 1");
    ASSERT_EQ(motion.takes[0].tracks.size(), 1U);
    const MotionTrack& track = motion.takes[0].tracks[0];
    EXPECT_EQ(track.translation.interpolation, Interpolation::Linear);
    EXPECT_EQ(track.translation.keys[1].time, 0.5);
    EXPECT_THAT(track.translation.keys[1].value, ElementsAre(4, 5, 6));
    EXPECT_EQ(track.scale.interpolation, Interpolation::Step);
    EXPECT_EQ(track.quaternion.interpolation, Interpolation::Cubic);
    EXPECT_THAT(track.quaternion.keys[0].inTangent, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(track.quaternion.keys[0].value, ElementsAre(0, 0, 0, 1));
    EXPECT_THAT(track.quaternion.keys[0].outTangent, ElementsAre(5, 6, 7, 8));
    EXPECT_THAT(track.quaternion.keys[1].outTangent, ElementsAre(13, 14, 15, 16));
}

TEST(GltfReader, TurnsIntegersIntoTheFractionsTheyStandFor) {
    GltfFile file = oneNode();
    const int times = file.floats({0, 1}, "SCALAR");
    file.channel(0, "rotation", times,
                 file.accessor<std::int16_t>({0, 0, 0, 32767, -32768, 0, 0, 0}, "VEC4", 5122, true),
                 "LINEAR");
    const Motion motion = read(file.text()).motion;
    EXPECT_THAT(motion.takes[0].tracks[0].quaternion.keys[0].value, ElementsAre(0, 0, 0, 1));
    EXPECT_THAT(motion.takes[0].tracks[0].quaternion.keys[1].value, ElementsAre(-1, 0, 0, 0));
}

TEST(GltfReader, AppliesSparseReplacements) {
    GltfFile file = oneNode();
    const int times = file.floats({0, 1}, "SCALAR"),
              places = file.accessor<std::uint16_t>({1}, "SCALAR", 5123);
    const int replacement = file.floats({7, 8, 9}, "VEC3"), values = file.floats({0, 0, 0, 1, 1, 1}, "VEC3");
    auto& accessors = file.document["accessors"];
    accessors[static_cast<std::size_t>(values)]["sparse"] = {
        {"count", 1},
        {"indices",
         {{"bufferView", accessors[static_cast<std::size_t>(places)]["bufferView"]},
          {"componentType", 5123}}},
        {"values", {{"bufferView", accessors[static_cast<std::size_t>(replacement)]["bufferView"]}}}};
    file.channel(0, "translation", times, values, "LINEAR");
    const Motion motion = read(file.text()).motion;
    EXPECT_THAT(motion.takes[0].tracks[0].translation.keys[0].value, ElementsAre(0, 0, 0));
    EXPECT_THAT(motion.takes[0].tracks[0].translation.keys[1].value, ElementsAre(7, 8, 9));
}

TEST(GltfReader, NotesWhatItCannotCarryOver) {
    GltfFile file = oneNode();
    const int times = file.floats({0, 1}, "SCALAR");
    file.channel(0, "weights", times, file.floats({0, 1}, "SCALAR"), "LINEAR");
    file.channel(0, "translation", times, file.floats({0, 0, 0, 1, 1, 1}, "VEC3"), "LINEAR");
    file.document["cameras"] =
        json::array({{{"type", "orthographic"},
                      {"orthographic", {{"xmag", 1}, {"ymag", 1}, {"znear", 0}, {"zfar", 1}}}}});
    const Motion motion = read(file.text()).motion;
    EXPECT_THAT(motion.notes, ElementsAre("take 'take 1': left out 1 channel of 'weights'",
                                          "left out: 1 camera without perspective"));
}

/// A sound file that moves a node along, for what is said about extensions.
GltfFile movedNode() {
    GltfFile file = oneNode();
    const int times = file.floats({0, 1}, "SCALAR");
    file.channel(0, "translation", times, file.floats({0, 0, 0, 1, 1, 1}, "VEC3"), "LINEAR");
    return file;
}

/// The same as a .glb: the document, padded to four bytes, behind two headers.
std::string binaryOf(std::string document) {
    document.resize((document.size() + 3) / 4 * 4, ' ');
    const auto number = [](std::size_t value) {
        const auto narrow = static_cast<std::uint32_t>(value);
        return std::string(reinterpret_cast<const char*>(&narrow), sizeof narrow);
    };
    return "glTF" + number(2) + number(20 + document.size()) + number(document.size()) + "JSON" + document;
}

TEST(GltfReader, RefusesAFileThatNeedsAnExtensionItDoesNotKnow) {
    const std::string refusal =
        "a.gltf: needs the extension 'EXT_meshopt_compression', which this reader does not know";
    GltfFile file = movedNode();
    file.document["extensionsRequired"] = {"KHR_mesh_quantization", "EXT_meshopt_compression"};
    EXPECT_EQ(failure(file.text()), refusal);
    EXPECT_EQ(failure(binaryOf(file.text())), refusal);
    // As its writers leave it: the numbers are in a buffer that only the extension can fill.
    file.text();
    file.document["buffers"].push_back(
        {{"byteLength", 64}, {"extensions", {{"EXT_meshopt_compression", {{"fallback", true}}}}}});
    EXPECT_EQ(failure(file.document.dump()), refusal);
    file.document["extensionsRequired"] = {42};
    EXPECT_THAT(failure(file.document.dump()), HasSubstr("'42'"));
}

TEST(GltfReader, ReadsTheMotionOfAFileWhoseMeshesAreCompressed) {
    GltfFile file = movedNode();
    const int packed = file.accessor<std::uint8_t>({1, 2, 3, 4}, "SCALAR", 5121);
    json attributes = {{"POSITION", file.document["accessors"].size()}};
    file.document["accessors"].push_back(
        {{"componentType", 5126}, {"count", 3}, {"type", "VEC3"}, {"min", {0, 0, 0}}, {"max", {1, 1, 1}}});
    file.document["meshes"] = json::array(
        {{{"primitives",
           json::array({{{"attributes", attributes},
                         {"extensions",
                          {{"KHR_draco_mesh_compression",
                            {{"bufferView",
                              file.document["accessors"][static_cast<std::size_t>(packed)]["bufferView"]},
                             {"attributes", {{"POSITION", 0}}}}}}}}})}}});
    file.document["nodes"][0]["mesh"] = 0;
    file.document["extensionsUsed"] = file.document["extensionsRequired"] = {"KHR_draco_mesh_compression"};
    for (const std::string& text : {file.text(), binaryOf(file.text())}) {
        const Motion motion = read(text).motion;
        ASSERT_EQ(motion.takes.size(), 1U);
        EXPECT_THAT(motion.takes[0].tracks[0].translation.keys[1].value, ElementsAre(1, 1, 1));
    }
}

TEST(GltfReader, CountsAndNamesChannelsThatAnimateWhatIsNoNode) {
    GltfFile file = movedNode();
    json& channels = file.document["animations"][0]["channels"];
    const auto add = [&channels](const json& target) {
        channels.push_back({{"sampler", 0}, {"target", target}});
    };
    const auto pointer = [](const std::string& to) {
        return json{{"path", "pointer"}, {"extensions", {{"KHR_animation_pointer", {{"pointer", to}}}}}};
    };
    add(pointer("/materials/0/alphaCutoff"));
    add(pointer("/nodes/0/weights"));
    add(pointer("/nodes/0/weights"));
    add({{"path", "translation"}});
    const Motion motion = read(file.text()).motion;
    EXPECT_THAT(
        motion.notes,
        ElementsAre(
            "take 'take 1': left out 1 channel of KHR_animation_pointer to '/materials/0/alphaCutoff'",
            "take 'take 1': left out 2 channels of KHR_animation_pointer to '/nodes/0/weights'",
            "take 'take 1': left out 1 channel without a node"));
    EXPECT_EQ(motion.takes[0].tracks.size(), 1U);
}

TEST(GltfReader, RefusesWhatReachesBeyondItsBuffer) {
    GltfFile file = oneNode();
    const int times = file.floats({0, 1}, "SCALAR"), values = file.floats({0, 0, 0, 1, 1, 1}, "VEC3");
    file.channel(0, "translation", times, values, "LINEAR");
    const json sound = (file.text(), file.document);
    const auto broken = [&](const std::string& pointer, const json& value) {
        json document = sound;
        document[json::json_pointer(pointer)] = value;
        return failure(document.dump());
    };
    EXPECT_THAT(broken("/accessors/1/count", 3), HasSubstr("reaches beyond"));
    EXPECT_THAT(broken("/accessors/1/count", 1), HasSubstr("not as many values as times"));
    EXPECT_THAT(broken("/accessors/1/byteOffset", 4), HasSubstr("reaches beyond"));
    EXPECT_THAT(broken("/bufferViews/1/byteOffset", 1000000), HasSubstr("a.gltf: "));
    EXPECT_THAT(broken("/bufferViews/1/byteLength", 1000000), HasSubstr("a.gltf: "));
    EXPECT_THAT(broken("/bufferViews/1/byteStride", 64), HasSubstr("reaches beyond"));
    EXPECT_THAT(broken("/accessors/1/bufferView", 77), HasSubstr("a.gltf: "));
    EXPECT_THAT(broken("/accessors/1/type", "VEC4"), HasSubstr("wrong shape"));
    EXPECT_THAT(broken("/animations/0/channels/0/target/node", 5), HasSubstr("a node that does not exist"));
    EXPECT_THAT(broken("/animations/0/channels/0/sampler", 5), HasSubstr("a sampler that does not exist"));
    EXPECT_THAT(broken("/animations/0/samplers/0/interpolation", "BOUNCE"),
                HasSubstr("unknown interpolation 'BOUNCE'"));
    EXPECT_THAT(broken("/nodes/0/children", {0}), HasSubstr("their own ancestors"));
    EXPECT_THAT(broken("/nodes/0/children", {9}), HasSubstr("names a child that does not exist"));
}

TEST(GltfReader, RefusesAFieldSetTwice) {
    GltfFile file = oneNode();
    const int times = file.floats({0, 1}, "SCALAR"), values = file.floats({0, 0, 0, 1, 1, 1}, "VEC3");
    file.channel(0, "translation", times, values, "LINEAR");
    file.channel(0, "translation", times, values, "LINEAR");
    EXPECT_THAT(failure(file.text()), HasSubstr("sets the translation of node 0 twice"));
}

TEST(GltfReader, ReadsARealSkinnedAnimation) {
    const ReadModel model = readModel(testing::modelPath("glTF2/simple_skin/simple_skin.gltf"), {512, 30.0});
    ASSERT_EQ(model.motion.takes.size(), 1U);
    EXPECT_FALSE(model.motion.takes[0].tracks[0].quaternion.keys.empty());
}

} // namespace
} // namespace ka::motion
