#include "CapturedOutput.h"
#include "ContainerLife.h"
#include "ImportFixture.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGThread.h>

namespace {

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const char* const NO_CAMERA = "Error importing old camera animations! No perspective camera found!\n";

std::vector<unsigned int> progress;
void (*whenProgressing)() = nullptr;

void onProgress(unsigned int percent) {
    progress.push_back(percent);
    if (whenProgressing)
        whenProgressing();
}

class ImportScene : public ImportFixture {
  protected:
    void SetUp() override {
        ImportFixture::SetUp();
        progress.clear();
        whenProgressing = nullptr;
    }

    /// Imports the scene and gives what was printed.
    std::string import(const osg::NodePtr& receiver, unsigned int nodeCount = 100) {
        const CapturedOutput output;
        manager().importORVAAnimations(scene.root(), receiver, nodeCount);
        return output.text();
    }
    std::string import() { return import(camera); }

    osg::NodePtr camera = scene.add<osg::CameraSetting>("camera");
};

TEST_F(ImportScene, OfANullRootDoesNothing) {
    kaAnimationManager::setFileIOProgressCB(onProgress);
    manager().importORVAAnimations(osg::NodePtr(), camera, 5);
    EXPECT_THAT(progress, IsEmpty());
}

TEST_F(ImportScene, WithoutCameraSaysSoAndStillTakesTheAttachmentOffTheRoot) {
    ka_older::attachmentOf(scene.root());
    EXPECT_EQ(import(osg::NodePtr()), NO_CAMERA);
    EXPECT_FALSE(hasOlderAttachment(scene.root()));
    EXPECT_THAT(manager().getObjects(), IsEmpty());
}

TEST_F(ImportScene, WithoutCameraDropsTheCameraBlocksButNotTheClips) {
    const auto attachment = ka_older::attachmentOf(scene.root());
    attachment->addBlock(ka_older::makeBlock("zoom", {}));
    attachment->addClip(ka_older::makeClip("walk", {}));
    EXPECT_EQ(import(osg::NodePtr()), NO_CAMERA);
    EXPECT_THAT(all<kaAnimationUnit>(KA_TYPE_UNIT), IsEmpty());
    EXPECT_THAT(all<kaAnimationStrip>(KA_TYPE_STRIP), SizeIs(1));
    ASSERT_THAT(kaAnimationManager::getImportReport().leftOut, SizeIs(1));
    EXPECT_EQ(kaAnimationManager::getImportReport().leftOut[0].name, "zoom");
}

TEST_F(ImportScene, WithoutAttachmentOnTheRootMissesNoCamera) {
    EXPECT_EQ(import(osg::NodePtr()), "");
}

TEST_F(ImportScene, TheRootsClipsBecomeTopLevelClips) {
    const auto attachment = ka_older::attachmentOf(scene.root());
    attachment->addClip(ka_older::makeClip("walk", {}));
    attachment->addClip(ka_older::makeClip("run", {}));
    attachment->getClips().push_back(osg::AnimationClipPtr());
    EXPECT_EQ(import(), "");
    const auto clips = manager().getSceneStrips();
    ASSERT_THAT(clips, SizeIs(2));
    std::set<std::string> names;
    for (const kaAnimationStrip* clip : clips)
        names.insert(clip->getName());
    EXPECT_EQ(names, (std::set<std::string>{"walk", "run"}));
}

/// Neither the block's node nor the curve's own decides: camera animation goes to the camera.
TEST_F(ImportScene, TheRootsBlocksAnimateTheCamera) {
    const osg::AnimationCurvePtr zoom = ka_older::makeCurve("focalLength", twoKeys(), node);
    const osg::AnimationBlockPtr older = ka_older::makeBlock("zoom", {zoom}, node);
    older->setRepeating(true);
    older->setMotionBlur(true);
    older->setFlipped(true);
    ka_older::attachmentOf(scene.root())->addBlock(older);
    EXPECT_EQ(import(), "");
    const auto objects = kaAnimationUtils::getAnimationObjects(camera);
    ASSERT_THAT(objects, SizeIs(1));
    const auto* unit = static_cast<kaAnimationUnit*>(objects.front());
    EXPECT_EQ(unit->getName(), "zoom");
    EXPECT_EQ(unit->getNodeID(), idOf(camera));
    EXPECT_TRUE(unit->isRepeating() && unit->isMotionBlur() && unit->isFlipped());
    ASSERT_THAT(unit->getCurves(), SizeIs(1));
    EXPECT_EQ(nodeOf(unit->getCurves().front()), idOf(camera));
    EXPECT_EQ(unit->getCurves().front()->getName(), "focalLength");
    EXPECT_FALSE(hasOlderAttachment(scene.root()));
}

TEST_F(ImportScene, ACameraBlockThatFitsNoCurveIsListedAllTheSame) {
    ka_older::attachmentOf(scene.root())->addBlock(ka_older::makeBlock("empty", {turning(node)}));
    import();
    ASSERT_THAT(kaAnimationUtils::getAnimationObjects(camera), SizeIs(1));
    EXPECT_FALSE(kaAnimationUtils::getAnimationObjects(camera).front()->hasChildren());
}

TEST_F(ImportScene, InnerNodesGetTheirBlocksListed) {
    const osg::NodePtr deep = scene.addTransform("deep", node);
    const auto attachment = ka_older::attachmentOf(deep);
    attachment->addBlock(ka_older::makeBlock("first", {turning(deep)}, deep));
    attachment->addBlock(ka_older::makeBlock("second", {turning(deep)}, deep));
    attachment->getBlocks().push_back(osg::AnimationBlockPtr());
    import();
    const auto objects = kaAnimationUtils::getAnimationObjects(deep);
    ASSERT_THAT(objects, SizeIs(2));
    EXPECT_EQ(objects[0]->getName(), "first");
    EXPECT_EQ(objects[1]->getName(), "second");
    EXPECT_FALSE(hasOlderAttachment(deep));
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(node), osg::NullFC);
}

