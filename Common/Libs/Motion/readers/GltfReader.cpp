#include "readers/GltfReader.h"

#include "readers/ConfinedFolder.h"
#include "readers/GltfAccessor.h"
#include "readers/GltfMeshes.h"
#include "readers/GltfOutline.h"
#include "readers/LeftOut.h"
#include "readers/NodeOrder.h"
#include "readers/TinyGltf.h"

#include <algorithm>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <nlohmann/json.hpp>
#include <set>

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

Interpolation interpolationOf(const std::string& name) {
    if (name == "STEP")
        return Interpolation::Step;
    if (name == "CUBICSPLINE")
        return Interpolation::Cubic;
    if (!name.empty() && name != "LINEAR")
        fail("unknown interpolation '" + oneLine(name, 40) + "'");
    return Interpolation::Linear;
}

template <std::size_t Width>
MotionChannel<Width> readChannel(const tinygltf::Model& model, const tinygltf::AnimationSampler& sampler,
                                 KeyBudget& budget) {
    MotionChannel<Width> channel;
    channel.interpolation = interpolationOf(sampler.interpolation);
    const std::vector<double> times = readGltfAccessor(model, sampler.input, 1);
    const std::vector<double> values = readGltfAccessor(model, sampler.output, Width);
    const std::size_t rows = channel.interpolation == Interpolation::Cubic ? 3 : 1;
    if (values.size() != times.size() * rows * Width)
        fail("an animation has not as many values as times");
    const auto row = [&](std::size_t index) {
        std::array<double, Width> out{};
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(index * Width), Width, out.begin());
        return out;
    };
    for (std::size_t i = 0; i < times.size(); ++i) {
        if (rows == 3)
            budget.add(channel, {times[i], row(3 * i + 1), row(3 * i), row(3 * i + 2)});
        else
            budget.add(channel, {times[i], row(i), {}, {}});
    }
    return channel;
}

/// One animation of the file.
class TakeReader {
  public:
    TakeReader(const tinygltf::Model& model, const std::vector<std::uint32_t>& places, KeyBudget& budget,
               std::vector<std::string>& notes)
        : _model(model), _places(places), _budget(budget), _notes(notes) {}

    /// @param withoutNode  the channels that the third-party reader keeps to itself.
    MotionTake read(const tinygltf::Animation& animation, std::size_t index,
                    const GltfOutline::Channels& withoutNode) {
        MotionTake take{animation.name.empty() ? "take " + std::to_string(index + 1) : animation.name, {}};
        std::map<std::string, std::size_t> ignored;
        for (const tinygltf::AnimationChannel& channel : animation.channels)
            if (!readChannelInto(take, animation, channel))
                ++ignored["of '" + oneLine(channel.target_path, 40) + "'"];
        if (withoutNode.withoutTarget > 0)
            ignored["without a node"] = withoutNode.withoutTarget;
        for (const auto& [pointer, count] : withoutNode.pointers)
            ignored["of KHR_animation_pointer to '" + oneLine(pointer, 80) + "'"] = count;
        for (const auto& [what, count] : ignored)
            _notes.push_back("take '" + oneLine(take.name) + "': left out " + counted(count, "channel") +
                             " " + what);
        return take;
    }

  private:
    bool readChannelInto(MotionTake& take, const tinygltf::Animation& animation,
                         const tinygltf::AnimationChannel& channel) {
        const std::string& path = channel.target_path;
        const bool known =
            path == "translation" || path == "rotation" || path == "scale" || path == "weights";
        if (!known || channel.target_node < 0)
            return false;
        if (static_cast<std::size_t>(channel.target_node) >= _places.size())
            fail("an animation moves a node that does not exist");
        if (path == "weights" && targetsOf(channel.target_node) == 0)
            return false;
        if (channel.sampler < 0 || static_cast<std::size_t>(channel.sampler) >= animation.samplers.size())
            fail("an animation uses a sampler that does not exist");
        if (!_seen.insert({channel.target_node, path}).second)
            fail("an animation sets the " + path + " of node " + std::to_string(channel.target_node) +
                 " twice");
        const tinygltf::AnimationSampler& sampler =
            animation.samplers[static_cast<std::size_t>(channel.sampler)];
        MotionTrack& track = trackOf(take, _places[static_cast<std::size_t>(channel.target_node)]);
        if (path == "translation")
            track.translation = readChannel<3>(_model, sampler, _budget);
        else if (path == "scale")
            track.scale = readChannel<3>(_model, sampler, _budget);
        else if (path == "weights")
            track.weights = readWeights(channel.target_node, sampler);
        else
            track.quaternion = readChannel<4>(_model, sampler, _budget);
        return true;
    }

    /// Morph targets of what a node shows.
    std::size_t targetsOf(int node) const {
        const int mesh = _model.nodes[static_cast<std::size_t>(node)].mesh;
        if (mesh < 0 || static_cast<std::size_t>(mesh) >= _model.meshes.size())
            return 0;
        const auto& parts = _model.meshes[static_cast<std::size_t>(mesh)].primitives;
        return parts.empty() ? 0 : parts.front().targets.size();
    }

    /// The weights of all morph targets stand one after the other for each key.
    std::vector<MotionChannel<1>> readWeights(int node, const tinygltf::AnimationSampler& sampler) {
        MotionChannel<1> all;
        all.interpolation = interpolationOf(sampler.interpolation);
        const std::vector<double> times = readGltfAccessor(_model, sampler.input, 1);
        const std::vector<double> values = readGltfAccessor(_model, sampler.output, 1);
        const std::size_t rows = all.interpolation == Interpolation::Cubic ? 3 : 1;
        const std::size_t targets = targetsOf(node);
        if (values.size() != times.size() * rows * targets)
            fail("an animation has not as many values as times");
        std::vector<MotionChannel<1>> weights(targets, all);
        for (std::size_t i = 0; i < times.size(); ++i)
            for (std::size_t j = 0; j < targets; ++j) {
                const auto value = [&](std::size_t row) -> std::array<double, 1> {
                    return {values[(i * rows + row) * targets + j]};
                };
                if (rows == 3)
                    _budget.add(weights[j], {times[i], value(1), value(0), value(2)});
                else
                    _budget.add(weights[j], {times[i], value(0), {}, {}});
            }
        return weights;
    }

    MotionTrack& trackOf(MotionTake& take, std::uint32_t node) {
        const auto [entry, isNew] = _tracks.try_emplace(node, take.tracks.size());
        if (isNew)
            take.tracks.emplace_back().node = node;
        return take.tracks[entry->second];
    }

    const tinygltf::Model& _model;
    const std::vector<std::uint32_t>& _places;
    KeyBudget& _budget;
    std::vector<std::string>& _notes;
    std::map<std::uint32_t, std::size_t> _tracks;
    std::set<std::pair<int, std::string>> _seen;
};

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

std::string leftOut(const tinygltf::Model& model) {
    LeftOut rest;
    rest.add(model.cameras.size(), "camera", "cameras");
    rest.add(model.lights.size(), "light", "lights");
    return rest.note();
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
        motion.takes.push_back(TakeReader(model, places, budget, motion.notes)
                                   .read(model.animations[i], i, outline.animations[i]));
    readGltfMeshes(model, places, folder, motion);
    if (const std::string note = leftOut(model); !note.empty())
        motion.notes.push_back(note);
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
