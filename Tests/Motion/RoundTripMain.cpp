#include "RoundTrip.h"
#include "kaMotion/Failure.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

/// usage: ka-round-trip --thin FOLDER MODEL...: rows of a table of what import, reduction to 0.2 % of the scene's size in
/// the world, export as .glb and import make of each model with at least `fewest` keys.
int thin(int argc, char** argv) {
    constexpr double part = 0.002, ofExport = 0.001;
    constexpr std::size_t fewest = 500;
    int bad = 0, trips = 0;
    std::printf("| model | nodes | frames | keys | reduced | exported and read again | worst distance, of "
                "the size |\n"
                "|---|---|---|---|---|---|---|\n");
    for (int i = 3; i < argc; ++i) {
        const std::filesystem::path model = argv[i];
        const std::string target = std::string(argv[2]) + "/thin.glb";
        try {
            const RoundTrip trip = roundTrip(model.string(), target, 25.0, part);
            if (trip.keysBefore < fewest || trip.clips == 0)
                continue;
            const bool isFine = trip.isWithin(part + ofExport);
            std::printf("| %s | %zu | %zu | %zu | %zu | %zu | %.2g %%%s |\n", model.filename().c_str(),
                        trip.nodes, trip.frames, trip.keysBefore, trip.keysThinned, trip.keysAgain,
                        trip.size > 0.0 ? 100.0 * trip.worst / trip.size : 0.0,
                        isFine ? "" : (" BAD " + trip.fault + " " + trip.where).c_str());
            ++trips;
            bad += isFine ? 0 : 1;
        } catch (const ka::motion::Failure&) {
            continue; // no model
        }
        std::fflush(stdout);
    }
    return bad == 0 && trips > 0 ? 0 : 1;
}

} // namespace

/// usage: ka-round-trip FOLDER glb|gltf|bvh MODEL...: a line for each model that moves: nodes, clips, frames,
/// how far it is off after export and import as a part of the scene's size, and what Assimp reads of it. The
/// exported files stay in the folder.
int main(int argc, char** argv) {
    if (argc > 2 && std::strcmp(argv[1], "--thin") == 0)
        return thin(argc, argv);
    int bad = 0, trips = 0;
    for (int i = 3; i < argc; ++i) {
        const std::filesystem::path model = argv[i];
        const std::filesystem::path target =
            std::filesystem::path(argv[1]) / (std::to_string(i) + "." + argv[2]);
        try {
            const RoundTrip trip = roundTrip(model.string(), target.string());
            if (trip.clips == 0 && trip.fault.empty())
                continue;
            constexpr double most = 1e-3, mostDegrees = 0.02;
            const bool isFine = trip.isWithin(most) && trip.witnessedValue <= most * (trip.size + 1.0) &&
                                trip.witnessedRotation <= mostDegrees;
            std::printf(
                "%-44s %4zu nodes %2zu clips %5zu frames  off %.2g  witness %zu keys %.2g %.2g deg%s%s\n",
                model.filename().c_str(), trip.nodes, trip.clips, trip.frames,
                trip.size > 0.0 ? trip.worst / trip.size : trip.worst, trip.witnessedKeys,
                trip.witnessedValue, trip.witnessedRotation, isFine ? "" : "  BAD ",
                isFine ? "" : (trip.fault + " " + trip.where).c_str());
            ++trips;
            bad += isFine ? 0 : 1;
        } catch (const ka::motion::Failure&) {
            std::filesystem::remove(target); // no model
        }
        std::fflush(stdout);
    }
    std::printf("%d round trips, %d bad\n", trips, bad);
    return bad == 0 && trips > 0 ? 0 : 1;
}
