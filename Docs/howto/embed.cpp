// The smallest host: a node of the scene, a curve for its rotation, a player on the host's own clock.
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform3D.h>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaNodeUtils.h>

static double seconds = 0.0; // the host's clock; it starts near zero because frames are floats

int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    osg::NodePtr door = osg::Node::create();
    osg::addRefCP(door);
    door->setCore(osg::Transform3D::create());

    kaAnimationManager* manager = kaAnimationManager::the();
    manager->init(nullptr);
    kaAnimationManager::setSceneRootNode(door);
    kaAnimationCurve2D* opening = manager->createCurve2D(door, "rotationY");
    manager->createCurvePoint(opening, 0.0F, 0.0F, false, false, false);
    manager->createCurvePoint(opening, 25.0F, 90.0F, false, false, false);

    kaAnimationController* controller = kaAnimationController::the();
    kaAnimationController::setTimeCB([] { return seconds; });
    controller->playGlobal(opening->getId(), false, false, 0.0F, 25.0F, 0.0F);
    for (; kaAnimationController::isPlaying(); seconds += 0.04) // the host's frame timer
        controller->playLoop();

    const bool open = kaNodeUtils::getTransformAttachment(door)->getRotation()[1] == 90.0F;
    manager->destroyCurve2D(opening);
    manager->destroyNodeObjects(door, true); // its fields
    manager->terminate();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::subRefCP(door);
    return open ? 0 : 1;
}
