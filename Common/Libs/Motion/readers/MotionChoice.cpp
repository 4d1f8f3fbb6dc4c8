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