TEST_F(ImportScene, AnInnerNodeWithNothingToImportStillChangesItsAttachment) {
    ka_older::attachmentOf(node);
    import();
    EXPECT_FALSE(hasOlderAttachment(node));
    EXPECT_NE(kaAnimationUtils::getAnimationAttachment(node), osg::NullFC);
    EXPECT_THAT(kaAnimationUtils::getAnimationFields(node), testing::Not(IsEmpty()));
}

TEST_F(ImportScene, ClipsOnInnerNodesAreLeftOut) {
    ka_older::attachmentOf(node)->addClip(ka_older::makeClip("walk", {}));
    import();
    EXPECT_THAT(all<kaAnimationStrip>(KA_TYPE_STRIP), IsEmpty());
    EXPECT_FALSE(hasOlderAttachment(node));
    const auto& report = kaAnimationManager::getImportReport();
    ASSERT_THAT(report.leftOut, SizeIs(1));
    EXPECT_EQ(report.leftOut[0].reason, kaImportReport::Reason::OnInnerNode);
}

TEST_F(ImportScene, TheFurtherListIsIgnored) {
    ka_older::attachmentOf(scene.root())->addEntry(ka_older::makeClip("walk", {}));
    ka_older::attachmentOf(node)->addEntry(ka_older::makeBlock("wave", {turning(node)}));
    import();
    EXPECT_THAT(manager().getObjects(), IsEmpty());
}

TEST_F(ImportScene, ASecondRunFindsNothing) {
    ka_older::attachmentOf(scene.root())->addClip(ka_older::makeClip("walk", {}));
    ka_older::attachmentOf(node)->addBlock(ka_older::makeBlock("wave", {turning(node)}));
    import();
    const auto before = manager().getObjects();
    EXPECT_FALSE(before.empty());
    EXPECT_EQ(import(osg::NodePtr()), "");
    EXPECT_EQ(manager().getObjects(), before);
    EXPECT_EQ(kaAnimationManager::getImportReport().nodes, 0U);
}

