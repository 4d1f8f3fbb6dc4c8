#include "readers/MotionChoice.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>

namespace ka::motion {

void keepTake(Motion& motion, const std::string& name) {
    std::string known;
    for (const MotionTake& take : motion.takes)
        known += (known.empty() ? "'" : ", '") + oneLine(take.name, 60) + "'";
    auto& takes = motion.takes;
    takes.erase(
        std::remove_if(takes.begin(), takes.end(), [&](const MotionTake& take) { return take.name != name; }),
        takes.end());
    if (takes.empty())
        throw Failure(ExitCode::Usage, "no take is called '" + oneLine(name, 60) + "'; the model has " +
                                           (known.empty() ? "none" : oneLine(known, 400)));
}

namespace {

/// The times of the channel with most keys.
class LongestChannel {
  public:
    template <std::size_t Width>
    void consider(const MotionChannel<Width>& channel) {
        if (channel.keys.size() <= _times.size())
            return;
        _times.clear();
        for (const MotionKey<Width>& key : channel.keys)
            _times.push_back(key.time);
    }
    const std::vector<double>& times() const { return _times; }

  private:
    std::vector<double> _times;
};

} // namespace

double ownRate(const Motion& motion) {
    LongestChannel longest;
    for (const MotionTake& take : motion.takes)
        for (const MotionTrack& track : take.tracks) {
            longest.consider(track.translation);
            longest.consider(track.scale);
            longest.consider(track.angles);
            longest.consider(track.quaternion);
            for (const MotionChannel<1>& weight : track.weights)
                longest.consider(weight);
        }
    const std::vector<double>& times = longest.times();
    if (times.size() < 2)
        return 0.0;
    std::vector<double> gaps;
    for (std::size_t i = 1; i < times.size(); ++i)
        gaps.push_back(times[i] - times[i - 1]);
    const double least = *std::min_element(gaps.begin(), gaps.end());
    // Times in single precision stand a little beside their frames.
    constexpr double slack = 0.05;
    double frames = 0.0;
    for (const double gap : gaps) {
        const double steps = std::round(gap / least);
        if (std::abs(gap / least - steps) > slack * std::max(1.0, steps))
            return 0.0;
        frames += steps;
    }
    const double rate = frames / (times.back() - times.front());
    if (!std::isfinite(rate))
        return 0.0;
    const double whole = std::round(rate);
    return std::abs(rate - whole) <= 1e-6 * rate ? whole : rate;
}

void scaleLengths(Motion& motion, double factor) {
    const auto scale = [factor](auto& numbers) {
        for (auto& number : numbers)
            number = static_cast<std::decay_t<decltype(number)>>(static_cast<double>(number) * factor);
    };
    for (MotionNode& node : motion.nodes)
        scale(node.translation);
    for (MotionTake& take : motion.takes)
        for (MotionTrack& track : take.tracks)
            for (MotionKey<3>& key : track.translation.keys) {
                scale(key.value);
                scale(key.inTangent);
                scale(key.outTangent);
            }
    for (MotionMesh& mesh : motion.meshes) {
        scale(mesh.positions);
        for (MotionMorph& morph : mesh.morphs)
            scale(morph.offsets);
    }
    for (MotionCamera& camera : motion.cameras)
        scale(camera.position);
    for (MotionLight& light : motion.lights) {
        scale(light.position);
        light.attenuation[1] /= factor;
        light.attenuation[2] /= factor * factor;
    }
    constexpr std::size_t cells = 16, translation = 12;
    for (MotionSkin& skin : motion.skins)
        for (std::size_t i = 0; i + cells <= skin.inverseBinds.size(); i += cells)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                float& cell = skin.inverseBinds[i + translation + axis];
                cell = static_cast<float>(static_cast<double>(cell) * factor);
            }
}

void turnZUp(Motion& motion) {
    const double half = std::sqrt(0.5); // a quarter turn back about X
    motion.nodes.insert(
        motion.nodes.begin(),
        {"z_up", MotionNode::noParent, {0, 0, 0}, {-half, 0, 0, half}, {1, 1, 1}, sceneOrder, true});
    for (std::size_t i = 1; i < motion.nodes.size(); ++i)
        ++motion.nodes[i].parent; // of roots, noParent becomes 0
    for (MotionTake& take : motion.takes) {
        for (MotionTrack& track : take.tracks)
            ++track.node;
        for (MotionPropertyTrack& track : take.properties)
            if (track.property == MotionProperty::Visible)
                ++track.owner;
    }
    const auto shift = [](auto& list) {
        for (auto& carried : list)
            for (std::uint32_t& node : carried.nodes)
                ++node;
    };
    shift(motion.meshes);
    shift(motion.cameras);
    shift(motion.lights);
    for (MotionSkin& skin : motion.skins)
        for (std::uint32_t& joint : skin.joints)
            ++joint;
}

} // namespace ka::motion
