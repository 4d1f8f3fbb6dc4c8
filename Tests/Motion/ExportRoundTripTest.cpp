#include "RoundTrip.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace {

constexpr const char* models = "/usr/share/assimp/models/";

struct Trip {
    const char* model;
    const char* extension;
};

std::string title(const testing::TestParamInfo<Trip>& trip) {
    std::string name = std::string(trip.param.model) + "_" + trip.param.extension;
    for (char& c : name)
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    return name;
}

class ExportedAndReadAgain : public testing::TestWithParam<Trip> {};

} // namespace

/// The whole of the models goes through ka-round-trip every week.
TEST_P(ExportedAndReadAgain, NodesStandWhereTheyStood) {
    const std::string target = testing::TempDir() + "ka-round-trip-" + title({GetParam(), 0});
    const std::string file = target + "." + GetParam().extension;
    const RoundTrip trip = roundTrip(std::string(models) + GetParam().model, file);
    std::remove(file.c_str());
    EXPECT_EQ(trip.fault, "");
    EXPECT_GT(trip.frames, 10U);
    EXPECT_GT(trip.size, 0.0);
    EXPECT_LE(trip.worst, 1e-4 * trip.size) << trip.where;
    if (std::string(GetParam().extension) != "bvh") {
        EXPECT_GT(trip.witnessedKeys, 0U);
        EXPECT_LE(trip.witnessedValue, 1e-5 * trip.size);
        EXPECT_LE(trip.witnessedRotation, 1e-3);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, ExportedAndReadAgain,
                         testing::Values(Trip{"BVH/Boxing_Toes.bvh", "glb"},
                                         Trip{"BVH/Boxing_Toes.bvh", "bvh"}, Trip{"X/Testwuson.X", "gltf"},
                                         Trip{"X/anim_test.x", "bvh"},
                                         Trip{"glTF2/simple_skin/simple_skin.gltf", "glb"}),
                         title);
