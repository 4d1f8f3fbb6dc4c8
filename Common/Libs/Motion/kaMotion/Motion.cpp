#include "readers/MeshCheck.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/Failure.h>
#include <kaMotion/Motion.h>
#include <kaMotion/Text.h>
#include <limits>
#include <set>
#include <unordered_set>

namespace ka::motion {

namespace {

constexpr double largest = std::numeric_limits<float>::max();

bool fits(double value) {
    return std::abs(value) <= largest; // false for NaN
}

template <std::size_t Width>
bool fits(const std::array<double, Width>& values) {
    return std::all_of(values.begin(), values.end(), [](double v) { return fits(v); });
}

bool hasDirection(const std::array<double, 4>& q) {
    return std::any_of(q.begin(), q.end(), [](double v) { return std::abs(v) > 1e-12; });
}

/// Drops the keys of one channel that cannot be used and says so.
class ChannelCheck {
  public:
    explicit ChannelCheck(std::string place) : _place(std::move(place)) {}

    template <std::size_t Width>
    void run(MotionChannel<Width>& channel, const char* name) {
        std::size_t unusable = 0, late = 0, directionless = 0;
        double last = -std::numeric_limits<double>::infinity();
        auto bad = [&](const MotionKey<Width>& key) {
            if (!fits(key.time) || !fits(key.value) || !fits(key.inTangent) || !fits(key.outTangent))
                return ++unusable, true;
            if constexpr (Width == 4) {
                if (!hasDirection(key.value))
                    return ++directionless, true;
            }
            if (key.time <= last)
                return ++late, true;
            last = key.time;
            return false;
        };
        auto& keys = channel.keys;
        keys.erase(std::remove_if(keys.begin(), keys.end(), bad), keys.end());
        tell(unusable, name, "with a number that is not finite or beyond the range of a float");
        tell(late, name, "whose time does not increase");
        tell(directionless, name, "with a rotation of length zero");
    }

    const std::vector<std::string>& findings() const { return _findings; }

  private:
    void tell(std::size_t count, const char* channel, const char* what) {
        if (count > 0)
            _findings.push_back(_place + ": " + channel + ": dropped " + counted(count, "key") + " " + what);
    }

