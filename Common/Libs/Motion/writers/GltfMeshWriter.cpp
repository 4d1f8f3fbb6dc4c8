#include "writers/GltfMeshWriter.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace ka::motion {

namespace {

using nlohmann::ordered_json;
using Target = GltfBuffer::Target;

/// glTF asks for normals of unit length.
std::vector<float> unitNormals(std::vector<float> normals) {
    for (std::size_t i = 0; i + 3 <= normals.size(); i += 3) {
        const auto x = static_cast<double>(normals[i]), y = static_cast<double>(normals[i + 1]),
                   z = static_cast<double>(normals[i + 2]), length = std::sqrt(x * x + y * y + z * z);
        const bool hasLength = length > 1e-12;
        normals[i] = hasLength ? static_cast<float>(x / length) : 0.0F;
        normals[i + 1] = hasLength ? static_cast<float>(y / length) : 0.0F;
        normals[i + 2] = hasLength ? static_cast<float>(z / length) : 1.0F;
    }
    return normals;
}

std::vector<float> clamped(std::vector<float> numbers) {
    for (float& number : numbers)
        number = std::clamp(number, 0.0F, 1.0F);
    return numbers;
}

/// The bytes of a PNG or JPEG picture; empty for anything else, which glTF does not know.
std::string pictureOf(const MotionMaterial& material) {
    const std::string& bytes = material.picture;
    const bool isKnown = bytes.compare(0, 4, "\x89PNG") == 0 || bytes.compare(0, 2, "\xFF\xD8") == 0;
    return isKnown ? bytes : std::string();
}

} // namespace

void GltfMeshWriter::write(ordered_json& document, ordered_json& nodes) {
    if (_motion.meshes.empty())
        return;
    ordered_json materials;
    for (const MotionMaterial& material : _motion.materials)
        materials.push_back(materialOf(material, document));
    // A picture needs coordinates; a part without them is painted plainly.
    for (const MotionMesh& mesh : _motion.meshes) {
        if (mesh.material == MotionMesh::none || !mesh.texCoords.empty() || _plain.count(mesh.material) > 0)
            continue;
        MotionMaterial plain = _motion.materials[static_cast<std::size_t>(mesh.material)];
        if (plain.picture.empty())
            continue;
        plain.picture.clear();
        _plain[mesh.material] = materials.size();
        materials.push_back(materialOf(plain, document));
    }
    if (!materials.empty())
        document["materials"] = std::move(materials);
    std::map<std::int32_t, std::size_t> skins; // those that something is bound to
    for (const MotionMesh& mesh : _motion.meshes)
        if (mesh.skin != MotionMesh::none && skins.try_emplace(mesh.skin, skins.size()).second)
            document["skins"].push_back(skinOf(_motion.skins[static_cast<std::size_t>(mesh.skin)]));
    // glTF gives a node one mesh of several parts, which have all the same shapes.
    std::map<std::uint32_t, std::vector<const MotionMesh*>> shown;
    for (const MotionMesh& mesh : _motion.meshes)
        for (const std::uint32_t node : mesh.nodes)
            shown[node].push_back(&mesh);
    for (const auto& [node, parts] : shown) {
        std::map<std::pair<std::size_t, std::int32_t>, std::vector<const MotionMesh*>> groups;
        for (const MotionMesh* part : parts)
            groups[{part->morphs.size(), part->skin}].push_back(part);
        bool isFirst = true;
        for (const auto& [kind, group] : groups) {
            ordered_json mesh{{"name", group.front()->name}};
            mesh["primitives"] = ordered_json::array();
            for (const MotionMesh* part : group)
                mesh["primitives"].push_back(primitiveOf(*part));
            std::vector<float> weights;
            std::vector<std::string> names;
            for (const MotionMorph& morph : group.front()->morphs) {
                weights.push_back(morph.weight);
                names.push_back(morph.name);
            }
            if (!weights.empty()) {
                mesh["weights"] = weights;
                mesh["extras"]["targetNames"] = names;
            }
            document["meshes"].push_back(std::move(mesh));
            std::size_t at = node;
            if (!isFirst) { // a second kind of mesh takes a node of its own
                at = nodes.size();
                nodes.push_back({{"name", group.front()->name}});
                nodes[node]["children"].push_back(at);
            }
            nodes[at]["mesh"] = document["meshes"].size() - 1;
            if (!weights.empty())
                _shapes.try_emplace(node, at, weights.size());
            if (kind.second != MotionMesh::none)
                nodes[at]["skin"] = skins.at(kind.second);
            isFirst = false;
        }
    }
}

