#pragma once

#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationControlPoint.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGAnimationTrack.h>
#include <OpenSG/OSGNode.h>
#include <string>
#include <vector>

/// Scenes of older versions, which carry their animation in the scene graph: single containers in one line
/// each, and whole scenes of any size.
namespace ka_older {

/// Tangent types as the older format numbers them.
enum TangentCode : unsigned int { Collapsed = 1, Broken = 2, Smooth = 3, Flat = 4, Forward = 5, User = 6 };

struct Place {
    float x; ///< frame
    float y; ///< value
};

struct Key {
    Place position;
    unsigned int tangentCode = Smooth;
    Place in{0.0F, 0.0F};
    Place out{0.0F, 0.0F};
};

osg::AnimationControlPointPtr makePoint(const Key& key);

/// A curve for an attribute of `node`; a null node leaves the reference empty.
osg::AnimationCurvePtr makeCurve(const std::string& attribute, const std::vector<Key>& keys,
                                 const osg::NodePtr& node);

/// A block; `node` is the block's own reference, which its curves do not go by.
osg::AnimationBlockPtr makeBlock(const std::string& name, const std::vector<osg::AnimationCurvePtr>& curves,
                                 const osg::NodePtr& node = osg::NodePtr());

/// A named event: a block of which only name, begin and end count.
osg::AnimationBlockPtr makeSequence(const std::string& name, float begin, float end);

osg::AnimationTrackPtr makeTrack(const std::vector<osg::AnimationBlockPtr>& blocks);
osg::AnimationClipPtr makeClip(const std::string& name, const std::vector<osg::AnimationTrackPtr>& tracks);

/// The node's older animation attachment, made when missing.
osg::AnimationAttachmentPtr attachmentOf(const osg::NodePtr& node);

/// How much of everything a scene holds.
struct Shape {
    unsigned int nodes = 1;         ///< animated transform nodes below the root
    unsigned int curvesPerNode = 1; ///< at most `MaximumCurves`
    unsigned int keysPerCurve = 2;
    unsigned int clips = 0;   ///< clips on the root, each with a chain of nested ones
    unsigned int nesting = 0; ///< clips in tracks in clips below each of them
    unsigned int seed = 1;    ///< of everything that is left to chance
};

/// Attributes that a node can have animated, in the older spelling: rotation, translation and scale.
constexpr unsigned int MaximumCurves = 9;

/// A new scene of that shape. Every node carries a block of its own; with clips, the same attributes of other
/// nodes are animated again from the clips, blocks and sequences lying in tracks. Nodes are named "node 0",
/// "node 1" ... The caller owns the root, whose count is 0.
osg::NodePtr makeScene(const Shape& shape);

/// Nodes at and below the root.
unsigned int countNodes(const osg::NodePtr& root);

} // namespace ka_older
