#pragma once

#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>

namespace osg {

/// A node together with its core, of known type. Counts both.
template <class CoreT>
class CoredNodePtr {
  public:
    using CorePtr = typename CoreT::Ptr;

    CoredNodePtr() = default;

    /// A new node with a new core.
    static CoredNodePtr create() {
        CoredNodePtr made;
        made._node = Node::create();
        made._core = CoreT::create();
        made._node->setCore(made._core.get());
        return made;
    }

    const NodePtr& node() const { return _node.get(); }
    const CorePtr& core() const { return _core.get(); }
    operator const NodePtr&() const { return node(); }
    CoreT* operator->() const { return core().operator->(); }

  private:
    RefPtr<NodePtr> _node;
    RefPtr<CorePtr> _core;
};

using GroupNodePtr = CoredNodePtr<Group>;
using TransformNodePtr = CoredNodePtr<Transform>;
using Transform3DNodePtr = CoredNodePtr<Transform3D>;

} // namespace osg
