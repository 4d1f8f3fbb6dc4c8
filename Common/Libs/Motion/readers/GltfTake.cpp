#include "readers/GltfTake.h"

#include "readers/GltfAccessor.h"
#include "readers/GltfPointer.h"
#include "readers/TinyGltf.h"

#include <algorithm>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <map>
#include <set>

namespace ka::motion {

namespace {

[[noreturn]] void fail(const std::string& reason) {
    throw Failure(ExitCode::Unreadable, reason);
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
        for (const GltfOutline::Pointer& pointer : withoutNode.pointers)
            if (!readPointer(take, animation, pointer))
                ++ignored["of KHR_animation_pointer to '" + oneLine(pointer.path, 80) + "'"];
        for (const auto& [what, count] : ignored)
            _notes.push_back("take '" + oneLine(take.name) + "': left out " + counted(count, "channel") +
                             " " + what);
        return take;
    }

  private:
    bool readChannelInto(MotionTake& take, const tinygltf::Animation& animation,
                         const tinygltf::AnimationChannel& channel) {
        return readNodeChannel(take, animation, channel.target_node, channel.target_path, channel.sampler);
    }

    bool readNodeChannel(MotionTake& take, const tinygltf::Animation& animation, int node,
                         const std::string& path, int samplerIndex) {
        const bool known =
            path == "translation" || path == "rotation" || path == "scale" || path == "weights";
        if (!known || node < 0)
            return false;
        if (static_cast<std::size_t>(node) >= _places.size())
            fail("an animation moves a node that does not exist");
        if (path == "weights" && targetsOf(node) == 0)
            return false;
        const tinygltf::AnimationSampler& sampler = samplerOf(animation, samplerIndex);
        if (!_seen.insert({node, path}).second)
            fail("an animation sets the " + path + " of node " + std::to_string(node) + " twice");
        MotionTrack& track = trackOf(take, _places[static_cast<std::size_t>(node)]);
        if (path == "translation")
            track.translation = readChannel<3>(_model, sampler, _budget);
        else if (path == "scale")
            track.scale = readChannel<3>(_model, sampler, _budget);
        else if (path == "weights")
            track.weights = readWeights(node, sampler);
        else
            track.quaternion = readChannel<4>(_model, sampler, _budget);
        return true;
    }

    static const tinygltf::AnimationSampler& samplerOf(const tinygltf::Animation& animation, int index) {
        if (index < 0 || static_cast<std::size_t>(index) >= animation.samplers.size())
            fail("an animation uses a sampler that does not exist");
        return animation.samplers[static_cast<std::size_t>(index)];
    }

    bool readPointer(MotionTake& take, const tinygltf::Animation& animation,
                     const GltfOutline::Pointer& pointer) {
        const std::optional<GltfPointer> target = parseGltfPointer(pointer.path);
        if (!target)
            return false;
        if (!target->nodePath.empty())
            return readNodeChannel(take, animation, target->index, target->nodePath, pointer.sampler);
        const auto owner = static_cast<std::size_t>(target->index);
        const bool isNode = target->property == MotionProperty::Visible;
        if (isNode && owner >= _places.size())
            fail("an animation shows a node that does not exist");
        const bool isLight =
            target->property == MotionProperty::LightColor || target->property == MotionProperty::LightCone;
        if (isLight && owner >= _model.lights.size())
            fail("an animation changes a light that does not exist");
        MotionPropertyTrack track{
            target->property, isNode ? _places[owner] : static_cast<std::uint32_t>(target->index), {}};
        // The second of a light's colour and intensity would need the product of both.
        for (const MotionPropertyTrack& known : take.properties)
            if (known.property == track.property && known.owner == track.owner)
                return false;
        track.components = readComponents(*target, samplerOf(animation, pointer.sampler));
        take.properties.push_back(std::move(track));
        return true;
    }

    std::vector<MotionChannel<1>> readComponents(const GltfPointer& target,
                                                 const tinygltf::AnimationSampler& sampler) {
        constexpr double degreesPerRadian = 180.0 / 3.14159265358979323846;
        const auto factors = [&](double factor) { return std::vector<double>{factor}; };
        const auto light = [&] { return _model.lights[static_cast<std::size_t>(target.index)]; };
        switch (target.property) {
        case MotionProperty::MaterialColor:
            return components(readChannel<4>(_model, sampler, _budget), {1, 1, 1, 1});
        case MotionProperty::MaterialGlow:
            return components(readChannel<3>(_model, sampler, _budget), {1, 1, 1});
        case MotionProperty::LightColor:
            if (!target.isIntensity)
                return components(readChannel<3>(_model, sampler, _budget),
                                  std::vector<double>(3, light().intensity));
            return components(readChannel<1>(_model, sampler, _budget),
                              light().color.size() == 3 ? light().color : std::vector<double>(3, 1.0));
        case MotionProperty::Visible:
            return components(readChannel<1>(_model, sampler, _budget), factors(1.0));
        default:
            return components(readChannel<1>(_model, sampler, _budget), factors(degreesPerRadian));
        }
    }

    /// One channel for each factor; from one of a single value all of them.
    template <std::size_t Width>
    std::vector<MotionChannel<1>> components(const MotionChannel<Width>& source,
                                             const std::vector<double>& factors) {
        std::vector<MotionChannel<1>> split(factors.size());
        for (std::size_t i = 0; i < factors.size(); ++i) {
            const std::size_t from = Width == 1 ? 0 : i;
            split[i].interpolation = source.interpolation;
            for (const MotionKey<Width>& key : source.keys)
                split[i].keys.push_back({key.time,
                                         {key.value[from] * factors[i]},
                                         {key.inTangent[from] * factors[i]},
                                         {key.outTangent[from] * factors[i]}});
        }
        return split;
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

} // namespace

MotionTake readGltfTake(const tinygltf::Model& model, std::size_t index,
                        const GltfOutline::Channels& withoutNode, const std::vector<std::uint32_t>& places,
                        KeyBudget& budget, std::vector<std::string>& notes) {
    return TakeReader(model, places, budget, notes).read(model.animations[index], index, withoutNode);
}

} // namespace ka::motion
