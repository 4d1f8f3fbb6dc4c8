#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform.h>
#include <cmath>
#include <cstdio>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaOpenSGUtils.h>

// Turns a node from 0 to 90 degrees over ten frames and looks at it half way, by symmetry at 45 degrees.
int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    int heard = 0;
    {
        osg::NodePtr node = osg::Node::create();
        osg::addRefCP(node);
        node->setCore(osg::Transform::create());

        kaAnimationManager* manager = kaAnimationManager::the();
        manager->init(nullptr);
        kaAnimationCurve2D* curve = manager->createCurve2D(node, "rotationX");
        if (curve == nullptr) {
            std::puts("no curve for the node's rotation");
            return 1;
        }
        manager->createCurvePoint(curve, 0, 0, false, false, false);
        manager->createCurvePoint(curve, 10, 90, false, false, false);

        const auto listener = kaOpenSGUtils::addListener("currentFrameChanged", [&](auto&&...) { ++heard; });
        kaAnimationController::the()->evaluateObject(curve, 5, false);
        kaOpenSGUtils::call("currentFrameChanged", kaMessage(), 0);

        const float angle = manager->getField(curve->getField())->value;
        std::printf("half way the node is turned by %g degrees\n", static_cast<double>(angle));
        manager->destroyCurve2D(curve);
        manager->terminate();
        osg::subRefCP(node);
        if (std::abs(angle - 45.0F) > 1e-3F) {
            return 1;
        }
    }
    osg::osgExit();
    return heard == 1 ? 0 : 1;
}
