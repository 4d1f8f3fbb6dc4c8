#include "readers/GltfMeshes.h"

#include "kaMotion/Failure.h"
#include "kaMotion/Text.h"
#include "readers/ConfinedFolder.h"
#include "readers/GltfAccessor.h"
#include "readers/TinyGltf.h"

#include <algorithm>
#include <map>

namespace ka::motion {

namespace {

std::vector<float> floats(const std::vector<double>& numbers) {
    return {numbers.begin(), numbers.end()};
}

std::vector<std::uint32_t> wholes(const std::vector<double>& numbers) {
    std::vector<std::uint32_t> list;
    for (const double number : numbers)
        list.push_back(number >= 0.0 && number < 4294967295.0 ? static_cast<std::uint32_t>(number)
                                                              : 0xFFFFFFFF);
    return list;
}

/// "%20" and the like as what they stand for.
std::string decoded(const std::string& uri) {
    const auto digit = [](char c) {
        const std::size_t at = std::string("0123456789abcdef").find(lowerCase(c));
        return at == std::string::npos ? -1 : static_cast<int>(at);
    };
    std::string name;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        const bool isCode =
            uri[i] == '%' && i + 2 < uri.size() && digit(uri[i + 1]) >= 0 && digit(uri[i + 2]) >= 0;
        name += isCode ? static_cast<char>(digit(uri[i + 1]) * 16 + digit(uri[i + 2])) : uri[i];
        i += isCode ? 2 : 0;
    }
    return name;
}

class MeshReader {
  public:
    MeshReader(const tinygltf::Model& model, const std::vector<std::uint32_t>& places,
               const ConfinedFolder& folder, Motion& motion)
        : _model(model), _places(places), _folder(folder), _motion(motion) {}

    void read() {
        for (const tinygltf::Material& material : _model.materials)
            _motion.materials.push_back(materialOf(material));
        for (const tinygltf::Skin& skin : _model.skins)
            _motion.skins.push_back(skinOf(skin));
        // One mesh with one skin may stand at several nodes.
        std::map<std::pair<int, int>, std::vector<std::uint32_t>> uses;
        for (std::size_t i = 0; i < _model.nodes.size(); ++i)
            if (const tinygltf::Node& node = _model.nodes[i]; node.mesh >= 0)
                uses[{node.mesh, node.skin}].push_back(_places[i]);
        for (const auto& [use, nodes] : uses)
            if (static_cast<std::size_t>(use.first) < _model.meshes.size())
                readMesh(_model.meshes[static_cast<std::size_t>(use.first)], use.second, nodes);
        for (const auto& [why, count] : _left)
            _motion.notes.push_back("left out " + counted(count, "part") + " of meshes: " + why);
    }

  private:
    MotionMaterial materialOf(const tinygltf::Material& source) {
        MotionMaterial material;
        material.name = source.name;
        const auto copy = [](const std::vector<double>& from, auto& to) {
            for (std::size_t i = 0; i < std::min(from.size(), to.size()); ++i)
                to[i] = static_cast<float>(from[i]);
        };
        copy(source.pbrMetallicRoughness.baseColorFactor, material.color);
        copy(source.emissiveFactor, material.emission);
        const int texture = source.pbrMetallicRoughness.baseColorTexture.index;
        if (texture >= 0 && static_cast<std::size_t>(texture) < _model.textures.size())
            readPicture(_model.textures[static_cast<std::size_t>(texture)].source, material);
        return material;
    }

    void readPicture(int index, MotionMaterial& material) {
        if (index < 0 || static_cast<std::size_t>(index) >= _model.images.size())
            return;
        const tinygltf::Image& image = _model.images[static_cast<std::size_t>(index)];
        if (!image.uri.empty()) {
            if (const auto file = _folder.resolve(decoded(image.uri)))
                material.pictureFile = *file;
            else
                ++_left["a picture is not in the model's folder"];
        } else {
            material.picture.assign(image.image.begin(), image.image.end());
        }
    }

    MotionSkin skinOf(const tinygltf::Skin& source) {
        MotionSkin skin;
        for (const int joint : source.joints)
            skin.joints.push_back(joint >= 0 && static_cast<std::size_t>(joint) < _places.size()
                                      ? _places[static_cast<std::size_t>(joint)]
                                      : 0xFFFFFFFF);
        try {
            if (source.inverseBindMatrices >= 0)
                skin.inverseBinds = floats(readGltfAccessor(_model, source.inverseBindMatrices, 16));
        } catch (const Failure& failure) {
            ++_left[failure.what()];
        }
        if (skin.inverseBinds.empty())
            for (std::size_t i = 0; i < skin.joints.size(); ++i)
                for (int cell = 0; cell < 16; ++cell)
                    skin.inverseBinds.push_back(cell % 5 == 0 ? 1.0F : 0.0F);
        skin.inverseBinds.resize(std::min(skin.inverseBinds.size(), 16 * skin.joints.size()));
        return skin;
    }

