#pragma once

#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>
#include <map>
#include <vector>

namespace ka::studio {

/// How a scene was at one moment, so that it can be so again: which nodes there were below which, their cores,
/// names, and every single value of core, attachments and material. Lists of values, as meshes have them, are
/// not looked at, nor what nodes list of the animation: that is a `Snapshot`'s.
///
/// Keeps every node that it tells of alive, out of the scene or in it.
/// Cost: a copy of each container without its lists.
class SceneState {
  public:
    SceneState() = default;
    explicit SceneState(const osg::NodePtr& root); ///< As it is now.

    /// Leaves in both only what differs between them.
    static void keepDifferences(SceneState& before, SceneState& after);
    bool isEmpty() const { return _nodes.empty() && _values.empty(); }
    /// Puts the scene back as it was.
    void restore() const;

  private:
    struct Place {
        osg::NodeRefPtr node;
        osg::NodeCoreRefPtr core;
        std::vector<osg::NodeRefPtr> children;
        std::vector<osg::AttachmentRefPtr> attachments;
        osg::UInt32 travMask = 0;
        bool operator==(const Place& other) const;
    };
    struct Values {
        osg::FieldContainerRefPtr container, copy;
        bool operator==(const Values& other) const;
    };
    void include(const osg::FieldContainerPtr& container);

    std::map<osg::UInt32, Place> _nodes;   ///< by container id
    std::map<osg::UInt32, Values> _values; ///< by container id
};

} // namespace ka::studio
