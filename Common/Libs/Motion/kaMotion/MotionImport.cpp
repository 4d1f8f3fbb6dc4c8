#include "check/Deviation.h"
#include "project/CameraImport.h"
#include "project/MeshImport.h"
#include "readers/NoteGroups.h"

#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaControlPoint2D.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/DocumentNumber.h>
#include <kaMotion/MotionImport.h>
#include <kaMotion/RotationSource.h>
#include <kaMotion/Text.h>
#include <kaNodeUtils.h>

namespace ka::motion {

namespace {

osg::Vec3f single(const Vec3& v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

kaControlPoint2D* makeKey(const BezierKey& key) {
    kaControlPoint2D* point = kaAnimationManager::the()->createPoint2D(key.frame, key.value, 0);
    // The handles are the source's; nothing may place them anew.
    point->setTangentType(kaControlPoint2D::TANGENT_USER);
    point->getInTangent()->setPosition(key.inFrame, key.inValue);
    point->getOutTangent()->setPosition(key.outFrame, key.outValue);
    return point;
}

/// What the keys of a source give at a frame, held outside of their span.
class SourceCurve {
  public:
    SourceCurve(const std::vector<CurveKey>& keys, double framesPerSecond)
        : _keys(keys), _framesPerSecond(framesPerSecond) {}

    double at(double frame) {
        const double time = frame / _framesPerSecond;
        // From where it was asked last it is seldom far.
        while (_segment > 0 && time < _keys[_segment].time)
            --_segment;
        while (_segment + 1 < _keys.size() && time >= _keys[_segment + 1].time)
            ++_segment;
        const CurveKey& from = _keys[_segment];
        if (time <= from.time || _segment + 1 == _keys.size())
            return from.value;
        const CurveKey& to = _keys[_segment + 1];
        return segmentValue(from, to, (time - from.time) / (to.time - from.time));
    }

  private:
    const std::vector<CurveKey>& _keys;
    double _framesPerSecond;
    std::size_t _segment = 0;
};

class MotionImporter {
  public:
    MotionImporter(const Motion& motion, const ImportOptions& options, Listener& listener)
        : _motion(motion), _options(options), _listener(listener) {
        for (const MotionTake& take : motion.takes)
            _steps += take.tracks.size();
        _report.notes = groupedNotes(motion.notes);
        _report.rotationTolerance = options.rotationTolerance;
        _report.framesPerSecond = options.framesPerSecond;
    }

    ImportReport run(const osg::NodePtr& root) {
        addAttributes();
        buildNodes(root);
        BuiltMeshes meshes = buildMeshes(_motion, _nodes, root, _lossyNames);
        _morphs = std::move(meshes.morphs);
        _properties = buildCameras(_motion, _nodes, root, meshes.materials, _lossyNames);
        _report.cameras = carriedCount(_motion.cameras);
        _report.lights = carriedCount(_motion.lights);
        _report.meshes = meshes.meshes;
        _report.triangles = meshes.triangles;
        _report.nodes = nodesBelow(root);
        for (const MotionTake& take : _motion.takes)
            buildTake(take);
        if (_steps > 0)
            _listener.progress("building animation", _steps, _steps);
        if (_lossyNames)
            _report.notes.emplace_back("names with characters outside Latin-1 got a '?' in their place");
        if (_report.mergedKeys > 0)
            _report.notes.push_back(counted(_report.mergedKeys, "key") +
                                    " left out because a document cannot tell their frames apart");
        return std::move(_report);
    }

  private:
    template <class Carried>
    static std::size_t carriedCount(const std::vector<Carried>& list) {
        std::size_t count = 0;
        for (const Carried& carried : list)
            count += carried.nodes.size();
        return count;
    }

    /// Every attribute that importing can make a curve of, whatever this model has: a document of one model must
    /// find its fields in a session that began with another.
    static void addAttributes() {
        kaAnimationManager* manager = kaAnimationManager::the();
        for (const char* name : {"translation", "scale", "fieldOfView", "weight", "diffuse", "emission",
                                 "transparency", "spotCutOff"})
            if (!manager->isAnimationAttribute(name))
                manager->addAnimationAttribute(name);
    }

    void buildNodes(const osg::NodePtr& root) {
        for (const MotionNode& source : _motion.nodes) {
            const osg::NodePtr parent = source.parent == MotionNode::noParent
                                            ? root
                                            : _nodes[static_cast<std::size_t>(source.parent)];
            _nodes.push_back(buildNode(source));
            osg::beginEditCP(parent, osg::Node::ChildrenFieldMask);
            parent->addChild(_nodes.back());
            osg::endEditCP(parent, osg::Node::ChildrenFieldMask);
        }
    }

    static std::size_t nodesBelow(const osg::NodePtr& root) {
        std::size_t count = 0;
        std::vector<osg::NodePtr> pending{root};
        while (!pending.empty()) {
            const osg::NodePtr node = pending.back();
            pending.pop_back();
            ++count;
            for (osg::UInt32 i = 0; i < node->getNChildren(); ++i)
                pending.push_back(node->getChild(i));
        }
        return count;
    }

    osg::NodePtr buildNode(const MotionNode& source) {
        const osg::Transform3DPtr core = osg::Transform3D::create();
        osg::beginEditCP(core);
        core->setTranslation(single(source.translation));
        core->setScale(single(source.scale));
        osg::endEditCP(core);
        osg::NodePtr node = osg::Node::create();
        osg::beginEditCP(node);
        node->setCore(core);
        if (!source.isVisible)
            node->setActive(false);
        osg::setName(node, latin1FromUtf8(source.name, _lossyNames));
        osg::endEditCP(node);
        const Vec3 angles = sceneAngles(matrixFromQuaternion(normalized(source.rotation)), {0, 0, 0});
        const osg::Vec3f rotation = single(angles);
        kaNodeUtils::setTransformNodeRotation(node, rotation[0], rotation[1], rotation[2], -1);
        return node;
    }

    void buildTake(const MotionTake& take) {
        kaAnimationManager* manager = kaAnimationManager::the();
        _take = _motion.takes.size() > 1 ? " of '" + oneLine(take.name) + "'" : "";
        kaAnimationStrip* clip = manager->createStrip(latin1FromUtf8(take.name, _lossyNames), 0);
        for (const MotionTrack& track : take.tracks) {
            _listener.progress("building animation", _stepsDone++, _steps);
            kaAnimationUnit* block = buildBlock(track);
            kaAnimationUtils::addAnimationObject(_nodes[track.node], block);
            clip->insertObject(block);
            ++_report.blocks;
            addWeights(clip, track);
        }
        for (const MotionPropertyTrack& track : take.properties)
            addProperty(clip, track);
        ++_report.clips;
    }

    /// A block on each node that has the property.
    void addProperty(kaAnimationStrip* clip, const MotionPropertyTrack& track) {
        const auto known = _properties.find({track.property, track.owner});
        if (known == _properties.end() || known->second.empty())
            return;
        kaAnimationManager* manager = kaAnimationManager::the();
        for (std::size_t place = 0; place < known->second.front().nodes.size(); ++place) {
            const osg::NodePtr& node = known->second.front().nodes[place];
            kaAnimationUnit* block = manager->createUnit(osg::getName(node), 0);
            for (std::size_t i = 0; i < track.components.size() && i < known->second.size(); ++i) {
                const PropertyFields& target = known->second[i];
                if (!track.components[i].keys.empty())
                    addFieldCurve(block, node, target.attribute,
                                  keysOf(track.components[i], target.factor, target.offset));
            }
            kaAnimationUtils::addAnimationObject(node, block);
            clip->insertObject(block);
            ++_report.blocks;
        }
    }

    /// The keys of a channel whose values become factor * value + offset.
    static std::vector<CurveKey> keysOf(const MotionChannel<1>& channel, double factor, double offset) {
        MotionChannel<3> wide{channel.interpolation, {}};
        for (const MotionKey<1>& key : channel.keys)
            wide.keys.push_back({key.time,
                                 {key.value[0] * factor + offset, 0, 0},
                                 {key.inTangent[0] * factor, 0, 0},
                                 {key.outTangent[0] * factor, 0, 0}});
        return curvesOf(wide)[0];
    }

    void addFieldCurve(kaAnimationUnit* block, const osg::NodePtr& node, const std::string& attribute,
                       std::vector<CurveKey> keys) {
        kaAnimationManager* manager = kaAnimationManager::the();
        kaAnimationField* field = manager->getField(node, attribute);
        if (field != nullptr)
            addCurve(block, keys, [&](const std::vector<kaControlPoint2D*>& points) {
                kaAnimationCurve2D* curve = manager->createCurve2D(field, attribute, 0, false);
                curve->setPoints(points);
                return curve;
            });
    }

    /// A block on the node of each morph target that is moved.
    void addWeights(kaAnimationStrip* clip, const MotionTrack& track) {
        const auto known = _morphs.find(track.node);
        for (std::size_t i = 0; i < track.weights.size() && known != _morphs.end(); ++i) {
            if (track.weights[i].keys.empty() || i >= known->second.size())
                continue;
            for (const osg::NodePtr& node : known->second[i]) {
                kaAnimationUnit* block = kaAnimationManager::the()->createUnit(osg::getName(node), 0);
                addFieldCurve(block, node, "weight", keysOf(track.weights[i], 1.0, 0.0));
                kaAnimationUtils::addAnimationObject(node, block);
                clip->insertObject(block);
                ++_report.blocks;
            }
        }
    }

    kaAnimationUnit* buildBlock(const MotionTrack& track) {
        const MotionNode& source = _motion.nodes[track.node];
        kaAnimationUnit* block =
            kaAnimationManager::the()->createUnit(latin1FromUtf8(source.name, _lossyNames), 0);
        addCurves(block, track.node, curvesOf(track.translation), 'T');
        if (!track.angles.keys.empty())
            addRotation(block, track.node, RotationSource(track.angles, source.order));
        else
            addRotation(block, track.node, RotationSource(track.quaternion));
        addCurves(block, track.node, curvesOf(track.scale), 'S');
        return block;
    }

    void addRotation(kaAnimationUnit* block, std::uint32_t node, const RotationSource& source) {
        // Splitting ends well above the distance at which floats run together, and far below a frame.
        const FitOptions options{_options.rotationTolerance, 0.02 / _options.framesPerSecond,
                                 (_options.budget.most() - _report.keys) / 3};
        const RotationFit fit = fitRotation(source, options);
        _report.addedKeys += 3 * fit.addedKeys;
        _report.unreachedSegments += fit.unreached;
        if (fit.worst > _report.worstRotation) {
            _report.worstRotation = fit.worst;
            _report.worstRotationNode = "'" + oneLine(_motion.nodes[node].name) + "'" + _take;
        }
        if (fit.unreached > 0)
            _report.faults.push_back(
                "rotation of '" + oneLine(_motion.nodes[node].name) + "'" + _take + ": up to " +
                formatNumber(fit.worst, 3) + " degrees off, worst at frame " +
                formatNumber(fit.worstTime * _options.framesPerSecond, 6) + ", because " +
                counted(fit.unreached, "segment") + " cannot be split further");
        addCurves(block, node, fit.curves, 'R');
    }

    /// @param kind  the letter of the interchange's attribute names: "TransformTX" and so on.
    void addCurves(kaAnimationUnit* block, std::uint32_t node, CurveTriple curves, char kind) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::string attribute = std::string("Transform") + kind + "XYZ"[axis];
            if (!curves[axis].empty())
                addCurve(block, curves[axis], [&](const std::vector<kaControlPoint2D*>& points) {
                    return kaAnimationManager::the()->createCurve2D(_nodes[node], attribute, points, 0,
                                                                    false);
                });
        }
    }

