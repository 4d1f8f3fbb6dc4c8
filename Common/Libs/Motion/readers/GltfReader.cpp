#include "readers/GltfReader.h"

#include "readers/ConfinedFolder.h"
#include "readers/GltfCameras.h"
#include "readers/GltfMeshes.h"
#include "readers/GltfOutline.h"
#include "readers/GltfTake.h"
#include "readers/NodeOrder.h"
#include "readers/TinyGltf.h"

#include <algorithm>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <nlohmann/json.hpp>

namespace ka::motion {

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 31;

[[noreturn]] void fail(const std::string& reason) {
    throw Failure(ExitCode::Unreadable, reason);
}

const ConfinedFolder& folderOf(void* user) {
    return *static_cast<const ConfinedFolder*>(user);
}

tinygltf::FsCallbacks confinedFiles(const ConfinedFolder& folder) {
    tinygltf::FsCallbacks calls{};
    calls.FileExists = [](const std::string& name, void* user) {
        return folderOf(user).resolve(name).has_value();
    };
    calls.ExpandFilePath = [](const std::string& name, void*) { return name; };
    calls.ReadWholeFile = [](std::vector<unsigned char>* out, std::string* error, const std::string& name,
                             void* user) {
        const auto bytes = folderOf(user).read(name, largestFile);
        if (bytes)
            out->assign(bytes->begin(), bytes->end());
        else if (error != nullptr)
            *error += "cannot read '" + name + "' in the model's folder";
        return bytes.has_value();
    };
    calls.WriteWholeFile = [](std::string*, const std::string&, const std::vector<unsigned char>&, void*) {
        return false;
    };
    calls.user_data = const_cast<ConfinedFolder*>(&folder);
    return calls;
}

bool isBinary(const std::string& bytes) {
    return bytes.compare(0, 4, "glTF") == 0;
}

tinygltf::Model load(const ConfinedFolder& folder, GltfOutline& outline) {
    const std::optional<std::string> bytes = folder.read(folder.modelName(), largestFile);
    if (!bytes)
        fail("cannot be read");
    outline = outlineOfGltf(*bytes);
    if (const std::string unknown = unknownExtension(outline); !unknown.empty())
        fail("needs the extension '" + oneLine(unknown, 80) + "', which this reader does not know");
    tinygltf::TinyGLTF loader;
    loader.SetFsCallbacks(confinedFiles(folder));
    // Pictures are for those who show them: those of the file itself are kept as they are, none is decoded.
    loader.SetImageLoader(
        [](tinygltf::Image* image, const int, std::string*, std::string*, int, int,
           const unsigned char* picture, int count, void*) {
            if (image->uri.empty() && picture != nullptr && count > 0)
                image->image.assign(picture, picture + count);
            return true;
        },
        nullptr);
    tinygltf::Model model;
    std::string error, warning;
    const auto size = static_cast<unsigned int>(bytes->size());
    const bool loaded =
        isBinary(*bytes)
            ? loader.LoadBinaryFromMemory(&model, &error, &warning,
                                          reinterpret_cast<const unsigned char*>(bytes->data()), size)
            : loader.LoadASCIIFromString(&model, &error, &warning, bytes->data(), size, "");
    if (!loaded)
        fail("not readable as glTF: " +
             (error.empty() ? std::string("no reason given") : oneLine(error, 160)));
    return model;
}

Vec3 triple(const std::vector<double>& values, const Vec3& fallback) {
    return values.size() == 3 ? Vec3{values[0], values[1], values[2]} : fallback;
}

std::string nodeName(const tinygltf::Node& node, std::size_t index) {
    return node.name.empty() ? "node " + std::to_string(index) : node.name;
}

MotionNode restOf(const tinygltf::Node& node, std::size_t index, std::vector<std::string>& notes) {
    MotionNode made;
    made.name = nodeName(node, index);
    if (const auto shown = node.extensions.find("KHR_node_visibility");
        shown != node.extensions.end() && shown->second.IsObject()) {
        const tinygltf::Value& visible = shown->second.Get("visible");
        made.isVisible = !visible.IsBool() || visible.Get<bool>();
    }
    if (node.matrix.size() == 16) {
        RestMatrix matrix{};
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                matrix[row][column] = node.matrix[column * 4 + row];
        if (!setRestTransform(made, matrix))
            notes.push_back("node '" + oneLine(made.name) +
                            "': its matrix is sheared; the shear was left out");
        return made;
    }
    made.translation = triple(node.translation, made.translation);
    made.scale = triple(node.scale, made.scale);
    if (node.rotation.size() == 4)
        made.rotation = {node.rotation[0], node.rotation[1], node.rotation[2], node.rotation[3]};
    return made;
}

/// Child lists turned into one parent for each node.
std::vector<std::int32_t> parentsOf(const tinygltf::Model& model) {
    std::vector<std::int32_t> parents(model.nodes.size(), MotionNode::noParent);
    for (std::size_t parent = 0; parent < model.nodes.size(); ++parent) {
        for (const int child : model.nodes[parent].children) {
            if (child < 0 || static_cast<std::size_t>(child) >= parents.size())
                fail("node " + std::to_string(parent) + " names a child that does not exist");
            std::int32_t& slot = parents[static_cast<std::size_t>(child)];
            if (slot != MotionNode::noParent)
                fail("node " + std::to_string(child) + " has two parents");
            slot = static_cast<std::int32_t>(parent);
        }
    }
    return parents;
}

/// Counts the keys that all channels together stand for; many of them may share one list of numbers.
void expectKeys(const tinygltf::Model& model, KeyBudget& budget) {
    for (const tinygltf::Animation& animation : model.animations)
        for (const tinygltf::AnimationChannel& channel : animation.channels) {
            const auto sampler = static_cast<std::size_t>(channel.sampler);
            const int times = sampler < animation.samplers.size() ? animation.samplers[sampler].input : -1;
            if (static_cast<std::size_t>(times) < model.accessors.size())
                budget.expect(model.accessors[static_cast<std::size_t>(times)].count);
        }
}

} // namespace

Motion readGltf(const ConfinedFolder& folder, KeyBudget budget) {
    GltfOutline outline;
    const tinygltf::Model model = load(folder, outline);
    outline.animations.resize(model.animations.size());
    expectKeys(model, budget);
    Motion motion;
    std::vector<MotionNode> nodes;
    const std::vector<std::int32_t> parents = parentsOf(model);
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        nodes.push_back(restOf(model.nodes[i], i, motion.notes));
        nodes.back().parent = parents[i];
    }
    const std::vector<std::uint32_t> places = putParentsFirst(nodes);
    motion.nodes = std::move(nodes);
    for (std::size_t i = 0; i < model.animations.size(); ++i)
        motion.takes.push_back(readGltfTake(model, i, outline.animations[i], places, budget, motion.notes));
    readGltfMeshes(model, places, folder, motion);
    readGltfCameras(model, places, motion);
    return motion;
}

bool isFirstGltf(const ConfinedFolder& folder) {
    const std::optional<std::string> bytes = folder.read(folder.modelName(), largestFile);
    if (!bytes)
        return false;
    if (isBinary(*bytes))
        return bytes->size() > 4 && (*bytes)[4] == 1;
    const auto document = nlohmann::json::parse(*bytes, nullptr, false);
    // The first version kept its objects by name, where the second has lists.
    return document.is_object() && document.contains("nodes") && document["nodes"].is_object();
}

} // namespace ka::motion
