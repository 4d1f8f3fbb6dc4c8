#include "readers/AssimpReader.h"

#include "readers/AssimpCameras.h"
#include "readers/AssimpMeshes.h"
#include "readers/AssimpScene.h"
#include "readers/ConfinedFolder.h"
#include "readers/NodeOrder.h"

#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wshadow"
#include <assimp/IOStream.hpp>
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/postprocess.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cstring>

namespace ka::motion {

namespace {

constexpr std::size_t largestFile = std::size_t{1} << 31;

/// What the library assumes where a file does not say.
constexpr double defaultTicksPerSecond = 25.0;

/// A file of the model's folder, held in memory.
class MemoryStream : public Assimp::IOStream {
  public:
    explicit MemoryStream(std::string bytes) : _bytes(std::move(bytes)) {}

    size_t Read(void* buffer, size_t size, size_t count) override {
        const std::size_t whole = size == 0 ? 0 : std::min(count, (_bytes.size() - _at) / size);
        std::memcpy(buffer, _bytes.data() + _at, whole * size);
        _at += whole * size;
        return whole;
    }
    size_t Write(const void*, size_t, size_t) override { return 0; }
    aiReturn Seek(size_t offset, aiOrigin origin) override {
        const std::size_t base = origin == aiOrigin_CUR ? _at : 0;
        // From the end, the library counts backwards in an unsigned number.
        const std::size_t target = origin == aiOrigin_END ? _bytes.size() - offset : base + offset;
        if (target > _bytes.size())
            return aiReturn_FAILURE;
        _at = target;
        return aiReturn_SUCCESS;
    }
    size_t Tell() const override { return _at; }
    size_t FileSize() const override { return _bytes.size(); }
    void Flush() override {}

  private:
    std::string _bytes;
    std::size_t _at = 0;
};

class ConfinedSystem : public Assimp::IOSystem {
  public:
    explicit ConfinedSystem(const ConfinedFolder& folder) : _folder(folder) {}

    bool Exists(const char* name) const override { return _folder.resolve(name).has_value(); }
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* name, const char* mode) override {
        if (std::strpbrk(mode, "wa+") != nullptr)
            return nullptr;
        std::optional<std::string> bytes = _folder.read(name, largestFile);
        return bytes ? new MemoryStream(std::move(*bytes)) : nullptr;
    }
    void Close(Assimp::IOStream* file) override { delete file; }
    bool CreateDirectory(const std::string&) override { return false; }
    bool DeleteFile(const std::string&) override { return false; }

  private:
    const ConfinedFolder& _folder;
};

RestMatrix matrixOf(const aiMatrix4x4& m) {
    return {{{m.a1, m.a2, m.a3, m.a4}, {m.b1, m.b2, m.b3, m.b4}, {m.c1, m.c2, m.c3, m.c4}}};
}

class SceneReader {
  public:
    SceneReader(const aiScene& scene, const KeyBudget& budget) : _scene(scene), _budget(budget) {
        _places.nodesOfMeshes.resize(scene.mNumMeshes);
    }

    /// Reads the meshes as well, which must be triangles by now.
    Motion readWith(const ConfinedFolder& folder) {
        Motion motion = read();
        readAssimpMeshes(_scene, _places, folder, motion);
        return motion;
    }

    Motion read() {
        expectKeys();
        readNodes();
        for (unsigned int i = 0; i < _scene.mNumAnimations; ++i)
            readTake(*_scene.mAnimations[i], i);
        readAssimpCameras(_scene, _places, _motion);
        return std::move(_motion);
    }

  private:
    void expectKeys() {
        for (unsigned int i = 0; i < _scene.mNumAnimations; ++i)
            for (unsigned int j = 0; j < _scene.mAnimations[i]->mNumChannels; ++j) {
                const aiNodeAnim& channel = *_scene.mAnimations[i]->mChannels[j];
                for (const unsigned int keys :
                     {channel.mNumPositionKeys, channel.mNumScalingKeys, channel.mNumRotationKeys})
                    _budget.expect(keys);
            }
    }

    void readNodes() {
        struct Pending {
            const aiNode* node;
            std::int32_t parent;
        };
        std::vector<Pending> pending{{_scene.mRootNode, MotionNode::noParent}};
        while (!pending.empty()) {
            const Pending next = pending.back();
            pending.pop_back();
            const auto place = static_cast<std::int32_t>(_motion.nodes.size());
            addNode(*next.node, next.parent);
            for (unsigned int i = next.node->mNumChildren; i-- > 0;)
                pending.push_back({next.node->mChildren[i], place});
        }
    }

    void addNode(const aiNode& node, std::int32_t parent) {
        MotionNode made;
        made.name = text(node.mName);
        made.parent = parent;
        if (made.name.empty())
            made.name = "node " + std::to_string(_motion.nodes.size());
        if (!setRestTransform(made, matrixOf(node.mTransformation)))
            _motion.notes.push_back("node '" + oneLine(made.name) +
                                    "': its matrix is sheared; the shear was left out");
        const auto place = static_cast<std::uint32_t>(_motion.nodes.size());
        _places.byName.emplace(made.name, place);
        for (unsigned int i = 0; i < node.mNumMeshes; ++i)
            if (node.mMeshes[i] < _places.nodesOfMeshes.size())
                _places.nodesOfMeshes[node.mMeshes[i]].push_back(place);
        _motion.nodes.push_back(std::move(made));
    }

