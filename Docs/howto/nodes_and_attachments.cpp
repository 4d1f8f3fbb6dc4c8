// Which animation belongs to which node: the attachment, the node's fields, copying to another node.
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform3D.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>

namespace {

osg::NodePtr addTransform(const osg::NodePtr& parent) {
    osg::NodePtr node = osg::Node::create();
    node->setCore(osg::Transform3D::create());
    parent->addChild(node);
    return node;
}

} // namespace

int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    kaAnimationManager* manager = kaAnimationManager::the();
    manager->init(nullptr);
    osg::NodePtr root = osg::Node::create();
    osg::addRefCP(root);
    root->setCore(osg::Group::create());
    kaAnimationManager::setSceneRootNode(root);
    const osg::NodePtr left = addTransform(root);
    const osg::NodePtr right = addTransform(root);

    // The fields of a node are discovered once; a curve is bound to one of them.
    kaAnimationField* field = manager->getField(left, "rotationZ");
    require(field != nullptr, "a transform offers its rotation");
    kaAnimationCurve2D* curve = manager->createCurve2D(left, "rotationZ");
    manager->createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
    manager->createCurvePoint(curve, 10.0F, 30.0F, false, false, false);

    // A block around the node's curves, listed on the node.
    kaAnimationUnit* block = manager->createUnit("wave", 0);
    block->addObject(curve);
    block->setNodeID(left.getFieldContainerId());
    kaAnimationUtils::addAnimationObject(left, block);
    require(kaAnimationUtils::getAnimationObjects(left).size() == 1, "the node lists its block");

    // The same animation on another node: the copies' curves drive that node's fields.
    manager->createAnimationFields(right);
    require(manager->copy(left) && manager->paste(right, false), "copied and pasted");
    const auto pasted = kaAnimationUtils::getAnimationObjects(right);
    require(pasted.size() == 1, "the other node lists the copy");
    const kaAnimationField* driven = manager->getField(pasted.front()->getCurves().front()->getField());
    require(driven->nodeID == right.getFieldContainerId(), "the copy drives the other node");

    // A node leaves the scene: what it carried goes with it.
    manager->destroyNodeObjects(right, false);
    require(kaAnimationUtils::getAnimationObjects(right).empty(), "nothing is listed any more");
    manager->destroyNodeObjects(root->getChild(0), false);
    require(manager->getObjects().empty(), "nothing is registered any more");
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::subRefCP(root);
    return 0;
}
