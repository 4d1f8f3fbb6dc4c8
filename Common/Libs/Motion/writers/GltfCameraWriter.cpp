#include "writers/GltfCameraWriter.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

using nlohmann::ordered_json;

constexpr double radiansPerDegree = 3.14159265358979323846 / 180.0;
constexpr const char* lightsName = "KHR_lights_punctual";

ordered_json cameraOf(const MotionCamera& source) {
    // No field of the scene holds the distance of what is just visible.
    constexpr double nearest = 0.01;
    ordered_json camera{
        {"type", "perspective"},
        {"perspective", {{"yfov", source.fieldOfView * radiansPerDegree}, {"znear", nearest}}}};
    if (!source.name.empty())
        camera["name"] = source.name;
    return camera;
}

ordered_json lightOf(const MotionLight& source) {
    constexpr const char* kinds[] = {"directional", "point", "spot"};
    const double intensity = std::max(*std::max_element(source.color.begin(), source.color.end()), 0.0);
    ordered_json color = ordered_json::array();
    for (const double part : source.color)
        color.push_back(intensity > 0.0 ? std::clamp(part / intensity, 0.0, 1.0) : 1.0);
    ordered_json light{
        {"type", kinds[static_cast<std::size_t>(source.kind)]}, {"color", color}, {"intensity", intensity}};
    if (!source.name.empty())
        light["name"] = source.name;
    if (source.kind == LightKind::Spot) {
        const double outer = std::min(source.outerCone, 90.0);
        const double inner = std::min(source.innerCone, outer * (1.0 - 1e-6));
        light["spot"] = {{"innerConeAngle", inner * radiansPerDegree},
                         {"outerConeAngle", outer * radiansPerDegree}};
    }
    return light;
}

/// Where a node has a place free for this, or a new child of it.
template <class IsTaken>
ordered_json& carrierAt(ordered_json& nodes, std::size_t place, const std::string& name,
                        const IsTaken& isTaken) {
    if (!isTaken(nodes[place]))
        return nodes[place];
    nodes.push_back({{"name", name}});
    nodes[place]["children"].push_back(nodes.size() - 1);
    return nodes.back();
}

} // namespace

void writeGltfCameras(const Motion& motion, ordered_json& document, ordered_json& nodes) {
    for (const MotionCamera& camera : motion.cameras) {
        if (camera.nodes.empty())
            continue;
        document["cameras"].push_back(cameraOf(camera));
        for (const std::uint32_t place : camera.nodes)
            carrierAt(nodes, place, camera.name, [](const ordered_json& node) {
                return node.contains("camera");
            })["camera"] = document["cameras"].size() - 1;
    }
    bool isHidden = false;
    for (std::size_t i = 0; i < motion.nodes.size(); ++i)
        if (!motion.nodes[i].isVisible) {
            nodes[i]["extensions"]["KHR_node_visibility"]["visible"] = false;
            isHidden = true;
        }
    if (isHidden)
        document["extensionsUsed"].push_back("KHR_node_visibility");
    ordered_json lights = ordered_json::array();
    for (const MotionLight& light : motion.lights) {
        if (light.nodes.empty())
            continue;
        lights.push_back(lightOf(light));
        for (const std::uint32_t place : light.nodes)
            carrierAt(nodes, place, light.name, [](const ordered_json& node) {
                return node.contains("extensions") && node["extensions"].contains(lightsName);
            })["extensions"][lightsName]["light"] = lights.size() - 1;
    }
    if (lights.empty())
        return;
    document["extensions"][lightsName]["lights"] = std::move(lights);
    document["extensionsUsed"].push_back(lightsName);
}

} // namespace ka::motion
