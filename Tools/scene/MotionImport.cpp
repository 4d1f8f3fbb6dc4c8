#include "scene/MotionImport.h"

#include "base/Text.h"
#include "import/RotationSource.h"

#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaControlPoint2D.h>
#include <kaNodeUtils.h>

namespace ka::tools {

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

/// Compares a curve, as the controller samples it, with what it was made from.
class MiddleCheck {
  public:
    MiddleCheck(const std::vector<CurveKey>& source, const BezierCurve& laidOut, double framesPerSecond)
        : _source(source), _laidOut(laidOut), _framesPerSecond(framesPerSecond) {}

    void run(kaAnimationCurve2D* curve, ImportReport& report) const {
        double worst = 0.0, low = _laidOut.keys.front().value, high = low;
        for (std::size_t i = 0; i + 1 < _laidOut.keys.size(); ++i) {
            const auto middle = (_laidOut.keys[i].frame + _laidOut.keys[i + 1].frame) / 2.0F;
            float value = 0.0F;
            if (!kaAnimationController::the()->computeCurveValue(curve, middle, value)) {
                ++report.valuelessSegments;
                continue;
            }
            const double wanted = asSampled(sourceValue(i, middle));
            worst = std::max(worst, std::abs(static_cast<double>(value) - wanted));
            for (const double seen : {wanted, static_cast<double>(_laidOut.keys[i + 1].value)}) {
                low = std::min(low, seen);
                high = std::max(high, seen);
            }
        }
        // A curve that stands still has no range; what a float can tell of its value stands in for it.
        const double range = std::max({high - low, std::abs(high) * 1e-2, 1e-6});
        report.worstMiddle = std::max(report.worstMiddle, worst / range);
    }

  private:
    /// The player takes anything this small for nothing, so it is no difference to the source.
    static double asSampled(double value) { return std::abs(value) < 1e-6 ? 0.0 : value; }

    double sourceValue(std::size_t segment, float frame) const {
        const std::size_t a = _laidOut.sources[segment], b = _laidOut.sources[segment + 1];
        if (a == b)
            return _source[a].value;
        const double seconds = static_cast<double>(frame) / _framesPerSecond;
        const double u = (seconds - _source[a].time) / (_source[b].time - _source[a].time);
        return segmentValue(_source[a], _source[b], std::clamp(u, 0.0, 1.0));
    }

    const std::vector<CurveKey>& _source;
    const BezierCurve& _laidOut;
    double _framesPerSecond;
};

class MotionImporter {
  public:
    MotionImporter(const Motion& motion, const ImportOptions& options) : _motion(motion), _options(options) {
        _report.notes = motion.notes;
        _report.rotationTolerance = options.rotationTolerance;
    }

    ImportReport run(const osg::NodePtr& root) {
        addAttributes();
        buildNodes(root);
        for (const MotionTake& take : _motion.takes)
            buildTake(take);
        if (_lossyNames)
            _report.notes.emplace_back("names with characters outside Latin-1 got a '?' in their place");
        if (_report.mergedKeys > 0)
            _report.notes.push_back(counted(_report.mergedKeys, "key") +
                                    " left out because a float cannot tell their frames apart");
        if (_report.unreachedSegments > 0)
            _report.notes.push_back("rotations turn by up to " + formatNumber(_report.worstRotation, 3) +
                                    " degrees differently in " +
                                    counted(_report.unreachedSegments, "segment") +
                                    " that cannot be split further");
        return std::move(_report);
    }

  private:
    static void addAttributes() {
        kaAnimationManager* manager = kaAnimationManager::the();
        for (const char* name : {"translation", "scale", "fieldOfView"})
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
        _report.nodes = _nodes.size();
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
        osg::setName(node, latin1FromUtf8(source.name, _lossyNames));
        osg::endEditCP(node);
        const Vec3 angles = sceneAngles(matrixFromQuaternion(normalized(source.rotation)), {0, 0, 0});
        const osg::Vec3f rotation = single(angles);
        kaNodeUtils::setTransformNodeRotation(node, rotation[0], rotation[1], rotation[2], -1);
        return node;
    }

    void buildTake(const MotionTake& take) {
        kaAnimationManager* manager = kaAnimationManager::the();
        kaAnimationStrip* clip = manager->createStrip(latin1FromUtf8(take.name, _lossyNames), 0);
        for (const MotionTrack& track : take.tracks) {
            kaAnimationUnit* block = buildBlock(track);
            kaAnimationUtils::addAnimationObject(_nodes[track.node], block);
            clip->insertObject(block);
            ++_report.blocks;
        }
        ++_report.clips;
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
        _report.worstRotation = std::max(_report.worstRotation, fit.worst);
        addCurves(block, node, fit.curves, 'R');
    }

    /// @param kind  the letter of the interchange's attribute names: "TransformTX" and so on.
    void addCurves(kaAnimationUnit* block, std::uint32_t node, const CurveTriple& curves, char kind) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (curves[axis].empty())
                continue;
            const BezierCurve laidOut = layOutCurve(curves[axis], _options.framesPerSecond);
            if (laidOut.keys.size() > _options.budget.most() - _report.keys)
                _options.budget.refuse(_report.keys + laidOut.keys.size());
            std::vector<kaControlPoint2D*> points;
            points.reserve(laidOut.keys.size());
            for (const BezierKey& key : laidOut.keys)
                points.push_back(makeKey(key));
            const std::string attribute = std::string("Transform") + kind + "XYZ"[axis];
            kaAnimationCurve2D* curve =
                kaAnimationManager::the()->createCurve2D(_nodes[node], attribute, points, 0, false);
            block->addObject(curve);
            MiddleCheck(curves[axis], laidOut, _options.framesPerSecond).run(curve, _report);
            ++_report.curves;
            _report.keys += points.size();
            _report.mergedKeys += laidOut.merged;
        }
    }

    const Motion& _motion;
    const ImportOptions& _options;
    std::vector<osg::NodePtr> _nodes;
    ImportReport _report;
    bool _lossyNames = false;
};

} // namespace

ImportReport importMotion(const Motion& motion, const osg::NodePtr& root, const ImportOptions& options) {
    return MotionImporter(motion, options).run(root);
}

} // namespace ka::tools
