#include "RoundTrip.h"

#include "kaMotion/Exporting.h"
#include "kaMotion/Pose.h"
#include "kaMotion/Reduce.h"
#include "writers/SceneNodes.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wshadow"
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cmath>
#include <kaAnimationObject.h>
#include <kaFile.h>
#include <map>

using namespace ka::motion;

namespace {

/// The places of all nodes at every whole frame of one clip.
struct ClipPlaces {
    std::string name;
    double begin = 0.0;
    std::vector<std::vector<NodePose>> frames;
};

struct Places {
    std::vector<std::string> names;
    std::vector<ClipPlaces> clips;
};

std::vector<kaAnimationObject*> clipsOf(const Project& project, ExportKind kind) {
    return kind == ExportKind::Bvh ? project.playable("") : exportedObjects();
}

Places placesOf(const Project& project, ExportKind kind) {
    Places places;
    const SceneNodes scene = describeNodes(project.root());
    for (const MotionNode& node : scene.nodes)
        places.names.push_back(node.name);
    for (kaAnimationObject* clip : clipsOf(project, kind)) {
        ClipPlaces made{clip->getName(), static_cast<double>(clip->getBegin()), {}};
        const double end = static_cast<double>(clip->getEnd());
        for (double frame = std::ceil(made.begin); frame <= end; ++frame) {
            evaluate({clip}, static_cast<float>(frame));
            made.frames.push_back(readPose(scene.sources));
        }
        places.clips.push_back(std::move(made));
    }
    return places;
}

double distance(const std::array<float, 3>& a, const std::array<float, 3>& b) {
    double sum = 0.0;
    for (int i = 0; i < 3; ++i)
        sum += std::pow(static_cast<double>(a[i]) - static_cast<double>(b[i]), 2);
    return std::sqrt(sum);
}

double sizeOf(const Places& places) {
    double size = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        float least = 1e30F, most = -1e30F;
        for (const ClipPlaces& clip : places.clips)
            for (const auto& frame : clip.frames)
                for (const NodePose& pose : frame) {
                    least = std::min(least, pose.position[axis]);
                    most = std::max(most, pose.position[axis]);
                }
        size = std::max(size, static_cast<double>(most) - static_cast<double>(least));
    }
    return size;
}

void compare(const Places& before, const Places& after, bool startsAtZero, RoundTrip& trip) {
    if (before.clips.size() != after.clips.size())
        trip.fault =
            std::to_string(before.clips.size()) + " clips became " + std::to_string(after.clips.size());
    // BVH adds end sites, may add a root and puts nodes in another order: they are found by name there. glTF keeps the
    // order, and may get nodes for meshes, cameras and lights in between.
    std::vector<std::size_t> partners;
    std::size_t from = 0;
    for (const std::string& own : before.names) {
        std::string name = own;
        std::replace(name.begin(), name.end(), ' ', '_');
        const auto found =
            std::find_if(after.names.begin() + static_cast<std::ptrdiff_t>(from), after.names.end(),
                         [&](const std::string& other) { return other == name || other == own; });
        partners.push_back(static_cast<std::size_t>(found - after.names.begin()));
        if (partners.back() == after.names.size())
            trip.fault = "node '" + own + "' is gone";
        from = startsAtZero ? 0 : partners.back() + 1;
    }
    for (std::size_t i = 0; i < before.clips.size() && trip.fault.empty(); ++i) {
        const ClipPlaces &a = before.clips[i], &b = after.clips[i];
        // BVH has no frame but those that it counts from its first.
        const double shift =
            std::ceil(a.begin) - (startsAtZero ? std::floor(a.begin + 1e-3) : std::ceil(b.begin));
        for (std::size_t frame = 0; frame < a.frames.size(); ++frame) {
            const auto other = static_cast<std::size_t>(std::max(0.0, static_cast<double>(frame) + shift));
            if (other >= b.frames.size())
                continue;
            for (std::size_t node = 0; node < before.names.size(); ++node) {
                const double apart =
                    distance(a.frames[frame][node].position, b.frames[other][partners[node]].position);
                if (apart > trip.worst) {
                    trip.worst = apart;
                    trip.where = "'" + before.names[node] + "' of '" + a.name + "' at frame " +
                                 std::to_string(std::ceil(a.begin) + static_cast<double>(frame));
                }
            }
        }
        if (a.frames.size() > b.frames.size() || b.frames.size() > a.frames.size() + 2)
            trip.fault = "clip '" + a.name + "': " + std::to_string(a.frames.size()) + " frames became " +
                         std::to_string(b.frames.size());
        trip.frames += a.frames.size();
    }
    trip.nodes = before.names.size();
    trip.clips = before.clips.size();
}

/// What Assimp reads of the file, key by key.
class Witness {
  public:
    Witness(const std::string& file, const Places& places, double framesPerSecond, RoundTrip& trip)
        : _places(places), _framesPerSecond(framesPerSecond), _trip(trip) {
        _importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
        _scene = _importer.ReadFile(file, 0);
        for (std::size_t i = 0; i < places.names.size(); ++i)
            ++_count[places.names[i]], _place[places.names[i]] = i;
    }