TEST_F(ImportScene, RemovedAttachmentsAreReportedToTheChangeList) {
    ka_older::attachmentOf(scene.root());
    ka_older::attachmentOf(node)->addBlock(ka_older::makeBlock("wave", {turning(node)}));
    osg::ChangeList* changes = osg::Thread::getCurrentChangeList();
    changes->setReadOnly(false);
    changes->clearAll();
    import();
    std::set<osg::UInt32> reported;
    for (auto change = changes->beginChanged(); change != changes->endChanged(); ++change)
        if (change->second & osg::AttachmentContainer::AttachmentsFieldMask)
            reported.insert(change->first);
    changes->clearAll();
    changes->setReadOnly(true);
    EXPECT_THAT(reported, testing::IsSupersetOf({idOf(scene.root()), idOf(node)}));
}

TEST_F(ImportScene, ImportedAnimationStaysWhenTheSceneIsSwept) {
    ka_older::attachmentOf(node)->addBlock(ka_older::makeBlock("wave", {turning(node)}, node));
    import();
    kaAnimationManager::setSceneRootNode(scene.root());
    const auto before = manager().getObjects();
    manager().destroyUnreferencedObjectsAndFields();
    EXPECT_EQ(manager().getObjects(), before);
}

TEST_F(ImportScene, TellsWhatBecameWhat) {
    const osg::AnimationTrackPtr track = ka_older::makeTrack({ka_older::makeBlock("wave", {turning(node)})});
    track->addSequence(ka_older::makeSequence("doors", 0.0F, 1.0F));
    const auto attachment = ka_older::attachmentOf(scene.root());
    attachment->addClip(ka_older::makeClip("walk", {track}));
    attachment->addBlock(
        ka_older::makeBlock("zoom", {ka_older::makeCurve("fStop", twoKeys(), osg::NodePtr())}));
    ka_older::attachmentOf(node)->addBlock(
        ka_older::makeBlock("wave", {turning(node), ka_older::makeCurve("wobble", twoKeys(), node),
                                     ka_older::makeCurve("rotateX", twoKeys(), osg::NodePtr())}));
    const osg::AnimationCurvePtr lost = ka_older::makeCurve("rotateX", twoKeys(), osg::NodePtr());
    ka_older::attachmentOf(node)->addBlock(ka_older::makeBlock("lost", {lost}));
    import();
    const kaImportReport& report = kaAnimationManager::getImportReport();
    EXPECT_EQ(report.nodes, 2U);
    EXPECT_EQ(report.clips, 1U);
    EXPECT_EQ(report.tracks, 1U);
    EXPECT_EQ(report.blocks, 3U);
    EXPECT_EQ(report.cameraBlocks, 1U);
    EXPECT_EQ(report.sequences, 1U);
    EXPECT_EQ(report.curves, 4U);
    EXPECT_EQ(report.keys, 8U);
    EXPECT_EQ(report.leftOutCount, 2U);
    ASSERT_THAT(report.leftOut, SizeIs(2));
    EXPECT_EQ(report.leftOut[0].name, "wobble");
    EXPECT_EQ(report.leftOut[0].reason, kaImportReport::Reason::NoAttribute);
    EXPECT_EQ(report.leftOut[1].reason, kaImportReport::Reason::NoNode);
}

// Progress.

TEST_F(ImportScene, ProgressReachesOneHundredWithTheLastNode) {
    scene.addTransform("third child");
    kaAnimationManager::setFileIOProgressCB(onProgress);
    import(camera, 4); // the root and its three children
    EXPECT_THAT(progress, ElementsAre(25, 50, 75, 100));
}

