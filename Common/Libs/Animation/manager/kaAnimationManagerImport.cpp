#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"
#include "kaLegacyImport.h"
#include "kaSceneNodes.h"

#include <utility>

unsigned int kaAnimationManager::_importNodeCount = 0;
unsigned int kaAnimationManager::_nodeCounter = 0;

namespace {

/// The import that visits the scene at this moment; null outside of one.
kaLegacyImport* running = nullptr;

/// Makes `running` an import for as long as the object lives. A host that starts another import from a
/// callback gets one of its own.
class Run {
  public:
    explicit Run(kaLegacyImport& import) : _outer(std::exchange(running, &import)) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { running = _outer; }

  private:
    kaLegacyImport* _outer;
};

kaImportReport& lastReport() {
    static kaImportReport report;
    return report;
}

} // namespace

void kaAnimationManager::importORVAAnimations(const osg::NodePtr& root, const osg::NodePtr& camera,
                                              unsigned int nodeCount) {
    if (root == osg::NullFC)
        return;
    const osg::UInt32 rootID = kaSceneNodes::idOf(root);
    kaLegacyImport import;
    const Run run(import);
    import.importRoot(root, camera);
    _importNodeCount = nodeCount;
    _nodeCounter = 0;
    kaSceneNodes::forEach(kaSceneNodes::find(rootID), collectORVAAnimations);
    lastReport() = import.report();
}

const kaImportReport& kaAnimationManager::getImportReport() {
    return lastReport();
}

/// The progress call may change the scene, so the node is looked up again after it.
osg::Action::ResultE kaAnimationManager::collectORVAAnimations(const osg::NodePtr& node) {
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    ++_nodeCounter;
    const float percent = static_cast<float>(_nodeCounter) / (static_cast<float>(_importNodeCount) / 100.0F);
    the()->setFileIOProgress(static_cast<unsigned int>(kaAnimationUtils::floatToInt(percent)));
    kaLegacyImport alone;
    (running ? *running : alone).importNode(kaSceneNodes::find(nodeID));
    return osg::Action::Continue;
}

kaAnimationStrip* kaAnimationManager::importClip(const osg::AnimationClipPtr& clip,
                                                 kaAnimationStreak* parent) {
    return kaLegacyImport().importClip(clip, parent);
}

kaAnimationStreak* kaAnimationManager::importTrack(const osg::AnimationTrackPtr& track,
                                                   kaAnimationStrip* parent) {
    return kaLegacyImport().importTrack(track, parent);
}

kaAnimationUnit* kaAnimationManager::importBlock(const osg::AnimationBlockPtr& block,
                                                 kaAnimationStreak* parent) {
    return kaLegacyImport().importBlock(block, parent);
}

kaAnimationSequence* kaAnimationManager::importSequence(const osg::AnimationBlockPtr& block,
                                                        kaAnimationStreak* parent) {
    return kaLegacyImport().importSequence(block, parent);
}

kaAnimationCurve2D* kaAnimationManager::importCurve(const osg::AnimationCurvePtr& curve,
                                                    kaAnimationUnit* unit, osg::NodePtr node) {
    return kaLegacyImport().importCurve(curve, unit, node);
}

kaControlPoint2D* kaAnimationManager::importPoint(const osg::AnimationControlPointPtr& point,
                                                  kaAnimationCurve2D* curve) {
    return kaLegacyImport::importPoint(point, curve);
}
