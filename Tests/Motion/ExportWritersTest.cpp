#include "kaMotion/CurveTable.h"
#include "writers/BvhWriter.h"
#include "writers/GltfWriter.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <minizip/unzip.h>
#include <nlohmann/json.hpp>

using namespace ka::motion;

namespace {

/// An arm that moves along X in 0.8 seconds, its hand turned by a right angle.
Motion arm() {
    Motion motion;
    motion.nodes = {{"arm", MotionNode::noParent, {1, 2, 3}, {}, {1, 1, 1}, sceneOrder},
                    {"hand", 0, {0, 1, 0}, {0, 0, 2, 2}, {1, 1, 1}, sceneOrder}};
    MotionTrack track;
    track.translation.keys = {{0.0, {0, 2, 3}, {}, {}}, {0.8, {4, 2, 3}, {}, {}}};
    motion.takes = {{"reach", {track}}};
    return motion;
}

nlohmann::json jsonOfGlb(const std::string& bytes) {
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data() + 12, sizeof length);
    return nlohmann::json::parse(bytes.substr(20, length));
}

float floatAt(const std::string& glb, std::size_t accessor, std::size_t index) {
    const auto document = jsonOfGlb(glb);
    std::uint32_t length = 0;
    std::memcpy(&length, glb.data() + 12, sizeof length);
    const auto view =
        document["bufferViews"][document["accessors"][accessor]["bufferView"].get<std::size_t>()];
    float value = 0.0F;
    std::memcpy(&value, glb.data() + 20 + length + 8 + view["byteOffset"].get<std::size_t>() + 4 * index, 4);
    return value;
}

} // namespace

TEST(GltfFile, HoldsNodesChannelsAndBoundsInOneBinaryChunk) {
    const WrittenGltf written = writeGltf(arm(), true);
    const std::string& glb = written.bytes;
    ASSERT_EQ(glb.substr(0, 4), "glTF");
    std::uint32_t total = 0;
    std::memcpy(&total, glb.data() + 8, sizeof total);
    EXPECT_EQ(total, glb.size());
    EXPECT_EQ(glb.size() % 4, 0U);
    const auto document = jsonOfGlb(glb);
    EXPECT_EQ(document["asset"]["version"], "2.0");
    EXPECT_EQ(document["scenes"][0]["nodes"], nlohmann::json::array({0}));
    EXPECT_EQ(document["nodes"][0]["children"], nlohmann::json::array({1}));
    EXPECT_EQ(document["nodes"][0]["translation"], nlohmann::json({1.0, 2.0, 3.0}));
    EXPECT_NEAR(document["nodes"][1]["rotation"][2].get<double>(), 0.70710678, 1e-7);
    const auto& animation = document["animations"][0];
    EXPECT_EQ(animation["name"], "reach");
    EXPECT_EQ(animation["channels"][0]["target"]["path"], "translation");
    EXPECT_EQ(animation["samplers"][0]["interpolation"], "LINEAR");
    const auto& times = document["accessors"][animation["samplers"][0]["input"].get<std::size_t>()];
    EXPECT_EQ(times["count"], 2);
    EXPECT_FLOAT_EQ(times["max"][0].get<float>(), 0.8F);
    EXPECT_FLOAT_EQ(floatAt(glb, animation["samplers"][0]["output"].get<std::size_t>(), 3), 4.0F);
    EXPECT_EQ(written.animations, 1U);
}

TEST(GltfFile, StoresTimesNoLaterThanTheyAre) {
    Motion motion = arm();
    auto& keys = motion.takes[0].tracks[0].translation.keys;
    keys.clear();
    for (int frame = 0; frame < 1000; ++frame)
        keys.push_back({frame / 25.0, {0, 0, 0}, {}, {}});
    const std::string glb = writeGltf(motion, true).bytes;
    const auto document = jsonOfGlb(glb);
    const auto times = document["animations"][0]["samplers"][0]["input"].get<std::size_t>();
    for (std::size_t frame = 0; frame < 1000; ++frame) {
        const auto stored = static_cast<double>(floatAt(glb, times, frame));
        EXPECT_LE(stored, static_cast<double>(frame) / 25.0);
        EXPECT_NEAR(stored, static_cast<double>(frame) / 25.0, 4e-6);
    }
}