    void readTake(const aiAnimation& animation, unsigned int index) {
        MotionTake take{text(animation.mName), {}};
        if (take.name.empty())
            take.name = "take " + std::to_string(index + 1);
        const double ticks =
            animation.mTicksPerSecond > 0.0 ? animation.mTicksPerSecond : defaultTicksPerSecond;
        std::size_t lost = animation.mNumMeshChannels;
        for (unsigned int i = 0; i < animation.mNumChannels; ++i) {
            const aiNodeAnim& channel = *animation.mChannels[i];
            const auto place = _places.byName.find(text(channel.mNodeName));
            if (place == _places.byName.end())
                ++lost;
            else
                take.tracks.push_back(readTrack(channel, place->second, ticks));
        }
        for (unsigned int i = 0; i < animation.mNumMorphMeshChannels; ++i)
            if (!readMorphs(*animation.mMorphMeshChannels[i], take, ticks))
                ++lost;
        if (lost > 0)
            _motion.notes.push_back("take '" + oneLine(take.name) + "': left out " +
                                    counted(lost, "channel") + " without a node to move");
        _motion.takes.push_back(std::move(take));
    }

    /// Weights of morph targets, each under the target's number. @return whether it is known what shows the targets.
    bool readMorphs(const aiMeshMorphAnim& channel, MotionTake& take, double ticks) {
        const std::string name = text(channel.mName);
        auto place = _places.byName.find(name);
        if (place == _places.byName.end()) // "node*0" names the first of the node's meshes
            place = _places.byName.find(name.substr(0, name.rfind('*')));
        if (place == _places.byName.end())
            return false;
        std::size_t targets = 0;
        for (unsigned int i = 0; i < _scene.mNumMeshes; ++i)
            targets = std::max<std::size_t>(targets, _scene.mMeshes[i]->mNumAnimMeshes);
        const auto known =
            std::find_if(take.tracks.begin(), take.tracks.end(),
                         [&](const MotionTrack& track) { return track.node == place->second; });
        MotionTrack& track = known == take.tracks.end() ? take.tracks.emplace_back() : *known;
        track.node = place->second;
        track.weights.resize(targets);
        for (unsigned int i = 0; i < channel.mNumKeys; ++i) {
            const aiMeshMorphKey& key = channel.mKeys[i];
            for (unsigned int j = 0; j < key.mNumValuesAndWeights; ++j)
                if (key.mValues[j] < targets)
                    _budget.add(track.weights[key.mValues[j]],
                                {key.mTime / ticks, {key.mWeights[j]}, {}, {}});
        }
        return true;
    }

    MotionTrack readTrack(const aiNodeAnim& channel, std::uint32_t node, double ticks) {
        MotionTrack track;
        track.node = node;
        for (unsigned int i = 0; i < channel.mNumPositionKeys; ++i)
            _budget.add(
                track.translation,
                {channel.mPositionKeys[i].mTime / ticks, vec(channel.mPositionKeys[i].mValue), {}, {}});
        for (unsigned int i = 0; i < channel.mNumScalingKeys; ++i)
            _budget.add(track.scale,
                        {channel.mScalingKeys[i].mTime / ticks, vec(channel.mScalingKeys[i].mValue), {}, {}});
        for (unsigned int i = 0; i < channel.mNumRotationKeys; ++i) {
            const aiQuatKey& key = channel.mRotationKeys[i];
            _budget.add(
                track.quaternion,
                {key.mTime / ticks, {key.mValue.x, key.mValue.y, key.mValue.z, key.mValue.w}, {}, {}});
        }
        return track;
    }

    const aiScene& _scene;
    KeyBudget _budget;
    Motion _motion;
    AssimpPlaces _places;
};

} // namespace

bool isKnownToAssimp(const std::string& extension) {
    return !extension.empty() && Assimp::Importer().IsExtensionSupported("." + extension);
}

Motion readWithAssimp(const ConfinedFolder& folder, KeyBudget budget) {
    Assimp::Importer importer;
    importer.SetIOHandler(new ConfinedSystem(folder)); // the importer owns it
    // Pivots would turn every joint into a chain of helper nodes; a file of nothing but animation is still a
    // file.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    const aiScene* scene = importer.ReadFile(folder.modelName(), 0);
    if (scene == nullptr || scene->mRootNode == nullptr)
        throw Failure(ExitCode::Unreadable, oneLine(importer.GetErrorString(), 160));
    if (scene->mNumMeshes == 0)
        return SceneReader(*scene, budget).read();
    Motion motion = SceneReader(*scene, budget).read();
    // Only now: what fails on the way to triangles must not cost the motion.
    scene = importer.ApplyPostProcessing(aiProcess_Triangulate | aiProcess_JoinIdenticalVertices);
    if (scene == nullptr || scene->mRootNode == nullptr) {
        motion.notes.push_back("left out the meshes: " + oneLine(importer.GetErrorString(), 160));
        return motion;
    }
    return SceneReader(*scene, budget).readWith(folder);
}

} // namespace ka::motion
