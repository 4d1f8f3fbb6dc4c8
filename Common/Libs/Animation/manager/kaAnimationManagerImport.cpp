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

// Imports with room for the repeats of what each is to convert.

kaLegacyImport importOf(const osg::FieldContainerPtr& container) {
    kaLegacySize size;
    size.add(container);
    return kaLegacyImport(size);
}

kaLegacyImport importOfNode(const osg::NodePtr& node) {
    kaLegacySize size;
    size.addNode(node);
    return kaLegacyImport(size);
}

kaLegacyImport importOfScene(const osg::NodePtr& root) {
    kaLegacySize size;
    size.addScene(root);
    return kaLegacyImport(size);
}

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
    kaLegacyImport import = importOfScene(root);
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
    const osg::NodePtr current = kaSceneNodes::find(nodeID);
    if (running)
        running->importNode(current);
    else
        importOfNode(current).importNode(current);
    return osg::Action::Continue;
}

kaAnimationStrip* kaAnimationManager::importClip(const osg::AnimationClipPtr& clip,
                                                 kaAnimationStreak* parent) {
    return importOf(clip).importClip(clip, parent);
}

kaAnimationStreak* kaAnimationManager::importTrack(const osg::AnimationTrackPtr& track,
                                                   kaAnimationStrip* parent) {
    return importOf(track).importTrack(track, parent);
}

kaAnimationUnit* kaAnimationManager::importBlock(const osg::AnimationBlockPtr& block,
                                                 kaAnimationStreak* parent) {
    return importOf(block).importBlock(block, parent);
}

kaAnimationSequence* kaAnimationManager::importSequence(const osg::AnimationBlockPtr& block,
                                                        kaAnimationStreak* parent) {
    return importOf(block).importSequence(block, parent);
}

kaAnimationCurve2D* kaAnimationManager::importCurve(const osg::AnimationCurvePtr& curve,
                                                    kaAnimationUnit* unit, osg::NodePtr node) {
    return importOf(curve).importCurve(curve, unit, node);
}

kaControlPoint2D* kaAnimationManager::importPoint(const osg::AnimationControlPointPtr& point,
                                                  kaAnimationCurve2D* curve) {
    return kaLegacyImport::importPoint(point, curve);
}
