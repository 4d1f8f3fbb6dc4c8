#include "RegistryFixture.h"

#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationObject.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <limits>

#ifdef KA_WATCHED_MEMORY
#include "kaWatchedMemory.h"
#endif

namespace ka_test {

namespace {

double stoppedClock() {
    return 0.0;
}

void forgetCallbacks() {
    kaAnimationManager::setGetFromAtUpCB(nullptr);
    kaAnimationManager::setFromAtUpCB(nullptr);
    kaAnimationManager::setGetRollCB(nullptr);
    kaAnimationManager::setRollCB(nullptr);
    kaAnimationManager::setShowCurvesCB(nullptr);
    kaAnimationManager::setFileIOProgressCB(nullptr);
    kaAnimationManager::setUpdatePasteCB(nullptr);
    kaAnimationController::setTimeCB(nullptr);
    kaAnimationController::setCameraCB(nullptr);
    kaAnimationController::setUpdateNavCB(nullptr);
    kaAnimationController::setSeqCB(nullptr);
    kaAnimationController::setEnableSimCB(nullptr);
    kaAnimationController::setIsSimEnableCB(nullptr);
    kaAnimationController::setCurrentFrameTimeLineCB(nullptr);
    kaAnimationController::setCurrentFrameCurveEditorCB(nullptr);
    kaAnimationController::setCurrentFrameClipMakerCB(nullptr);
}

/// Destroys round by round, because what one object contains goes with it. A round that frees nothing would
/// go on for ever.
void emptyObjects() {
    kaAnimationManager* manager = kaAnimationManager::the();
    auto objects = manager->getObjects();
    while (!objects.empty()) {
        for (const auto& entry : objects)
            manager->destroyObject(manager->getObject(entry.first));
        const std::size_t before = objects.size();
        objects = manager->getObjects();
        ASSERT_LT(objects.size(), before) << "the registry cannot be emptied";
    }
}

void emptyAttributes() {
    kaAnimationManager* manager = kaAnimationManager::the();
    const std::vector<std::string> names = manager->getAnimationAttributes();
    for (const std::string& name : names)
        manager->subAnimationAttribute(name);
}

/// One tick of global playback over an almost empty range, because only a tick sets the last full frame.
void rewindGlobalPlayback() {
    kaAnimationController* controller = kaAnimationController::the();
    kaAnimationController::setTimeCB(stoppedClock);
    controller->playGlobal(std::vector<unsigned long long>{}, false, false, 0.0F, 0.0F,
                           std::numeric_limits<float>::denorm_min());
    controller->playLoop();
    controller->stopGlobal();
    controller->setCurrentFrame(0.0F, kaAnimationController::WidgetHost);
    kaAnimationController::setTimeCB(nullptr);
}

void emptyController() {
    kaAnimationController* controller = kaAnimationController::the();
    kaAnimationController::setFps(25.0F);
    kaAnimationController::setForcePlayLoopFullFrame(false);
    kaAnimationController::setEmitCurrentFrame(false);
    kaAnimationController::setCallWidgets(false);
    controller->setObjectID(0);
    controller->setCurveIDs({});
    controller->setEvalActiveUnits(false);
    controller->pause(false);
    controller->enqueueWaitingObjects();
    controller->stop();
    rewindGlobalPlayback();
}

} // namespace

void emptyModule() {
    kaAnimationManager* manager = kaAnimationManager::the();
    forgetCallbacks();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    manager->clearCopyBuffer(true);
    emptyController();
    emptyObjects();
    manager->destroyAllFields();
    emptyAttributes();
    manager->init(nullptr);
    kaAnimationManager::random(ID_SEED);
}

void RegistryFixture::SetUp() {
    static const bool started = osg::osgInit(0, nullptr);
    ASSERT_TRUE(started);
    emptyModule();
}

void RegistryFixture::TearDown() {
    emptyModule();
#ifdef KA_WATCHED_MEMORY
    EXPECT_EQ(kaWatchedMemory::inUse, 0U) << "keys, handles or fields were lost";
#endif
}

} // namespace ka_test
