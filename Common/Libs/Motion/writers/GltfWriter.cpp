#include "writers/GltfWriter.h"

#include "kaMotion/Failure.h"
#include "kaMotion/Text.h"
#include "writers/GltfBuffer.h"
#include "writers/GltfCameraWriter.h"
#include "writers/GltfMeshWriter.h"
#include "writers/WeightRows.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace ka::motion {

namespace {

using nlohmann::ordered_json;

/// The largest float that is not above `value`.
float roundedDown(double value) {
    const auto near = static_cast<float>(value);
    return static_cast<double>(near) > value ? std::nextafter(near, -std::numeric_limits<float>::infinity())
                                             : near;
}

template <class Numbers>
bool isEach(const Numbers& numbers, double value) {
    return std::all_of(numbers.begin(), numbers.end(), [&](double number) { return number == value; });
}

const char* interpolationName(Interpolation interpolation) {
    switch (interpolation) {
    case Interpolation::Step:
        return "STEP";
    case Interpolation::Linear:
        return "LINEAR";
    default:
        return "CUBICSPLINE";
    }
}

template <std::size_t Width>
double earliest(const MotionChannel<Width>& channel) {
    return channel.keys.empty() ? std::numeric_limits<double>::infinity() : channel.keys.front().time;
}

double earliest(const MotionTake& take) {
    double first = std::numeric_limits<double>::infinity();
    for (const MotionTrack& track : take.tracks) {
        first =
            std::min({first, earliest(track.translation), earliest(track.scale), earliest(track.quaternion)});
        for (const MotionChannel<1>& weight : track.weights)
            first = std::min(first, earliest(weight));
    }
    return first;
}

class GltfDocument {
  public:
    explicit GltfDocument(const Motion& motion) : _motion(motion), _meshes(motion, _buffer) {}

    WrittenGltf write(bool isBinary) {
        addNodes();
        _meshes.write(_shown, _nodes);
        for (const MotionTake& take : _motion.takes)
            addAnimation(take);
        writeGltfCameras(_motion, _shown, _nodes);
        ordered_json document = assembled();
        _written.bytes = isBinary ? binary(document) : text(document);
        return std::move(_written);
    }

  private:
    void addNodes() {
        std::vector<std::vector<std::size_t>> children(_motion.nodes.size());
        for (std::size_t i = 0; i < _motion.nodes.size(); ++i) {
            const std::int32_t parent = _motion.nodes[i].parent;
            (parent == MotionNode::noParent ? _roots : children[static_cast<std::size_t>(parent)])
                .push_back(i);
        }
        for (std::size_t i = 0; i < _motion.nodes.size(); ++i)
            _nodes.push_back(nodeOf(_motion.nodes[i], children[i]));
    }

    static ordered_json nodeOf(const MotionNode& source, const std::vector<std::size_t>& children) {
        ordered_json node{{"name", source.name}};
        if (!children.empty())
            node["children"] = children;
        if (!isEach(source.translation, 0.0))
            node["translation"] = source.translation;
        const Quaternion q = normalized(source.rotation);
        if (q.x != 0.0 || q.y != 0.0 || q.z != 0.0)
            node["rotation"] = {q.x, q.y, q.z, q.w};
        if (!isEach(source.scale, 1.0))
            node["scale"] = source.scale;
        return node;
    }

    void addAnimation(const MotionTake& take) {
        _samplers = ordered_json::array();
        _channels = ordered_json::array();
        _shift = std::max(0.0, -earliest(take));
        for (const MotionTrack& track : take.tracks) {
            addChannel(track.node, "translation", track.translation);
            addChannel(track.node, "rotation", track.quaternion);
            addChannel(track.node, "scale", track.scale);
            addWeights(track);
        }
        if (_channels.empty())
            return;
        if (_shift > 0.0)
            _written.notes.push_back("animation '" + oneLine(take.name) + "' moved by " +
                                     formatNumber(_shift, 6) + " seconds, to begin at 0");
        _written.channels += _channels.size();
        ++_written.animations;
        _animations.push_back(
            {{"name", take.name}, {"samplers", std::move(_samplers)}, {"channels", std::move(_channels)}});
    }

    void addWeights(const MotionTrack& track) {
        const auto shapes = _meshes.shapes().find(track.node);
        if (track.weights.empty() || shapes == _meshes.shapes().end())
            return;
        const auto [node, count] = shapes->second;
        const WeightRows rows = weightRows(track.weights, restWeights(track.node, count), _shift);
        if (rows.times.empty())
            return;
        _samplers.push_back({{"input", _buffer.addFloats(rows.times, "SCALAR", 1)},
                             {"output", _buffer.addFloats(rows.values, "SCALAR", 1)},
                             {"interpolation", interpolationName(rows.interpolation)}});
        _channels.push_back(
            {{"sampler", _samplers.size() - 1}, {"target", {{"node", node}, {"path", "weights"}}}});
    }