    void testify() {
        if (_scene == nullptr)
            return void(_trip.fault = std::string("Assimp: ") + _importer.GetErrorString());
        if (_scene->mNumAnimations != _places.clips.size())
            return void(_trip.fault =
                            "Assimp finds " + std::to_string(_scene->mNumAnimations) + " animations");
        for (unsigned i = 0; i < _scene->mNumAnimations; ++i)
            for (unsigned j = 0; j < _scene->mAnimations[i]->mNumChannels; ++j)
                compare(*_scene->mAnimations[i], *_scene->mAnimations[i]->mChannels[j], _places.clips[i]);
    }

  private:
    /// The pose on whose frame a key stands, if it does on one.
    const NodePose* poseAt(double frame, const ClipPlaces& clip, std::size_t node) const {
        const double whole = std::round(frame), first = std::ceil(clip.begin);
        const double index = whole - first;
        if (std::abs(frame - whole) > 1e-6 + 2e-7 * std::abs(frame) || index < 0 ||
            index >= static_cast<double>(clip.frames.size()))
            return nullptr;
        return &clip.frames[static_cast<std::size_t>(index)][node];
    }

    void compare(const aiAnimation& animation, const aiNodeAnim& channel, const ClipPlaces& clip) {
        const std::string name = channel.mNodeName.C_Str();
        if (_count[name] != 1)
            return; // the library finds nodes by name
        const std::size_t node = _place[name];
        const double frames = _framesPerSecond / animation.mTicksPerSecond;
        const auto vector = [&](const aiVectorKey* keys, unsigned count,
                                std::array<float, 3> NodePose::*part) {
            for (unsigned i = 0; i < count; ++i)
                // Of two keys at one jump the later one counts on the frame.
                if (const NodePose* pose = poseAt(keys[i].mTime * frames, clip, node);
                    pose != nullptr &&
                    (i + 1 == count || keys[i + 1].mTime * frames > keys[i].mTime * frames + 3e-3)) {
                    const aiVector3D& v = keys[i].mValue;
                    _trip.witnessedValue =
                        std::max(_trip.witnessedValue, distance(pose->*part, {v.x, v.y, v.z}));
                    ++_trip.witnessedKeys;
                }
        };
        vector(channel.mPositionKeys, channel.mNumPositionKeys, &NodePose::translation);
        vector(channel.mScalingKeys, channel.mNumScalingKeys, &NodePose::scale);
        for (unsigned i = 0; i < channel.mNumRotationKeys; ++i) {
            const aiQuatKey& key = channel.mRotationKeys[i];
            const NodePose* pose = poseAt(key.mTime * frames, clip, node);
            if (pose == nullptr || (i + 1 < channel.mNumRotationKeys &&
                                    channel.mRotationKeys[i + 1].mTime * frames <= key.mTime * frames + 3e-3))
                continue;
            const Vec3 angles{static_cast<double>(pose->rotation[0]), static_cast<double>(pose->rotation[1]),
                              static_cast<double>(pose->rotation[2])};
            const Matrix3 wanted = matrixFromAngles(angles, sceneOrder);
            const Matrix3 read = matrixFromQuaternion(
                normalized({static_cast<double>(key.mValue.x), static_cast<double>(key.mValue.y),
                            static_cast<double>(key.mValue.z), static_cast<double>(key.mValue.w)}));
            _trip.witnessedRotation = std::max(_trip.witnessedRotation, angleBetween(wanted, read));
            ++_trip.witnessedKeys;
        }
    }

    const Places& _places;
    double _framesPerSecond;
    RoundTrip& _trip;
    Assimp::Importer _importer;
    const aiScene* _scene = nullptr;
    std::map<std::string, int> _count;
    std::map<std::string, std::size_t> _place;
};

} // namespace

RoundTrip roundTrip(const std::string& model, const std::string& target, double framesPerSecond,
                    double thinning) {
    RoundTrip trip;
    const ExportKind kind = *exportKind(target);
    ProjectFiles files;
    files.file = model;
    files.import.framesPerSecond = framesPerSecond;
    Places before;
    {
        const Project project(files);
        trip.keysBefore = project.report().keys;
        if (thinning > 0.0) {
            before = placesOf(project, kind);
            ReduceOptions how;
            how.world = thinning * std::max(sizeOf(before), 1e-9);
            trip.keysThinned = reduce(allCurves(), project.root(), how).keysAfter;
        }
        ExportOptions options;
        options.sampling.framesPerSecond = framesPerSecond;
        const ExportedFile file = exportAs(kind, project, clipsOf(project, kind), options);
        trip.channels = file.report.channels.keys;
        std::string error, warning;
        if (!kaFile::writeSafely(target, file.bytes, error, warning))
            trip.fault = error;
        if (!(thinning > 0.0))
            before = placesOf(project, kind);
    }
    const bool movesNothing = kind != ExportKind::Bvh && trip.channels == 0;
    if (!trip.fault.empty() || before.clips.empty() || movesNothing)
        return trip;
    files.file = target;
    {
        const Project project(files);
        trip.keysAgain = project.report().keys;
        compare(before, placesOf(project, kind), kind == ExportKind::Bvh, trip);
    }
    trip.size = sizeOf(before);
    if (!(thinning > 0.0) && (kind == ExportKind::Glb || kind == ExportKind::Gltf))
        Witness(target, before, framesPerSecond, trip).testify();
    return trip;
}
