#include "TestScene.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSimpleAttachments.h>

namespace ka_test {

TestScene::TestScene() {
    static const bool started = osg::osgInit(0, nullptr);
    (void)started;
    _root = osg::Node::create();
    osg::addRefCP(_root);
    osg::beginEditCP(_root);
    _root->setCore(osg::Group::create());
    osg::setName(_root, "root");
    osg::endEditCP(_root);
}

TestScene::~TestScene() {
    osg::subRefCP(_root);
}

osg::NodePtr TestScene::addNode(const std::string& name, const osg::NodeCorePtr& core,
                                const osg::NodePtr& parent) {
    const osg::NodePtr node = osg::Node::create();
    const osg::NodePtr above = parent == osg::NullFC ? _root : parent;
    osg::beginEditCP(node);
    if (core != osg::NullFC)
        node->setCore(core);
    osg::setName(node, name);
    osg::endEditCP(node);
    osg::beginEditCP(above);
    above->addChild(node);
    osg::endEditCP(above);
    return node;
}

void TestScene::destroy(const osg::NodePtr& node) {
    const osg::NodePtr parent = node->getParent();
    osg::beginEditCP(parent);
    parent->subChild(node);
    osg::endEditCP(parent);
}

} // namespace ka_test
