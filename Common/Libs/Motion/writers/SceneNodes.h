#pragma once

#include "kaMotion/Motion.h"

#include <OpenSG/OSGNode.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace ka::motion {

/// The nodes of a scene as plain data, with where each came from.
struct SceneNodes {
    std::vector<MotionNode> nodes;     ///< parents before children; angles are the scene's
    std::vector<osg::NodePtr> sources; ///< for each node; a node placed twice over stands twice
    std::unordered_map<osg::UInt32, std::uint32_t> places; ///< by container id, the node that its curves move
    std::vector<std::string> notes;
};

/// Describes every node at and below `root` as it stands at the moment. A top without placement of its own,
/// as every import makes one to hold a model, is left out when it is the only one. A node whose core also has
/// a matrix stands twice: the matrix under its name with "_matrix", the rest below.
SceneNodes describeNodes(const osg::NodePtr& root);

} // namespace ka::motion
