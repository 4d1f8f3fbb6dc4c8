// A door that opens and then tilts: a connection starts the second clip when the first ends. The host has a
// clock of its own and listens for the frame that its time line shows.
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaNodeUtils.h>
#include <kaOpenSGUtils.h>

namespace {

double seconds = 0.0; // the host's clock; it starts near zero because the player keeps times as floats
int tiltsBegun = 0;

/// What the host connects to its timer. Objects that play by themselves send no messages: the host that wants
/// one for its time line sends it.
void onFrameTimer() {
    seconds += 0.02;
    kaAnimationController::the()->loop();
    kaAnimationController::the()->setCurrentFrame(kaAnimationController::getCurrentFrame(),
                                                  kaAnimationController::WidgetHost);
}

/// A clip of ten frames that turns the node about one axis.
kaAnimationStrip* makeTurn(const osg::NodePtr& node, const char* attribute, float degrees) {
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = manager->createCurve2D(node, attribute);
    manager->createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
    manager->createCurvePoint(curve, 10.0F, degrees, false, false, false);
    kaAnimationUnit* block = manager->createUnit(attribute, 0);
    block->addObject(curve);
    kaAnimationStrip* clip = manager->createStrip(attribute, 0);
    clip->insertObject(block);
    return clip;
}

/// A node has no rotation of its own before it is first turned.
osg::Vec3f rotationOf(const osg::NodePtr& node) {
    const osg::TransformAttachmentPtr turn = kaNodeUtils::getTransformAttachment(node);
    return turn == osg::NullFC ? osg::Vec3f(0.0F, 0.0F, 0.0F) : turn->getRotation();
}

} // namespace

int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    osg::NodePtr door = osg::Node::create();
    osg::addRefCP(door);
    door->setCore(osg::Transform3D::create());
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();
    manager->init(nullptr);
    kaAnimationManager::setSceneRootNode(door);
    kaAnimationController::setTimeCB([] { return seconds; });

    kaAnimationStrip* open = makeTurn(door, "rotationY", 90.0F);
    kaAnimationStrip* tilt = makeTurn(door, "rotationX", 5.0F);
    manager->createConnection(open, kaAnimationManager::TriggerEnd, tilt, kaAnimationManager::ActionPlay);
    manager->createConnection(tilt, kaAnimationManager::TriggerBegin, [] { ++tiltsBegun; });

    float shown = 0.0F;
    const auto timeLine =
        kaOpenSGUtils::addListener("currentFrameChanged", [&](auto&&, const kaMessage& message, int) {
            shown = std::max(shown, *message.get<float>("frame"));
        });

    // The object starts at the end of the next tick and moves with the one after.
    controller->addWaitingObject(open);
    do {
        onFrameTimer();
        if (rotationOf(door)[1] < 90.0F)
            require(rotationOf(door)[0] == 0.0F, "the door does not tilt while it opens");
    } while (!controller->getRunningObjects().empty());

    require(tiltsBegun == 1, "the second clip has begun once");
    require(rotationOf(door)[1] == 90.0F && rotationOf(door)[0] == 5.0F, "both clips have reached their end");
    require(shown > 10.0F, "the time line has seen the frames go by");
    manager->destroyObject(open);
    manager->destroyObject(tilt);
    manager->destroyAllFields();
    manager->terminate();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::subRefCP(door);
    return 0;
}