    std::vector<float> restWeights(std::uint32_t node, std::size_t count) const {
        std::vector<float> weights(count);
        for (const MotionMesh& mesh : _motion.meshes)
            if (mesh.morphs.size() == count && std::count(mesh.nodes.begin(), mesh.nodes.end(), node) > 0)
                std::transform(mesh.morphs.begin(), mesh.morphs.end(), weights.begin(),
                               [](const MotionMorph& morph) { return morph.weight; });
        return weights;
    }

    template <std::size_t Width>
    void addChannel(std::uint32_t node, const char* path, const MotionChannel<Width>& channel) {
        if (channel.keys.empty())
            return;
        const bool isCubic = channel.interpolation == Interpolation::Cubic;
        const std::size_t rows = isCubic ? 3 : 1;
        std::vector<float> times, values;
        const auto append = [&values](const std::array<double, Width>& row) {
            for (const double number : row)
                values.push_back(static_cast<float>(number));
        };
        for (const MotionKey<Width>& key : channel.keys) {
            const float time = std::max(0.0F, roundedDown(key.time + _shift));
            if (!times.empty() && time <= times.back()) {
                // The later one counts from here on.
                times.pop_back();
                values.resize(values.size() - rows * Width);
                ++_written.mergedKeys;
            }
            times.push_back(times.empty() ? time : std::max(time, times.back()));
            if (isCubic)
                append(key.inTangent);
            append(key.value);
            if (isCubic)
                append(key.outTangent);
        }
        _samplers.push_back({{"input", _buffer.addFloats(times, "SCALAR", 1)},
                             {"output", _buffer.addFloats(values, Width == 4 ? "VEC4" : "VEC3", Width)},
                             {"interpolation", interpolationName(channel.interpolation)}});
        _channels.push_back(
            {{"sampler", _samplers.size() - 1}, {"target", {{"node", node}, {"path", path}}}});
    }

    ordered_json assembled() {
        ordered_json document{{"asset", {{"version", "2.0"}, {"generator", "kaAnimation"}}}};
        if (!_nodes.empty()) {
            document["scene"] = 0;
            document["scenes"] = ordered_json::array({{{"nodes", _roots}}});
            document["nodes"] = std::move(_nodes);
        }
        document.update(_shown);
        if (!_animations.empty())
            document["animations"] = std::move(_animations);
        if (!_buffer.isEmpty()) {
            document["accessors"] = _buffer.accessors();
            document["bufferViews"] = _buffer.views();
            document["buffers"] = ordered_json::array({{{"byteLength", _buffer.bytes().size()}}});
        }
        return document;
    }

    static std::string printed(const ordered_json& document, int indent) {
        return document.dump(indent, ' ', false, ordered_json::error_handler_t::replace);
    }

    std::string text(ordered_json& document) const {
        if (!_buffer.isEmpty())
            document["buffers"][0]["uri"] = "data:application/octet-stream;base64," + base64(_buffer.bytes());
        return printed(document, 1) + "\n";
    }

    std::string binary(const ordered_json& document) const {
        constexpr std::uint32_t version = 2, jsonChunk = 0x4E4F534A, binaryChunk = 0x004E4942;
        std::string json = printed(document, -1), numbers = _buffer.bytes();
        json.append((4 - json.size() % 4) % 4, ' ');
        numbers.append((4 - numbers.size() % 4) % 4, '\0');
        const std::size_t size = 12 + 8 + json.size() + (numbers.empty() ? 0 : 8 + numbers.size());
        if (size > std::numeric_limits<std::uint32_t>::max())
            throw Failure(ExitCode::OutputFailed, "more than the 4 GiB that a .glb file can hold");
        std::string bytes = "glTF";
        const auto number = [&bytes](std::size_t value) {
            for (int shift = 0; shift < 32; shift += 8)
                bytes += static_cast<char>(value >> shift & 0xFF);
        };
        number(version);
        number(size);
        number(json.size());
        number(jsonChunk);
        bytes += json;
        if (!numbers.empty()) {
            number(numbers.size());
            number(binaryChunk);
            bytes += numbers;
        }
        return bytes;
    }

    static std::string base64(const std::string& bytes) {
        constexpr char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string out;
        out.reserve((bytes.size() + 2) / 3 * 4);
        for (std::size_t i = 0; i < bytes.size(); i += 3) {
            std::uint32_t three = 0;
            for (std::size_t j = 0; j < 3; ++j)
                three = three << 8 | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0U);
            for (std::size_t j = 0; j < 4; ++j)
                out += i + j <= bytes.size() ? letters[three >> (18 - 6 * j) & 63] : '=';
        }
        return out;
    }

    const Motion& _motion;
    WrittenGltf _written;
    GltfBuffer _buffer;
    GltfMeshWriter _meshes;
    std::vector<std::size_t> _roots;
    ordered_json _nodes = ordered_json::array(), _animations = ordered_json::array();
    ordered_json _shown = ordered_json::object(); ///< meshes and what belongs to them
    ordered_json _samplers, _channels;            ///< of the animation that is being added
    double _shift = 0.0;                          ///< seconds that this animation is moved
};

} // namespace

WrittenGltf writeGltf(const Motion& motion, bool isBinary) {
    return GltfDocument(motion).write(isBinary);
}

} // namespace ka::motion
