#pragma once

#include "kaAnimationTypes.h"

#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGNode.h>
#include <string>
#include <vector>

class kaAnimationField;

/// Makes the field records of one scene node: one for each of its scalars that can be animated. Lives on the
/// stack while the node is looked through; the records belong to the registry.
///
/// What is offered:
/// - of the core, or of the material that a material group holds, the single fields whose name is in the
///   registry's list of animation attributes: scalars under their own name, vectors and points with "X", "Y",
///   "Z" and "W" after it, colours with "R", "G", "B" and "A". The fourth component of a four-vector that is
///   named as a colour ("Color" in its name) is "I". An `osg::UberMaterial` is no exception: its colours are
///   such vectors, and the host decides by its list which of the other values it offers;
/// - of a camera setting its distance, height, turn-table angle, f-stop and focal length, of any other
/// transform the three rotation angles;
/// - of every node its visibility.
class kaFieldDiscovery {
  public:
    /// The node has a core. Nothing calls out to the host, so that the node stays while this is at work.
    explicit kaFieldDiscovery(const osg::NodePtr& node);
    kaFieldDiscovery(const kaFieldDiscovery&) = delete;
    kaFieldDiscovery& operator=(const kaFieldDiscovery&) = delete;
    /// Destroys the records unless they are kept.
    ~kaFieldDiscovery();

    /// The new records, last made first.
    std::vector<kaAnimationField*> run();

    /// The records are listed on the node and stay.
    void keep() { _made.clear(); }

  private:
    void addContainerFields(const osg::FieldContainerPtr& container);
    void addComponents(osg::UInt32 containerID, const std::string& name, const std::string& type,
                       const std::vector<float>& values);
    void addCameraFields();
    void addRotationFields();
    void addVisibleField();
    void add(osg::UInt32 containerID, const std::string& name, const std::string& suffix, float value,
             unsigned int component);

    osg::NodePtr _node;
    osg::UInt32 _nodeID;
    std::vector<kaAnimationField*> _made; ///< in order of making, until they are kept
};
