#pragma once

#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTransform3D.h>
#include <string>
#include <vector>

namespace ka_test {

/// A small scene under one root that goes with the object. Nodes are named and belong to the scene.
class TestScene {
  public:
    TestScene();
    TestScene(const TestScene&) = delete;
    TestScene& operator=(const TestScene&) = delete;
    ~TestScene();

    const osg::NodePtr& root() const { return _root; }

    /// A node with the given core below `parent`, by default below the root. A null core makes a node without
    /// one.
    osg::NodePtr addNode(const std::string& name, const osg::NodeCorePtr& core,
                         const osg::NodePtr& parent = osg::NodePtr());

    /// A node with a fresh core of that type.
    template <class Core>
    osg::NodePtr add(const std::string& name, const osg::NodePtr& parent = osg::NodePtr()) {
        return addNode(name, Core::create(), parent);
    }

    /// A node with a `Transform3D` core: the usual carrier of animation.
    osg::NodePtr addTransform(const std::string& name, const osg::NodePtr& parent = osg::NodePtr()) {
        return add<osg::Transform3D>(name, parent);
    }

    /// Takes the node and all below it out of the scene and destroys it: its container ids resolve to nothing
    /// then.
    void destroy(const osg::NodePtr& node);

  private:
    osg::NodePtr _root;
};

} // namespace ka_test
