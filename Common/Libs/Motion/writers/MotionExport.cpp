#include "writers/MotionExport.h"

#include "kaMotion/Text.h"
#include "readers/MeshCheck.h"
#include "writers/SceneCameras.h"
#include "writers/SceneMeshes.h"
#include "writers/SceneNodes.h"

#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaNodeUtils.h>
#include <map>
#include <set>

namespace ka::motion {

namespace {

/// One of the nine scalars that place a node.
struct Placement {
    int part = 0; ///< 0 translation, 1 rotation, 2 scale
    std::size_t axis = 0;
};

bool placementOf(const std::string& attribute, Placement& placement) {
    constexpr const char* parts[] = {"translation", "rotation", "scale"};
    for (int part = 0; part < 3; ++part) {
        const std::string name = parts[part];
        const std::size_t axis =
            attribute.size() == name.size() + 1 && attribute.compare(0, name.size(), name) == 0
                ? std::string("XYZ").find(attribute.back())
                : std::string::npos;
        if (axis != std::string::npos)
            return placement = {part, axis}, true;
    }
    return false;
}

/// Keys that run straight from one value to the next.
std::vector<PlainKey> straightKeys(const std::vector<std::pair<float, float>>& values) {
    std::vector<PlainKey> keys;
    for (const auto& [frame, value] : values)
        keys.push_back({frame, value, frame, value, frame, value});
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        PlainKey &left = keys[i], &right = keys[i + 1];
        left.outX = right.inX = left.x + (right.x - left.x) / 2.0F;
        left.outY = right.inY = left.y + (right.y - left.y) / 2.0F;
    }
    return keys;
}

class MotionDescriber {
  public:
    MotionDescriber(const SamplingOptions& options, ExportReport& report)
        : _options(options), _report(report) {}

    Motion run(const Project& project, const std::vector<kaAnimationObject*>& objects) {
        _scene = describeNodes(project.root());
        _report.nodes = _scene.nodes.size();
        _motion.nodes = _scene.nodes;
        _morphs = describeMeshes(project.root(), _scene, _motion);
        describeCameras(project.root(), _scene, _motion);
        std::vector<kaAnimationObject*> loose;
        for (kaAnimationObject* object : objects) {
            if (object->getTypeID() == KA_TYPE_STRIP)
                addTake(utf8FromLatin1(object->getName()), {object});
            else
                loose.push_back(object);
        }
        if (!loose.empty())
            addTake(loose.size() == 1 ? utf8FromLatin1(loose.front()->getName()) : "animation", loose);
        noteTheRest();
        readPictures(_motion, project.file());
        checkMeshes(_motion, _motion.notes);
        _report.notes.insert(_report.notes.end(), _motion.notes.begin(), _motion.notes.end());
        _report.meshes = _motion.meshes.size();
        _motion.notes = _report.notes;
        return std::move(_motion);
    }

  private:
    /// The curves of one node by part and axis, each with its object.
    struct Driven {
        std::vector<kaAnimationCurve2D*> curves;
        bool isEvaluated = false;
    };
    struct NodeCurves {
        std::array<std::array<Driven, 3>, 3> parts;
        std::map<std::size_t, Driven> weights; ///< by the shape
    };
    using TakeCurves = std::map<std::uint32_t, NodeCurves>; ///< by the node

    void addTake(const std::string& name, const std::vector<kaAnimationObject*>& objects) {
        TakeCurves nodes;
        std::set<kaAnimationCurve2D*> seen;
        for (kaAnimationObject* object : objects)
            for (kaAnimationCurve2D* curve : object->getCurves())
                if (seen.insert(curve).second)
                    place(*curve, nodes);
        evaluateShared(objects, nodes);
        MotionTake take{name, {}};
        for (const auto& [node, driven] : nodes) {
            const auto& parts = driven.parts;
            MotionTrack track;
            track.node = node;
            if (isDriven(parts[0]))
                track.translation = sampleVector(functions(node, 0, parts[0]), _options, _report.channels);
            if (isDriven(parts[1]))
                track.quaternion = sampleRotation(functions(node, 1, parts[1]), _options, _report.channels);
            if (isDriven(parts[2]))
                track.scale = sampleVector(functions(node, 2, parts[2]), _options, _report.channels);
            for (const auto& [shape, weight] : driven.weights) {
                track.weights.resize(std::max(track.weights.size(), shape + 1));
                track.weights[shape] = sampleWeight(weight);
            }
            take.tracks.push_back(std::move(track));
        }
        if (take.tracks.empty())
            _report.notes.push_back("'" + oneLine(name) + "' moves no node and was left out");
        else
            _motion.takes.push_back(std::move(take));
    }

    static bool isDriven(const std::array<Driven, 3>& part) {
        return std::any_of(part.begin(), part.end(), [](const Driven& d) { return !d.curves.empty(); });
    }

    MotionChannel<1> sampleWeight(const Driven& weight) {
        const CurveFunction none(0.0);
        const MotionChannel<3> wide =
            sampleVector({CurveFunction(keysOf(weight), 0.0), none, none}, _options, _report.channels);
        MotionChannel<1> channel{wide.interpolation, {}};
        for (const MotionKey<3>& key : wide.keys)
            channel.keys.push_back({key.time, {key.value[0]}, {key.inTangent[0]}, {key.outTangent[0]}});
        return channel;
    }

    std::vector<PlainKey> keysOf(const Driven& driven) const {
        return driven.isEvaluated ? _evaluated.at(driven.curves.front()->getField())
                                  : plainKeys(*driven.curves.front());
    }