    std::string _place;
    std::vector<std::string> _findings;
};

bool areEmpty(const std::vector<MotionChannel<1>>& channels) {
    return std::all_of(channels.begin(), channels.end(),
                       [](const MotionChannel<1>& channel) { return channel.keys.empty(); });
}

bool isEmpty(const MotionTrack& track) {
    return track.translation.keys.empty() && track.scale.keys.empty() && track.angles.keys.empty() &&
           track.quaternion.keys.empty() && areEmpty(track.weights);
}

void checkHierarchy(const std::vector<MotionNode>& nodes) {
    std::vector<std::size_t> depths;
    depths.reserve(nodes.size());
    for (const MotionNode& node : nodes) {
        const bool isRoot = node.parent == MotionNode::noParent;
        if (!isRoot && (node.parent < 0 || static_cast<std::size_t>(node.parent) >= depths.size()))
            throw Failure(ExitCode::Unreadable,
                          "node '" + oneLine(node.name) + "' does not follow its parent");
        const std::size_t depth = isRoot ? 0 : depths[static_cast<std::size_t>(node.parent)] + 1;
        if (depth > Motion::maximumDepth)
            throw Failure(ExitCode::Unreadable,
                          "nodes are nested deeper than " + std::to_string(Motion::maximumDepth) + " levels");
        depths.push_back(depth);
    }
}

std::size_t repairRestTransforms(std::vector<MotionNode>& nodes) {
    std::size_t repaired = 0;
    for (MotionNode& node : nodes) {
        const std::array<double, 4> q{node.rotation.x, node.rotation.y, node.rotation.z, node.rotation.w};
        if (fits(node.translation) && fits(node.scale) && fits(q) && hasDirection(q))
            continue;
        node.translation = fits(node.translation) ? node.translation : Vec3{0, 0, 0};
        node.scale = fits(node.scale) ? node.scale : Vec3{1, 1, 1};
        node.rotation = fits(q) && hasDirection(q) ? node.rotation : Quaternion{};
        ++repaired;
    }
    return repaired;
}

void dropRepeatedTracks(std::vector<MotionTrack>& tracks, const std::string& where,
                        std::vector<std::string>& findings) {
    std::unordered_set<std::uint32_t> seen;
    const auto repeated = [&](const MotionTrack& track) { return !seen.insert(track.node).second; };
    const auto end = std::remove_if(tracks.begin(), tracks.end(), repeated);
    const auto count = static_cast<std::size_t>(tracks.end() - end);
    tracks.erase(end, tracks.end());
    if (count > 0)
        findings.push_back(where + ": dropped " + counted(count, "track") +
                           " of nodes that already have one");
}

void checkTake(MotionTake& take, const std::vector<MotionNode>& nodes, std::vector<std::string>& findings) {
    auto& tracks = take.tracks;
    const auto known = [&](const MotionTrack& track) { return track.node < nodes.size(); };
    const auto strangers =
        static_cast<std::size_t>(tracks.end() - std::stable_partition(tracks.begin(), tracks.end(), known));
    tracks.resize(tracks.size() - strangers);
    const std::string where = "take '" + oneLine(take.name) + "'";
    if (strangers > 0)
        findings.push_back(where + ": dropped " + counted(strangers, "track") +
                           " of nodes that do not exist");
    dropRepeatedTracks(tracks, where, findings);
    for (MotionTrack& track : tracks) {
        ChannelCheck check(where + ", node '" + oneLine(nodes[track.node].name) + "'");
        check.run(track.translation, "translation");
        check.run(track.scale, "scale");
        check.run(track.angles, "rotation");
        check.run(track.quaternion, "rotation");
        for (MotionChannel<1>& weight : track.weights)
            check.run(weight, "weight");
        findings.insert(findings.end(), check.findings().begin(), check.findings().end());
    }
    tracks.erase(std::remove_if(tracks.begin(), tracks.end(), isEmpty), tracks.end());
}

/// How many owners there are of what has such a property.
std::size_t ownersOf(MotionProperty property, const Motion& motion) {
    switch (property) {
    case MotionProperty::FieldOfView:
        return motion.cameras.size();
    case MotionProperty::LightColor:
    case MotionProperty::LightCone:
        return motion.lights.size();
    case MotionProperty::Visible:
        return motion.nodes.size();
    default:
        return motion.materials.size();
    }
}

void checkProperties(MotionTake& take, const Motion& motion, std::vector<std::string>& findings) {
    auto& properties = take.properties;
    const std::string where = "take '" + oneLine(take.name) + "'";
    std::set<std::pair<MotionProperty, std::uint32_t>> seen;
    const auto isUnfit = [&](const MotionPropertyTrack& track) {
        return track.owner >= ownersOf(track.property, motion) ||
               track.components.size() != widthOf(track.property) ||
               !seen.emplace(track.property, track.owner).second;
    };
    const auto end = std::remove_if(properties.begin(), properties.end(), isUnfit);
    if (const auto count = static_cast<std::size_t>(properties.end() - end))
        findings.push_back(where + ": dropped " + counted(count, "track") +
                           " of cameras, lights or materials that do not exist or already have one");
    properties.erase(end, properties.end());
    for (MotionPropertyTrack& track : properties) {
        ChannelCheck check(where);
        for (MotionChannel<1>& component : track.components)
            check.run(component, "a camera's, light's or material's value");
        findings.insert(findings.end(), check.findings().begin(), check.findings().end());
    }
    properties.erase(
        std::remove_if(properties.begin(), properties.end(),
                       [](const MotionPropertyTrack& track) { return areEmpty(track.components); }),
        properties.end());
}

/// Those with numbers that cannot be used are carried by no node from here on. @return how many nodes lose one.
std::size_t checkCarried(Motion& motion) {
    std::size_t unfit = 0;
    const auto check = [&](auto& carried, bool isFit) {
        auto& nodes = carried.nodes;
        nodes.erase(std::remove_if(nodes.begin(), nodes.end(),
                                   [&](std::uint32_t node) { return node >= motion.nodes.size(); }),
                    nodes.end());
        if (isFit)
            return;
        unfit += nodes.size();
        carried = {};
    };
    const auto isAngle = [](double degrees) { return degrees >= 0.0 && degrees < 180.0; };
    for (MotionCamera& camera : motion.cameras)
        check(camera, isAngle(camera.fieldOfView) && camera.fieldOfView > 0.0 && fits(camera.position) &&
                          fits(camera.direction) && fits(camera.up));
    for (MotionLight& light : motion.lights)
        check(light, fits(light.color) && fits(light.position) && fits(light.direction) &&
                         fits(light.attenuation) && isAngle(light.innerCone) && isAngle(light.outerCone) &&
                         light.kind <= LightKind::Spot);
    return unfit;
}

bool movesNothing(const MotionTake& take) {
    return take.tracks.empty() && take.properties.empty();
}

} // namespace

std::size_t checkMotion(Motion& motion) {
    checkHierarchy(motion.nodes);
    std::vector<std::string> findings;
    if (const std::size_t repaired = repairRestTransforms(motion.nodes))
        findings.push_back(counted(repaired, "rest transform") + " with unusable numbers made neutral");
    if (const std::size_t unfit = checkCarried(motion))
        findings.push_back("dropped what " + counted(unfit, "node") +
                           " carried: cameras or lights with unusable numbers");
    for (MotionTake& take : motion.takes) {
        checkTake(take, motion.nodes, findings);
        checkProperties(take, motion, findings);
    }
    checkMeshes(motion, findings);
    auto& takes = motion.takes;
    for (const MotionTake& take : takes)
        if (movesNothing(take))
            findings.push_back("take '" + oneLine(take.name) + "' moves nothing and was left out");
    takes.erase(std::remove_if(takes.begin(), takes.end(), movesNothing), takes.end());
    motion.notes.insert(motion.notes.end(), findings.begin(), findings.end());
    return findings.size();
}

} // namespace ka::motion
