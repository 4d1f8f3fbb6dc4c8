// The order of calls from the first to the last, with everything a host hands over in between.
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <chrono>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>

namespace {

double clockSinceStart() {
    static const auto start = std::chrono::steady_clock::now();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

osg::Pnt3f eye(0.0F, 0.0F, 10.0F);

void getCamera(int, osg::Pnt3f& from, osg::Pnt3f& at, osg::Vec3f& up) {
    from = eye;
    at = osg::Pnt3f(0.0F, 0.0F, 0.0F);
    up = osg::Vec3f(0.0F, 1.0F, 0.0F);
}

void setCamera(int, const osg::Pnt3f& from, const osg::Pnt3f&, const osg::Vec3f&) {
    eye = from;
}

} // namespace

int main(int argc, char** argv) {
    // 1. The scene graph, then the manager, which seeds its id generator.
    osg::osgInit(argc, argv);
    kaAnimationManager* manager = kaAnimationManager::the();
    manager->init(nullptr);

    // 2. What the host treats as animatable besides rotation and visibility.
    manager->addAnimationAttributes("translation,scale,diffuse,fieldOfView");

    // 3. The callbacks that the host serves; those left out are no-ops.
    kaAnimationManager::setGetFromAtUpCB(&getCamera);
    kaAnimationManager::setFromAtUpCB(&setCamera);
    kaAnimationController::setTimeCB(&clockSinceStart);

    // 4. A scene. Hand over the root whenever it changes.
    osg::NodePtr root = osg::Node::create();
    osg::addRefCP(root);
    root->setCore(osg::Group::create());
    kaAnimationManager::setSceneRootNode(root);

    osg::Pnt3f from;
    osg::Pnt3f at;
    osg::Vec3f up;
    manager->getFromAtUp(from, at, up);
    require(from[2] == 10.0F, "the manager asks the host for its camera");

    // 5. The scene is closed: playback first, then all that is registered, then the root.
    kaAnimationController::the()->stopGlobal();
    kaAnimationController::the()->stop();
    manager->clearCopyBuffer(true);
    manager->destroyAllObjects(true);
    for (const auto& entry : manager->getObjects()) // at most one
        manager->destroyObject(entry.second);
    manager->destroyAllFields();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::subRefCP(root);

    // 6. The host ends.
    manager->terminate();
    require(manager->getObjects().empty() && manager->getFields().empty(), "nothing is left registered");
    osg::osgExit();
    return 0;
}
