// The animation as part of a larger document of the host, and back from there.
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform3D.h>
#include <QDomDocument>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>

int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    kaAnimationManager* manager = kaAnimationManager::the();
    manager->init(nullptr);
    osg::NodePtr node = osg::Node::create();
    osg::addRefCP(node);
    node->setCore(osg::Transform3D::create());
    kaAnimationManager::setSceneRootNode(node);
    kaAnimationCurve2D* curve = manager->createCurve2D(node, "rotationX");
    manager->createCurvePoint(curve, 0.0F, 0.0F, false, false, false);
    manager->createCurvePoint(curve, 25.0F, 45.0F, false, false, false);
    const unsigned long long id = curve->getId();

    // Into the host's document, as the text of an element.
    QDomDocument document("HostProject");
    QDomElement project = document.createElement("project");
    QDomElement animation = document.createElement("animation");
    animation.appendChild(document.createTextNode(manager->createAnimationXML()));
    project.appendChild(animation);
    document.appendChild(project);
    const QString saved = document.toString(1);

    // A new session: the registry is empty, the scene is there.
    manager->destroyCurve2D(curve);
    manager->destroyAllFields();

    QDomDocument reopened;
    reopened.setContent(saved);
    const QString text = reopened.documentElement().firstChildElement("animation").text();
    require(manager->loadAnimations(text, false), "the text loads");
    curve = manager->getCurve2D(id);
    require(curve != nullptr, "ids in a document are kept where they are free");
    require(manager->getField(curve->getField())->nodeID == node.getFieldContainerId(),
            "loading binds the fields to the nodes that list them");

    manager->destroyCurve2D(curve);
    manager->destroyAllFields();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::subRefCP(node);
    return 0;
}