TEST(GltfFile, MovesATakeThatBeginsBeforeZero) {
    Motion motion = arm();
    motion.takes[0].tracks[0].translation.keys[0].time = -2.0;
    const WrittenGltf written = writeGltf(motion, true);
    const auto document = jsonOfGlb(written.bytes);
    EXPECT_DOUBLE_EQ(document["accessors"][0]["min"][0].get<double>(), 0.0);
    EXPECT_FLOAT_EQ(document["accessors"][0]["max"][0].get<float>(), 2.8F);
    ASSERT_EQ(written.notes.size(), 1U);
    EXPECT_EQ(written.notes[0], "animation 'reach' moved by 2 seconds, to begin at 0");
}

TEST(GltfFile, StoresEqualListsOnce) {
    Motion motion = arm();
    motion.takes.push_back(motion.takes[0]);
    EXPECT_EQ(jsonOfGlb(writeGltf(motion, true).bytes)["accessors"].size(), 2U);
}

TEST(GltfFile, KeepsTheLaterOfTwoKeysThatFloatsCannotTellApart) {
    Motion motion = arm();
    motion.takes[0].tracks[0].translation.keys = {
        {0.0, {0, 0, 0}, {}, {}}, {100.0, {1, 0, 0}, {}, {}}, {100.0 + 1e-9, {2, 0, 0}, {}, {}}};
    const WrittenGltf written = writeGltf(motion, true);
    EXPECT_EQ(written.mergedKeys, 1U);
    EXPECT_FLOAT_EQ(floatAt(written.bytes, 1, 3), 2.0F);
}

TEST(GltfFile, OfNothingIsStillAFile) {
    const auto document = nlohmann::json::parse(writeGltf(Motion(), false).bytes);
    EXPECT_EQ(document.size(), 1U);
    EXPECT_TRUE(document.contains("asset"));
}

TEST(GltfFile, AsTextCarriesItsNumbersInside) {
    const auto document = nlohmann::json::parse(writeGltf(arm(), false).bytes);
    const std::string uri = document["buffers"][0]["uri"];
    const std::string start = "data:application/octet-stream;base64,";
    ASSERT_EQ(uri.substr(0, start.size()), start);
    // Times 0 and 0.8, whose float below is 0x3F4CCCCC: bytes 00 00 00 | 00 CC CC | 4C 3F ...
    EXPECT_EQ(uri.substr(start.size(), 8), "AAAAAMzM");
    EXPECT_EQ((uri.size() - start.size()) % 4, 0U);
}

TEST(BvhFile, ListsJointsThenFrames) {
    SampledMotion motion;
    motion.nodes = {{"hip joint", MotionNode::noParent, {0, 9, 0}, {}, {1, 1, 1}, sceneOrder},
                    {"leg", 0, {0, -4, 0}, {}, {1, 1, 1}, sceneOrder},
                    {"leg_End", 1, {0, -5, 0}, {}, {1, 1, 1}, sceneOrder}};
    motion.secondsPerFrame = 0.04;
    motion.frames = {{{{0, 9, 0}, {0, 0, 0}}, {{0, 5, 0}, {0, 0, 0}}, {{0, 0, 0}, {0, 0, 0}}},
                     {{{1, 9, 0}, {0, 0, 90}}, {{5, 9, 0}, {30, 0, 0}}, {{10, 9, 0}, {0, 0, 0}}}};
    // The foot of the second frame is not where the leg's turn would have it, were it not for its own length:
    // 5 along the turned leg.
    motion.frames[1][2].position = {5 + 5 * 0.86602540378443865, 9, -2.5};
    const WrittenBvh written = writeBvh(motion, {});
    EXPECT_EQ(written.text,
              "HIERARCHY\n"
              "ROOT hip_joint\n{\n\tOFFSET 0 0 0\n"
              "\tCHANNELS 6 Xposition Yposition Zposition Zrotation Yrotation Xrotation\n"
              "\tJOINT leg\n\t{\n\t\tOFFSET 0 -4 0\n\t\tCHANNELS 3 Zrotation Yrotation Xrotation\n"
              "\t\tEnd Site\n\t\t{\n\t\t\tOFFSET 0 -5 0\n\t\t}\n"
              "\t}\n}\n"
              "MOTION\nFrames: 2\nFrame Time: 0.04\n"
              "0 9 0 0 0 0 0 0 0\n"
              "1 9 0 90 0 0 0 0 30\n");
    EXPECT_EQ(written.joints, 2U);
    EXPECT_EQ(written.channels, 9U);
}

