#include <algorithm>
#include <kaMotion/KeyBudget.h>

namespace ka::motion {

namespace {

// Measured, and rounded up: what a node, a block and a curve without its keys take once they are built.
constexpr std::size_t bytesPerNode = 1536, bytesPerBlock = 4096;

std::size_t keysOf(const MotionTrack& track) {
    return track.translation.keys.size() + track.scale.keys.size() + track.angles.keys.size() +
           track.quaternion.keys.size();
}

[[noreturn]] void tooLarge(const std::string& what, std::size_t bytes, std::size_t allowed) {
    throw Failure(ExitCode::Unreadable, what + " would take about " + std::to_string(bytes / 1024 / 1024) +
                                            " MB, --reader-memory allows " + std::to_string(allowed));
}

} // namespace

void KeyBudget::check(const Motion& motion) const {
    std::size_t bytes = motion.nodes.size() * bytesPerNode;
    for (const MotionTake& take : motion.takes)
        for (const MotionTrack& track : take.tracks)
            bytes += bytesPerBlock + keysOf(track) * curves * bytesPerKey;
    if (_most != _endless && bytes > _megabytes * 1024 * 1024)
        tooLarge("what it holds", bytes, _megabytes);
}

void KeyBudget::refuse(std::size_t keys) const {
    const std::size_t counted = std::min(keys, _endless / bytesPerKey);
    tooLarge("its " + std::to_string(keys) + " keys", counted * bytesPerKey, _megabytes);
}

} // namespace ka::motion
