#pragma once

#include <OpenSG/OSGNode.h>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Every node at and below `root`, parents before children, each once.
std::vector<osg::NodePtr> nodesBelow(const osg::NodePtr& root);

/// Where a node stands: the names from the top of the scene down to its own, with "/" between them. Nodes
/// without name leave no trace in it.
std::string nodePath(const osg::NodePtr& node);

/// Whether `text` has the wildcards "*", "?" or "[...]", so that it may stand for many nodes.
bool isPattern(const std::string& text);

/// The nodes at and below `root` whose name, or the end of whose path ("arm/hand"), is `text` or matches it
/// as a pattern.
/// @throws Failure (Usage) when there is none.
std::vector<osg::NodePtr> matchingNodes(const osg::NodePtr& root, const std::string& text);

/// The one node that `text` stands for.
/// @throws Failure (Usage) when there is none or more than one.
osg::NodePtr chosenNode(const osg::NodePtr& root, const std::string& text);

} // namespace ka::motion
#pragma GCC visibility pop
