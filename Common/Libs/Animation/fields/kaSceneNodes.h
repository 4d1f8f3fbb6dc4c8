#pragma once

#include <OpenSG/OSGNode.h>
#include <utility>
#include <vector>

/// Scene nodes by container id. Ids are never given twice, so an id that is kept across a call out to the
/// host tells afterwards whether the node is still there.
class kaSceneNodes {
  public:
    kaSceneNodes() = delete;

    /// The node with this container id; null when there is no such container or it is no node.
    static osg::NodePtr find(osg::UInt32 id);

    /// Container id of a node, 0 for null.
    static osg::UInt32 idOf(const osg::NodePtr& node);

    /// The ids of the node and all below it, parents first, children left to right; empty for null. A node
    /// that can be reached twice, as in a ring, stands once. Cost: O(nodes), on the heap whatever the depth.
    static std::vector<osg::UInt32> below(const osg::NodePtr& root);

    /// Calls `visit(const osg::NodePtr&)` for every node of `below(root)`; nodes that are gone when their
    /// turn comes are passed over, nodes that were added meanwhile are not visited.
    template <class Visit>
    static void forEach(const osg::NodePtr& root, Visit&& visit) {
        for (osg::UInt32 id : below(root))
            if (const osg::NodePtr node = find(id); node != osg::NullFC)
                visit(node);
    }
};
