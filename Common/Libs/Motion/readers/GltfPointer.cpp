#include "readers/GltfPointer.h"

#include <charconv>

namespace ka::motion {

namespace {

/// What stands before and behind the index of a pointer.
struct Form {
    const char* before;
    const char* behind;
    const char* nodePath;
    MotionProperty property;
    bool isIntensity;
};

constexpr MotionProperty unused{};
constexpr Form forms[] = {
    {"/nodes/", "/translation", "translation", unused, false},
    {"/nodes/", "/rotation", "rotation", unused, false},
    {"/nodes/", "/scale", "scale", unused, false},
    {"/nodes/", "/weights", "weights", unused, false},
    {"/nodes/", "/extensions/KHR_node_visibility/visible", "", MotionProperty::Visible, false},
    {"/cameras/", "/perspective/yfov", "", MotionProperty::FieldOfView, false},
    {"/materials/", "/pbrMetallicRoughness/baseColorFactor", "", MotionProperty::MaterialColor, false},
    {"/materials/", "/emissiveFactor", "", MotionProperty::MaterialGlow, false},
    {"/extensions/KHR_lights_punctual/lights/", "/color", "", MotionProperty::LightColor, false},
    {"/extensions/KHR_lights_punctual/lights/", "/intensity", "", MotionProperty::LightColor, true},
    {"/extensions/KHR_lights_punctual/lights/", "/spot/outerConeAngle", "", MotionProperty::LightCone, false},
};

} // namespace

std::optional<GltfPointer> parseGltfPointer(const std::string& path) {
    for (const Form& form : forms) {
        const std::string before = form.before, behind = form.behind;
        if (path.compare(0, before.size(), before) != 0)
            continue;
        int index = -1;
        const char* const end = path.data() + path.size();
        const auto [next, error] = std::from_chars(path.data() + before.size(), end, index);
        if (error == std::errc() && index >= 0 && std::string(next, end) == behind)
            return GltfPointer{index, form.nodePath, form.property, form.isIntensity};
    }
    return std::nullopt;
}

} // namespace ka::motion
