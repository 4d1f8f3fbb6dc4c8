#include "Builders.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationController.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"

#include <cstdlib>
#include <malloc.h>
#include <random>

namespace {

using namespace ka_test;

double clockSeconds = 0.0;

double readClock() {
    return clockSeconds;
}

int tickCount() {
    const char* given = std::getenv("KA_SOAK_TICKS");
    return given ? std::atoi(given) : 1000000;
}

using Soak = RegistryFixture;

/// A player that runs, seeks and loops for a long time keeps no memory: once warm it grows by less than a
/// megabyte.
TEST_F(Soak, PlayingForLongKeepsNoMemory) {
    constexpr std::size_t Megabyte = 1 << 20;
    TestScene scene;
    osg::NodePtr node = scene.addTransform("node");
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();
    kaAnimationCurve2D* curve = manager->createCurve2D(node, "rotationY");
    for (int i = 0; i < 10; ++i)
        manager->createCurvePoint(curve, static_cast<float>(i) * 5.0F, static_cast<float>(i % 3), false,
                                  false, false);
    kaAnimationUnit* block = makeBlock(std::vector<kaAnimationCurve2D*>{curve});
    kaAnimationStrip* clip = makeClip({makeTrack({block, makeSequence("event", 60.0F, 70.0F)})});
    clip->setRepeating(true);
    kaAnimationController::setTimeCB(&readClock);
    clockSeconds = 0.0;
    controller->addWaitingObject(clip);
    std::mt19937 random(5);
    std::size_t warm = 0;
    const int ticks = tickCount();
    for (int tick = 0; tick < ticks; ++tick) {
        if (tick == ticks / 10)
            warm = mallinfo2().uordblks;
        clockSeconds += 0.01;
        controller->loop();
        controller->playLoop();
        if (random() % 100 == 0)
            controller->playGlobal(clip->getId(), random() % 2 == 0, random() % 2 == 0, 0.0F, 90.0F,
                                   static_cast<float>(random() % 90));
        if (random() % 50 == 0)
            controller->addWaitingObject(clip);
        if (random() % 500 == 0)
            controller->gotoGlobalEnd(clip);
    }
    EXPECT_LT(mallinfo2().uordblks, warm + Megabyte);
}

} // namespace
