#pragma once

#include <OpenSG/OSGNode.h>
#include <vector>

class kaAnimationObject;
class kaAnimationUnit;

namespace ka::motion {

/// The blocks at and below an object, in the order of its children, each once.
std::vector<kaAnimationUnit*> blocksBelow(const kaAnimationObject& object);

/// The node that a block moves, by its first curve that knows one; null when it moves none.
osg::NodePtr nodeOf(const kaAnimationUnit& block);

/// The object that holds another and stands in none itself: a clip, mostly.
kaAnimationObject* topOf(kaAnimationObject* object);

} // namespace ka::motion
