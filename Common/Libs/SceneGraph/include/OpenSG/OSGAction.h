#pragma once

#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGTypedFunctors.h>
#include <functional>
#include <vector>

namespace osg {

/// The answers of traversal callbacks.
class KA_SCENEGRAPH_API Action {
  public:
    enum ResultE {
        Continue = 0, ///< go on with the children
        Skip = 1,     ///< go on, but not into the children
        Quit = 2      ///< end the traversal
    };
};

using TraverseEnterFunctor = std::function<Action::ResultE(NodePtr&)>;
using TraverseLeaveFunctor = std::function<Action::ResultE(NodePtr&, Action::ResultE)>;

/// Visits a tree, parents before children and children in order: every child, whatever traversal masks,
/// switches or missing cores say.
///
/// The callback may edit the tree. A node's children are those it has when its own visit ends; one that is
/// gone or sits elsewhere when its turn comes is passed over. The depth of the tree does not matter.
///
/// @return Quit when a callback answered that, else Continue. A null root gets one visit.
KA_SCENEGRAPH_API Action::ResultE traverse(NodePtr root, const TraverseEnterFunctor& enter);

/// The same for several trees, one after the other.
KA_SCENEGRAPH_API Action::ResultE traverse(const std::vector<NodePtr>& roots,
                                           const TraverseEnterFunctor& enter);

/// The same with a second callback for each entered node after its children: it is told Quit when the
/// traversal is ending and Continue otherwise, and may answer Quit to end it. Nodes that were entered are
/// left even then; nodes that are gone are not. A null root is passed over.
KA_SCENEGRAPH_API Action::ResultE traverse(NodePtr root, const TraverseEnterFunctor& enter,
                                           const TraverseLeaveFunctor& leave);
KA_SCENEGRAPH_API Action::ResultE traverse(const std::vector<NodePtr>& roots,
                                           const TraverseEnterFunctor& enter,
                                           const TraverseLeaveFunctor& leave);

} // namespace osg