ordered_json GltfMeshWriter::primitiveOf(const MotionMesh& mesh) {
    ordered_json attributes{{"POSITION", _buffer.addFloats(mesh.positions, "VEC3", 3, Target::Vertices)}};
    if (!mesh.normals.empty())
        attributes["NORMAL"] = _buffer.addFloats(unitNormals(mesh.normals), "VEC3", 3, Target::Vertices);
    if (!mesh.texCoords.empty())
        attributes["TEXCOORD_0"] = _buffer.addFloats(mesh.texCoords, "VEC2", 2, Target::Vertices);
    if (!mesh.colors.empty())
        attributes["COLOR_0"] = _buffer.addFloats(clamped(mesh.colors), "VEC4", 4, Target::Vertices);
    if (mesh.skin != MotionMesh::none) {
        std::vector<std::uint16_t> joints;
        std::vector<float> weights = mesh.weights;
        for (std::size_t corner = 0; corner < mesh.corners(); ++corner) {
            float sum = 0.0F;
            for (std::size_t i = 4 * corner; i < 4 * corner + 4; ++i)
                sum += weights[i] = std::max(weights[i], 0.0F);
            if (!(sum > 0.0F))
                sum = weights[4 * corner] = 1.0F;
            for (std::size_t i = 4 * corner; i < 4 * corner + 4; ++i) {
                weights[i] /= sum;
                joints.push_back(weights[i] > 0.0F ? static_cast<std::uint16_t>(mesh.joints[i])
                                                   : std::uint16_t{0});
            }
        }
        attributes["JOINTS_0"] = _buffer.addJoints(joints);
        attributes["WEIGHTS_0"] = _buffer.addFloats(weights, "VEC4", 4, Target::Vertices);
    }
    ordered_json primitive{{"attributes", attributes}, {"indices", _buffer.addIndices(mesh.indices)}};
    const auto plain = mesh.texCoords.empty() ? _plain.find(mesh.material) : _plain.end();
    if (plain != _plain.end())
        primitive["material"] = plain->second;
    else if (mesh.material != MotionMesh::none)
        primitive["material"] = mesh.material;
    for (const MotionMorph& morph : mesh.morphs)
        primitive["targets"].push_back(
            {{"POSITION", _buffer.addFloats(morph.offsets, "VEC3", 3, Target::Vertices)}});
    return primitive;
}

ordered_json GltfMeshWriter::materialOf(const MotionMaterial& source, ordered_json& document) {
    ordered_json look{{"baseColorFactor", clamped({source.color.begin(), source.color.end()})},
                      {"metallicFactor", 0.0}};
    if (const std::string picture = pictureOf(source); !picture.empty()) {
        document["images"].push_back({{"bufferView", _buffer.addBytes(picture)},
                                      {"mimeType", picture[0] == '\x89' ? "image/png" : "image/jpeg"}});
        document["textures"].push_back({{"source", document["images"].size() - 1}});
        look["baseColorTexture"] = {{"index", document["textures"].size() - 1}};
    }
    ordered_json material{{"name", source.name}, {"pbrMetallicRoughness", look}};
    const auto glow = clamped({source.emission.begin(), source.emission.end()});
    if (glow != std::vector<float>{0, 0, 0})
        material["emissiveFactor"] = glow;
    if (source.color[3] < 1.0F)
        material["alphaMode"] = "BLEND";
    return material;
}

ordered_json GltfMeshWriter::skinOf(const MotionSkin& skin) {
    std::vector<float> matrices = skin.inverseBinds;
    for (std::size_t i = 0; i + 16 <= matrices.size(); i += 16) {
        matrices[i + 3] = matrices[i + 7] = matrices[i + 11] = 0.0F;
        matrices[i + 15] = 1.0F;
    }
    return {{"joints", skin.joints}, {"inverseBindMatrices", _buffer.addFloats(matrices, "MAT4", 16)}};
}

} // namespace ka::motion