    void readMesh(const tinygltf::Mesh& source, int skin, const std::vector<std::uint32_t>& nodes) {
        for (const tinygltf::Primitive& part : source.primitives) {
            if (part.extensions.count("KHR_draco_mesh_compression") > 0) {
                ++_left["compressed"];
                continue;
            }
            if (part.mode != -1 && part.mode != TINYGLTF_MODE_TRIANGLES &&
                part.mode != TINYGLTF_MODE_TRIANGLE_STRIP && part.mode != TINYGLTF_MODE_TRIANGLE_FAN) {
                ++_left["points or lines"];
                continue;
            }
            try {
                MotionMesh mesh = partOf(source, part);
                mesh.nodes = nodes;
                mesh.skin = mesh.joints.empty() ? MotionMesh::none : skin;
                _motion.meshes.push_back(std::move(mesh));
            } catch (const Failure& failure) {
                ++_left[failure.what()];
            }
        }
    }

    int attribute(const std::map<std::string, int>& attributes, const char* name) const {
        const auto found = attributes.find(name);
        return found == attributes.end() ? -1 : found->second;
    }

    std::vector<double> optional(int accessor, std::size_t width) const {
        return accessor < 0 ? std::vector<double>() : readGltfAccessor(_model, accessor, width);
    }

    MotionMesh partOf(const tinygltf::Mesh& source, const tinygltf::Primitive& part) const {
        MotionMesh mesh;
        mesh.name = source.name;
        mesh.material = part.material;
        mesh.positions = floats(readGltfAccessor(_model, attribute(part.attributes, "POSITION"), 3));
        mesh.normals = floats(optional(attribute(part.attributes, "NORMAL"), 3));
        mesh.texCoords = floats(optional(attribute(part.attributes, "TEXCOORD_0"), 2));
        mesh.colors = colorsOf(attribute(part.attributes, "COLOR_0"));
        mesh.joints = wholes(optional(attribute(part.attributes, "JOINTS_0"), 4));
        mesh.weights = floats(optional(attribute(part.attributes, "WEIGHTS_0"), 4));
        std::vector<std::uint32_t> corners;
        if (part.indices >= 0)
            corners = wholes(readGltfAccessor(_model, part.indices, 1));
        else
            for (std::size_t i = 0; i < mesh.corners(); ++i)
                corners.push_back(static_cast<std::uint32_t>(i));
        mesh.indices = triangles(corners, part.mode);
        for (std::size_t i = 0; i < part.targets.size(); ++i)
            mesh.morphs.push_back(morphOf(source, part.targets[i], i, mesh.positions.size()));
        return mesh;
    }

    std::vector<float> colorsOf(int accessor) const {
        const bool isThere = accessor >= 0 && static_cast<std::size_t>(accessor) < _model.accessors.size();
        if (!isThere || _model.accessors[static_cast<std::size_t>(accessor)].type != TINYGLTF_TYPE_VEC3)
            return floats(optional(accessor, 4));
        std::vector<float> colors;
        const std::vector<double> opaque = readGltfAccessor(_model, accessor, 3);
        for (std::size_t i = 0; i < opaque.size(); ++i) {
            colors.push_back(static_cast<float>(opaque[i]));
            if (i % 3 == 2)
                colors.push_back(1.0F);
        }
        return colors;
    }

    static std::vector<std::uint32_t> triangles(const std::vector<std::uint32_t>& corners, int mode) {
        if (mode == -1 || mode == TINYGLTF_MODE_TRIANGLES)
            return corners;
        std::vector<std::uint32_t> list;
        for (std::size_t i = 2; i < corners.size(); ++i) {
            const bool isFan = mode == TINYGLTF_MODE_TRIANGLE_FAN, isOdd = !isFan && i % 2 == 1;
            const std::uint32_t first = isFan ? corners[0] : corners[i - 2], second = corners[i - 1];
            list.insert(list.end(), {isOdd ? second : first, isOdd ? first : second, corners[i]});
        }
        return list;
    }

    MotionMorph morphOf(const tinygltf::Mesh& source, const std::map<std::string, int>& target,
                        std::size_t index, std::size_t size) const {
        MotionMorph morph;
        morph.name = "shape " + std::to_string(index + 1);
        if (source.extras.IsObject() && source.extras.Has("targetNames")) {
            const tinygltf::Value& names = source.extras.Get("targetNames");
            if (names.IsArray() && index < names.ArrayLen() && names.Get(index).IsString())
                morph.name = names.Get(index).Get<std::string>();
        }
        if (index < source.weights.size())
            morph.weight = static_cast<float>(source.weights[index]);
        morph.offsets = floats(optional(attribute(target, "POSITION"), 3));
        morph.offsets.resize(morph.offsets.empty() ? size : morph.offsets.size());
        return morph;
    }

    const tinygltf::Model& _model;
    const std::vector<std::uint32_t>& _places;
    const ConfinedFolder& _folder;
    Motion& _motion;
    std::map<std::string, std::size_t> _left; ///< what was left out, by why
};

} // namespace

void readGltfMeshes(const tinygltf::Model& model, const std::vector<std::uint32_t>& places,
                    const ConfinedFolder& folder, Motion& motion) {
    MeshReader(model, places, folder, motion).read();
}

} // namespace ka::motion