    /// @param make  gives a curve with the points.
    template <class Make>
    void addCurve(kaAnimationUnit* block, std::vector<CurveKey>& keys, const Make& make) {
        snapToFrames(keys, _options.framesPerSecond);
        const BezierCurve laidOut = layOutCurve(keys, _options.framesPerSecond);
        if (laidOut.keys.size() > _options.budget.most() - _report.keys)
            _options.budget.refuse(_report.keys + laidOut.keys.size());
        std::vector<kaControlPoint2D*> points;
        points.reserve(laidOut.keys.size());
        for (const BezierKey& key : laidOut.keys)
            points.push_back(makeKey(key));
        kaAnimationCurve2D* curve = make(points);
        block->addObject(curve);
        compareWithSource(*curve, keys);
        ++_report.curves;
        _report.keys += points.size();
        _report.mergedKeys += laidOut.merged;
    }

    void compareWithSource(const kaAnimationCurve2D& curve, const std::vector<CurveKey>& keys) {
        SourceCurve source(keys, _options.framesPerSecond);
        const CurveJudgement judgement =
            judge(plainKeys(curve), [&source](double frame) { return source.at(frame); });
        if (!judgement.fault && judgement.worst == 0.0)
            return;
        const std::string name = "'" + oneLine(curveLabel(&curve)) + "'" + _take;
        if (judgement.fault)
            _report.faults.push_back("curve " + name + ": " + judgement.fault->text());
        const double range =
            static_cast<double>(curve.getMaximum()) - static_cast<double>(curve.getMinimum());
        // A curve that stands has no range to be off by a part of.
        if (range <= documentStep)
            return;
        const double part =
            judgement.worst /
            std::max({range, std::abs(static_cast<double>(curve.getMaximum())), documentStep});
        if (part > _report.worstDifference) {
            _report.worstDifference = part;
            _report.worstCurve = name;
            _report.worstFrame = static_cast<double>(judgement.worstFrame);
        }
    }

    const Motion& _motion;
    const ImportOptions& _options;
    Listener& _listener;
    std::size_t _steps = 0, _stepsDone = 0; ///< tracks
    std::string _take;                      ///< which one, where there are several, as a part of messages
    std::vector<osg::NodePtr> _nodes;
    MorphNodes _morphs;
    Properties _properties;
    ImportReport _report;
    bool _lossyNames = false;
};

} // namespace

ImportReport importMotion(const Motion& motion, const osg::NodePtr& root, const ImportOptions& options,
                          Listener& listener) {
    return MotionImporter(motion, options, listener).run(root);
}

} // namespace ka::motion
