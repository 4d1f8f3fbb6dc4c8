#pragma once

#include "kaAnimationTypes.h"

#include <OpenSG/OSGNode.h>
#include <set>
#include <vector>

/// Which animation objects and fields the scene still references, and what is to go when it does not.
///
/// The objects are those of the last marking. The fields only ever become more: a field that any node once
/// listed is never swept, not even after its node is gone.
class kaSceneSync {
  public:
    /// Forgets which objects are referenced, then takes in every node at and below `root`. A null root leaves
    /// everything as it is.
    void mark(const osg::NodePtr& root);

    /// Takes in what one node lists. A null node or one without animation attachment lists nothing.
    void collect(const osg::NodePtr& node);

    /// Destroys every top-level object that is not referenced, is no clip and is not internal, each with its
    /// subtree, and then every field that was never referenced, both in ascending id order. Cost: O(n log n)
    /// in the registry.
    void sweep() const;

    /// Destroys the objects and then the fields that the node lists, and with `recursive` those of its
    /// descendants, parents first. A node without animation attachment ends the descent: what is below it
    /// stays. The attachments stay on their nodes.
    static void destroyNodeObjects(const osg::NodePtr& node, bool recursive);

    const std::set<kaUID>& referencedObjects() const { return _objects; }
    const std::set<kaUID>& referencedFields() const { return _fields; }

  private:
    std::vector<kaUID> unreferencedObjects() const;
    std::vector<kaUID> unreferencedFields() const;

    std::set<kaUID> _objects;
    std::set<kaUID> _fields;
};