    void place(kaAnimationCurve2D& curve, TakeCurves& nodes) {
        if (!curve.isActive())
            return void(++_inactive);
        const kaAnimationField* field = kaAnimationManager::the()->getField(curve.getField());
        if (field != nullptr && field->attribute == "weight") {
            const auto morph = _morphs.find(static_cast<osg::UInt32>(field->nodeID));
            if (morph == _morphs.end())
                return void(++_others[field->attribute]);
            return drive(curve, nodes[morph->second.node].weights[morph->second.shape]);
        }
        if (field != nullptr && isCarried(field->attribute))
            return void(++_others[field->attribute]);
        const auto node = field == nullptr ? _scene.places.end()
                                           : _scene.places.find(static_cast<osg::UInt32>(field->nodeID));
        if (node == _scene.places.end())
            return void(++_homeless);
        Placement placement;
        if (!placementOf(field->attribute, placement) ||
            osg::Transform3DPtr::dcast(_scene.sources[node->second]->getCore()) == osg::NullFC)
            return void(++_others[field->attribute]);
        drive(curve, nodes[node->second].parts[static_cast<std::size_t>(placement.part)][placement.axis]);
    }

    /// Of what a node carries rather than of its place: nodes of cameras, lights and materials are not described.
    static bool isCarried(const std::string& attribute) {
        Placement placement;
        return !placementOf(attribute, placement);
    }

    void drive(kaAnimationCurve2D& curve, Driven& driven) {
        driven.curves.push_back(&curve);
        driven.isEvaluated = driven.curves.size() > 1 || curve.isRepeating() || isInRepeating(curve);
        ++_report.curves;
        _report.keys += curve.getPoints().size();
    }

    static bool isInRepeating(const kaAnimationObject& object) {
        for (const kaAnimationObject* up = object.getParentObject(); up != nullptr;
             up = up->getParentObject())
            if (up->isRepeating())
                return true;
        return false;
    }

    /// Fields that more than their one curve decides, as playback has them.
    void evaluateShared(const std::vector<kaAnimationObject*>& objects, const TakeCurves& nodes) {
        std::map<kaUID, std::vector<std::pair<float, float>>> fields;
        const auto list = [&fields](const Driven& driven) {
            if (driven.isEvaluated)
                fields[driven.curves.front()->getField()];
        };
        for (const auto& [node, curves] : nodes) {
            for (const auto& part : curves.parts)
                std::for_each(part.begin(), part.end(), list);
            for (const auto& [shape, weight] : curves.weights)
                list(weight);
        }
        if (fields.empty())
            return;
        constexpr double perFrame = 2.0, most = 1e7;
        const auto [begin, end] = frameRange(objects);
        const double span = static_cast<double>(end) - static_cast<double>(begin);
        const double steps = std::min(std::ceil(span * perFrame), most / static_cast<double>(fields.size()));
        for (double i = 0; i <= steps; ++i) {
            const auto frame = static_cast<float>(static_cast<double>(begin) + std::min(span, i / perFrame));
            evaluate(objects, frame);
            for (auto& [id, values] : fields)
                if (values.empty() || frame > values.back().first)
                    values.emplace_back(frame, kaAnimationManager::the()->getField(id)->value);
        }
        for (const auto& [id, values] : fields)
            _evaluated[id] = straightKeys(values);
        _evaluatedFields += fields.size();
    }

    CurveFunctions functions(std::uint32_t node, int part, const std::array<Driven, 3>& driven) const {
        const Vec3 rest = restOf(node, part);
        std::array<std::vector<PlainKey>, 3> keys;
        for (std::size_t axis = 0; axis < 3; ++axis)
            if (!driven[axis].curves.empty())
                keys[axis] = keysOf(driven[axis]);
        return {CurveFunction(std::move(keys[0]), rest[0]), CurveFunction(std::move(keys[1]), rest[1]),
                CurveFunction(std::move(keys[2]), rest[2])};
    }

    /// What stands in the scene where no curve moves it; rotations as angles.
    Vec3 restOf(std::uint32_t node, int part) const {
        const MotionNode& described = _scene.nodes[node];
        if (part == 0)
            return described.translation;
        if (part == 2)
            return described.scale;
        const osg::TransformAttachmentPtr turned = kaNodeUtils::getTransformAttachment(_scene.sources[node]);
        if (turned == osg::NullFC)
            return {0, 0, 0};
        const osg::Vec3f& angles = turned->getRotation();
        return {static_cast<double>(angles[0]), static_cast<double>(angles[1]),
                static_cast<double>(angles[2])};
    }

    void noteTheRest() {
        auto& notes = _report.notes;
        notes.insert(notes.end(), _scene.notes.begin(), _scene.notes.end());
        for (const auto& [attribute, count] : _others)
            notes.push_back("left out " + counted(count, "curve") + " of '" +
                            oneLine(utf8FromLatin1(attribute), 80) + "'");
        if (_homeless > 0)
            notes.push_back("left out " + counted(_homeless, "curve") + " without a node in the scene");
        if (_inactive > 0)
            notes.push_back("left out " + counted(_inactive, "curve") + " not active");
        if (_evaluatedFields > 0)
            notes.push_back("sampled twice a frame: " + counted(_evaluatedFields, "attribute") +
                            " that repeats or that several curves drive");
    }

    const SamplingOptions& _options;
    ExportReport& _report;
    SceneNodes _scene;
    Motion _motion;
    MorphPlaces _morphs;
    std::map<kaUID, std::vector<PlainKey>> _evaluated; ///< by field, of the take that is being added
    std::map<std::string, std::size_t> _others;        ///< curves of other attributes
    std::size_t _homeless = 0, _inactive = 0, _evaluatedFields = 0;
};

} // namespace

Motion describeMotion(const Project& project, const std::vector<kaAnimationObject*>& objects,
                      const SamplingOptions& options, ExportReport& report) {
    return MotionDescriber(options, report).run(project, objects);
}

} // namespace ka::motion
