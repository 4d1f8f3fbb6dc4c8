#include "readers/GltfCameras.h"

#include "readers/LeftOut.h"
#include "readers/TinyGltf.h"

#include <kaMotion/Rotation.h>

namespace ka::motion {

namespace {

constexpr double degreesPerRadian = 180.0 / 3.14159265358979323846;

MotionCamera cameraOf(const tinygltf::Camera& source) {
    MotionCamera camera;
    camera.name = source.name;
    camera.fieldOfView = source.perspective.yfov * degreesPerRadian;
    return camera;
}

/// Intensities are in candela or, of directional lights, in lux; light decreases with the square of the distance.
MotionLight lightOf(const tinygltf::Light& source) {
    MotionLight light;
    light.name = source.name;
    light.kind = source.type == "directional" ? LightKind::Directional
                 : source.type == "spot"      ? LightKind::Spot
                                              : LightKind::Point;
    for (std::size_t i = 0; i < light.color.size(); ++i)
        light.color[i] = (source.color.size() == 3 ? source.color[i] : 1.0) * source.intensity;
    light.innerCone = source.spot.innerConeAngle * degreesPerRadian;
    light.outerCone = source.spot.outerConeAngle * degreesPerRadian;
    if (light.kind != LightKind::Directional)
        light.attenuation = {0, 0, 1};
    return light;
}

/// The light that a node carries; -1 for none.
int lightAt(const tinygltf::Node& node) {
    const auto extension = node.extensions.find("KHR_lights_punctual");
    if (extension == node.extensions.end() || !extension->second.IsObject())
        return -1;
    const tinygltf::Value& light = extension->second.Get("light");
    return light.IsInt() ? light.Get<int>() : -1;
}

template <class Carried>
bool carry(std::vector<Carried>& list, int index, std::uint32_t node) {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size())
        return false;
    list[static_cast<std::size_t>(index)].nodes.push_back(node);
    return true;
}

} // namespace

void readGltfCameras(const tinygltf::Model& model, const std::vector<std::uint32_t>& places, Motion& motion) {
    LeftOut rest;
    for (const tinygltf::Camera& camera : model.cameras)
        motion.cameras.push_back(cameraOf(camera));
    for (const tinygltf::Light& light : model.lights)
        motion.lights.push_back(lightOf(light));
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        carry(motion.cameras, model.nodes[i].camera, places[i]);
        carry(motion.lights, lightAt(model.nodes[i]), places[i]);
    }
    std::size_t flat = 0;
    for (std::size_t i = 0; i < model.cameras.size(); ++i)
        if (model.cameras[i].type != "perspective") {
            motion.cameras[i] = {}; // keeps its index, for pointers to others
            ++flat;
        }
    rest.add(flat, "camera without perspective", "cameras without perspective");
    if (const std::string note = rest.note(); !note.empty())
        motion.notes.push_back(note);
}

} // namespace ka::motion
