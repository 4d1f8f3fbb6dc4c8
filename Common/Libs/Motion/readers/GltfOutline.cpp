#include "readers/GltfOutline.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string_view>

namespace ka::motion {

namespace {

using nlohmann::json;

/// The JSON of a binary file: its first chunk, behind two headers of 12 and 8 bytes.
std::string_view jsonOf(std::string_view bytes) {
    constexpr std::size_t headers = 20, lengthAt = 12;
    if (bytes.substr(0, 4) != "glTF")
        return bytes;
    if (bytes.size() < headers)
        return {};
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data() + lengthAt, sizeof length);
    return bytes.substr(headers, length);
}

/// The parts of the document that count, without the rest, which may be large.
json relevantParts(std::string_view text) {
    const auto isRelevant = [](int depth, json::parse_event_t event, const json& parsed) {
        return depth != 1 || event != json::parse_event_t::key || parsed == "extensionsRequired" ||
               parsed == "animations";
    };
    return json::parse(text, isRelevant, false);
}

const json& member(const json& object, const char* name) {
    static const json none;
    if (!object.is_object())
        return none;
    const auto found = object.find(name);
    return found == object.end() ? none : *found;
}

GltfOutline::Channels channelsOf(const json& animation) {
    GltfOutline::Channels channels;
    const json& list = member(animation, "channels");
    if (!list.is_array())
        return channels;
    for (const json& channel : list) {
        const json& target = member(channel, "target");
        if (member(target, "node").is_number_integer())
            continue;
        const json& pointer =
            member(member(member(target, "extensions"), "KHR_animation_pointer"), "pointer");
        const json& sampler = member(channel, "sampler");
        const bool isIndex = sampler.is_number_unsigned() && sampler.get<std::uint64_t>() <= 0x7FFFFFFF;
        if (pointer.is_string())
            channels.pointers.push_back({pointer.get<std::string>(), isIndex ? sampler.get<int>() : -1});
        else
            ++channels.withoutTarget;
    }
    return channels;
}

} // namespace

GltfOutline outlineOfGltf(const std::string& bytes) {
    GltfOutline outline;
    const json document = relevantParts(jsonOf(bytes));
    if (const json& required = member(document, "extensionsRequired"); required.is_array())
        for (const json& name : required)
            outline.required.push_back(name.is_string() ? name.get<std::string>() : name.dump());
    if (const json& animations = member(document, "animations"); animations.is_array())
        for (const json& animation : animations)
            outline.animations.push_back(channelsOf(animation));
    return outline;
}

std::string unknownExtension(const GltfOutline& outline) {
    constexpr std::string_view harmless[] = {"KHR_animation_pointer",
                                             "KHR_draco_mesh_compression",
                                             "KHR_lights_punctual",
                                             "KHR_mesh_quantization",
                                             "KHR_node_visibility",
                                             "KHR_texture_basisu",
                                             "KHR_texture_transform",
                                             "KHR_xmp",
                                             "KHR_xmp_json_ld",
                                             "EXT_lights_ies",
                                             "EXT_lights_image_based",
                                             "EXT_texture_avif",
                                             "EXT_texture_webp",
                                             "MSFT_texture_dds",
                                             "VRM",
                                             "VRMC_vrm",
                                             "VRMC_materials_mtoon",
                                             "MSFT_packing_normalRoughnessMetallic",
                                             "MSFT_packing_occlusionRoughnessMetallic"};
    constexpr std::string_view materials = "KHR_materials_";
    for (const std::string& name : outline.required)
        if (name.compare(0, materials.size(), materials) != 0 &&
            std::find(std::begin(harmless), std::end(harmless), name) == std::end(harmless))
            return name;
    return {};
}

} // namespace ka::motion
