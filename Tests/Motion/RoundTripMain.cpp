#include "RoundTrip.h"
#include "kaMotion/Failure.h"

#include <cstdio>
#include <filesystem>

/// usage: ka-round-trip FOLDER glb|gltf|bvh MODEL...: a line for each model that moves: nodes, clips, frames,
/// how far it is off after export and import as a part of the scene's size, and what Assimp reads of it. The
/// exported files stay in the folder.
int main(int argc, char** argv) {
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
