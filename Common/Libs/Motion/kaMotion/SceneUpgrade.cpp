#include "project/ModuleCalls.h"

#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGAnimationTrack.h>
#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGCameraSetting.h>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUtils.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/SceneUpgrade.h>
#include <map>
#include <set>

namespace ka::motion {

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

/// Walks the older containers, which may refer to each other in rings, with a list of its own.
class OlderWalk {
  public:
    void visit(const osg::NodePtr& node) {
        const auto attachment =
            osg::AnimationAttachmentPtr::dcast(kaAnimationUtils::getOldAnimationAttachment(node));
        if (attachment == osg::NullFC)
            return;
        ++content.nodes;
        for (const osg::AnimationClipPtr& clip : attachment->getClips())
            _pending.push_back(clip);
        addBlocks(attachment->getBlocks());
        while (!_pending.empty()) {
            const osg::FieldContainerPtr next = _pending.back();
            _pending.pop_back();
            if (const auto clip = osg::AnimationClipPtr::dcast(next); clip != osg::NullFC)
                addClip(clip);
            else if (const auto track = osg::AnimationTrackPtr::dcast(next); track != osg::NullFC)
                addTrack(track);
        }
    }

    OlderContent content;
    std::set<std::string> attributes; ///< as the curves spell them

  private:
    template <class Ptr>
    bool isNew(const Ptr& container) {
        return container != osg::NullFC && _seen.insert(container.getFieldContainerId()).second;
    }

    template <class Entries>
    void addNestedClips(const Entries& entries) {
        for (const osg::FieldContainerPtr& entry : entries)
            if (osg::AnimationClipPtr::dcast(entry) != osg::NullFC)
                _pending.push_back(entry);
    }

    void addClip(const osg::AnimationClipPtr& clip) {
        if (!isNew(clip))
            return;
        ++content.clips;
        addBlocks(clip->getBlocks());
        addNestedClips(clip->getEntries());
        for (const osg::AnimationTrackPtr& track : clip->getTracks())
            _pending.push_back(track);
    }

    void addTrack(const osg::AnimationTrackPtr& track) {
        if (!isNew(track))
            return;
        ++content.tracks;
        addBlocks(track->getBlocks());
        for (const osg::AnimationBlockPtr& sequence : track->getSequences())
            content.sequences += isNew(sequence) ? 1 : 0;
        addNestedClips(track->getEntries());
    }

    template <class Blocks>
    void addBlocks(const Blocks& blocks) {
        for (const osg::AnimationBlockPtr& block : blocks) {
            if (!isNew(block))
                continue;
            ++content.blocks;
            for (const osg::AnimationCurvePtr& curve : block->getCurves())
                addCurve(curve);
        }
    }

    void addCurve(const osg::AnimationCurvePtr& curve) {
        if (!isNew(curve))
            return;
        ++content.curves;
        std::set<float> frames;
        for (const osg::AnimationControlPointPtr& point : curve->getPoints()) {
            content.points += isNew(point) ? 1 : 0;
            if (point != osg::NullFC && std::isfinite(point->getPosition()[0]))
                content.overlaid += frames.insert(point->getPosition()[0]).second ? 0 : 1;
        }
        attributes.insert(curve->getAttribute().empty() ? curve->getName() : curve->getAttribute());
    }

    std::set<osg::UInt32> _seen;
    std::vector<osg::FieldContainerPtr> _pending;
};

/// A curve animates one component ("diffuseR") of the field that a host would name ("diffuse"), or the whole
/// of it.
void offerAttributes(const std::set<std::string>& attributes) {
    for (const std::string& older : attributes) {
        const std::string name = kaAnimationUtils::fullAttributeName(older);
        if (name.empty())
            continue;
        manager().addAnimationAttribute(name);
        manager().addAnimationAttribute(name.substr(0, name.size() - 1));
    }
}

/// Curves and keys by the container id of the node that they animate.
std::map<unsigned long long, UpgradedNode> animatedNodes() {
    std::map<unsigned long long, UpgradedNode> nodes;
    for (const auto& [id, object] : manager().getObjects()) {
        if (object->getTypeID() != KA_TYPE_CURVE)
            continue;
        const auto* curve = static_cast<const kaAnimationCurve2D*>(object);
        const kaAnimationField* field = manager().getField(curve->getField());
        if (field == nullptr)
            continue;
        ++nodes[field->nodeID].curves;
        nodes[field->nodeID].keys += curve->getChildCount();
    }
    return nodes;
}

std::vector<UpgradedNode> describeNodes(const std::vector<osg::NodePtr>& nodes) {
    std::map<unsigned long long, UpgradedNode> animated = animatedNodes();
    std::vector<UpgradedNode> described;
    for (const osg::NodePtr& node : nodes) {
        UpgradedNode& upgraded = animated[node.getFieldContainerId()];
        for (const kaAnimationObject* object : kaAnimationUtils::getAnimationObjects(node))
            upgraded.blocks += object->getTypeID() == KA_TYPE_UNIT ? 1 : 0;
        if (upgraded.blocks + upgraded.curves == 0)
            continue;
        upgraded.path = nodePath(node);
        described.push_back(upgraded);
    }
    return described;
}

template <class CorePtr>
osg::NodePtr firstWithCore(const std::vector<osg::NodePtr>& nodes) {
    for (osg::NodePtr node : nodes)
        if (CorePtr::dcast(node->getCore()) != osg::NullFC)
            return node;
    return osg::NodePtr();
}

} // namespace

UpgradeReport upgradeScene(const osg::NodePtr& root, const osg::NodePtr& camera, Listener& listener) {
    const std::vector<osg::NodePtr> nodes = nodesBelow(root);
    OlderWalk older;
    for (const osg::NodePtr& node : nodes)
        older.visit(node);
    offerAttributes(older.attributes);
    {
        const HushedModule hushed;
        const ModuleProgress progress("upgrading", listener);
        manager().importORVAAnimations(root, camera, static_cast<unsigned int>(nodes.size()));
    }
    UpgradeReport report{older.content, kaAnimationManager::getImportReport(), describeNodes(nodes), {}};
    if (report.made.cameraBlocks > 0)
        report.camera = nodePath(camera);
    return report;
}

osg::NodePtr firstCamera(const osg::NodePtr& root) {
    const std::vector<osg::NodePtr> nodes = nodesBelow(root);
    const osg::NodePtr setting = firstWithCore<osg::CameraSettingPtr>(nodes);
    return setting != osg::NullFC ? setting : firstWithCore<osg::CameraPtr>(nodes);
}

} // namespace ka::motion