TEST_F(ImportScene, ProgressIsRoundedToTheNearestPercent) {
    kaAnimationManager::setFileIOProgressCB(onProgress);
    import(camera, 3);
    EXPECT_THAT(progress, ElementsAre(33, 67, 100));
    progress.clear();
    import(camera, 1);
    EXPECT_THAT(progress, ElementsAre(100, 200, 300)) << "more nodes than the host expected";
}

/// The quotient is infinite, which rounds to the smallest int.
TEST_F(ImportScene, ProgressOfNoExpectedNodesIsDefined) {
    kaAnimationManager::setFileIOProgressCB(onProgress);
    import(camera, 0);
    EXPECT_THAT(progress, ElementsAre(0x80000000U, 0x80000000U, 0x80000000U));
}

TEST_F(ImportScene, EveryRunCountsFromTheBeginning) {
    kaAnimationManager::setFileIOProgressCB(onProgress);
    import(camera, 3);
    import(camera, 3);
    EXPECT_THAT(progress, ElementsAre(33, 67, 100, 33, 67, 100));
}

TEST_F(ImportScene, VisitingANullNodeCountsAndGoesOn) {
    import(camera, 4); // three nodes
    kaAnimationManager::setFileIOProgressCB(onProgress);
    EXPECT_EQ(kaAnimationManager::collectORVAAnimations(osg::NodePtr()), osg::Action::Continue);
    EXPECT_THAT(progress, ElementsAre(100));
}

// A host that does not sit still.

/// The scene of the running test, for callbacks.
TestScene* current = nullptr;
osg::NodePtr victim;

class ImportWithRestlessHost : public ImportScene {
  protected:
    void SetUp() override {
        ImportScene::SetUp();
        current = &scene;
        kaAnimationManager::setFileIOProgressCB(onProgress);
        for (const osg::NodePtr& animated : {node, last})
            ka_older::attachmentOf(animated)->addBlock(
                ka_older::makeBlock("wave", {turning(animated)}, animated));
    }
    void TearDown() override {
        whenProgressing = nullptr;
        victim = osg::NodePtr();
        ImportScene::TearDown();
    }

    osg::NodePtr last = scene.addTransform("last");
};

TEST_F(ImportWithRestlessHost, ADestroyedNodeIsPassedOver) {
    victim = last;
    const ContainerLife lastLife(last);
    whenProgressing = [] {
        if (victim != osg::NullFC)
            current->destroy(victim);
        victim = osg::NodePtr();
    };
    import();
    EXPECT_TRUE(lastLife.isOver());
    EXPECT_THAT(all<kaAnimationUnit>(KA_TYPE_UNIT), SizeIs(1));
    EXPECT_THAT(progress, SizeIs(3));
}

TEST_F(ImportWithRestlessHost, TheNodeThatIsJustVisitedMayGo) {
    victim = node;
    whenProgressing = [] {
        if (progress.size() == 2 && victim != osg::NullFC)
            current->destroy(victim);
    };
    import();
    EXPECT_THAT(all<kaAnimationUnit>(KA_TYPE_UNIT), SizeIs(1));
}

TEST_F(ImportWithRestlessHost, ObjectsMayGo) {
    whenProgressing = [] {
        for (const auto& entry : manager().getObjects())
            manager().destroyObject(manager().getObject(entry.first));
        manager().destroyAllFields();
    };
    import();
    EXPECT_FALSE(hasOlderAttachment(last));
}

TEST_F(ImportWithRestlessHost, AnImportInsideAnImportFinishesTheScene) {
    whenProgressing = [] {
        whenProgressing = nullptr;
        manager().importORVAAnimations(current->root(), osg::NodePtr(), 4);
    };
    import();
    EXPECT_THAT(all<kaAnimationUnit>(KA_TYPE_UNIT), SizeIs(2));
    EXPECT_FALSE(hasOlderAttachment(last));
}

} // namespace