TEST(BvhFile, TakesAnglesApartInEveryOrder) {
    const EulerOrder orders[] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
    for (const EulerOrder& order : orders)
        for (const Vec3& angles :
             {Vec3{10, 20, 30}, Vec3{-170, 80, 95}, Vec3{40, 90, -20}, Vec3{90, -90, 90}}) {
            const Matrix3 wanted = matrixFromAngles(angles, order);
            const Vec3 found = anglesInOrder(wanted, order, {0, 0, 0});
            EXPECT_NEAR(angleBetween(matrixFromAngles(found, order), wanted), 0.0, 1e-6)
                << order[0] << order[1] << order[2] << " " << angles[0] << " " << angles[1] << " "
                << angles[2];
        }
}

namespace {

CurveTable smallTable() {
    CurveTable table;
    table.columns = {{"Hip, left.translationX", "units"}, {"Knie\xC3\xA9.visible", ""}};
    table.frames = {0.0, 2.5};
    table.framesPerSecond = 25.0;
    table.values = {1.5F, std::numeric_limits<float>::quiet_NaN(), 0.1F, 7.0F};
    return table;
}

std::string member(unzFile zip, const char* name) {
    EXPECT_EQ(unzLocateFile(zip, name, 1), UNZ_OK) << name;
    unz_file_info about{};
    unzGetCurrentFileInfo(zip, &about, nullptr, 0, nullptr, 0, nullptr, 0);
    EXPECT_EQ(about.compression_method, 0U);
    EXPECT_EQ(unzOpenCurrentFile(zip), UNZ_OK);
    std::string bytes(about.uncompressed_size, '\0');
    EXPECT_EQ(unzReadCurrentFile(zip, bytes.data(), static_cast<unsigned>(bytes.size())),
              static_cast<int>(bytes.size()));
    EXPECT_EQ(unzCloseCurrentFile(zip), UNZ_OK) << "checksum of " << name;
    return bytes;
}

} // namespace

TEST(TableFile, AsTextHasNamesAndUnitsInItsHeader) {
    EXPECT_EQ(csvOf(smallTable()), "frame,seconds,\"Hip, left.translationX [units]\",Knie\xC3\xA9.visible\r\n"
                                   "0,0,1.5,\r\n"
                                   "2.5,0.1,0.100000001,7\r\n");
}

TEST(TableFile, ForNumPyIsAnArchiveOfArrays) {
    const std::string path = testing::TempDir() + "ka-table-test.npz";
    {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        const std::string bytes = npzOf(smallTable());
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    unzFile zip = unzOpen(path.c_str());
    ASSERT_NE(zip, nullptr);
    const std::string values = member(zip, "values.npy"), names = member(zip, "names.npy"),
                      fps = member(zip, "fps.npy");
    EXPECT_EQ(values.substr(0, 8), std::string("\x93NUMPY\x01\x00", 8));
    EXPECT_NE(values.find("{'descr': '<f4', 'fortran_order': False, 'shape': (2, 2), }"), std::string::npos);
    ASSERT_EQ(values.size() % 64, 16U); // four floats behind a header of whole lines
    float last = 0.0F;
    std::memcpy(&last, values.data() + values.size() - 4, 4);
    EXPECT_EQ(last, 7.0F);
    EXPECT_NE(names.find("'<U22', 'fortran_order': False, 'shape': (2,)"), std::string::npos);
    EXPECT_EQ(names[names.size() - 22 * 4 + 4 * 4], '\xE9') << "U+00E9 in four bytes";
    EXPECT_NE(fps.find("'shape': ()"), std::string::npos);
    unzClose(zip);
    std::remove(path.c_str());
}
