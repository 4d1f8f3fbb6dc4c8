#pragma once

#include "kaSceneAccess.h"

#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationControlPoint.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGAnimationTrack.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGVector.h>
#include <cstddef>
#include <string>
#include <vector>

/// @file
/// The values of the older animation containers, read at once: every reference is a container id, 0 for none,
/// so that nothing here can dangle whatever happens to the scene later. Lists leave out null references.

using kaContainerIDs = std::vector<osg::UInt32>;

struct kaLegacyAttachment {
    explicit kaLegacyAttachment(const osg::AnimationAttachmentPtr& attachment);

    osg::UInt32 id;
    kaContainerIDs clips;
    kaContainerIDs blocks;
};

struct kaLegacyClip {
    explicit kaLegacyClip(const osg::AnimationClipPtr& clip);

    osg::UInt32 id;
    std::string name;
    kaContainerIDs blocks;
    kaContainerIDs nested; ///< only clips count
    kaContainerIDs tracks;
    bool flipped;
    bool repeating;
    bool motionBlur;
};

struct kaLegacyTrack {
    explicit kaLegacyTrack(const osg::AnimationTrackPtr& track);

    osg::UInt32 id;
    kaContainerIDs blocks;
    kaContainerIDs sequences;
    kaContainerIDs nested; ///< only clips count
    bool active;
    bool motionBlur;
    bool flipped;
};

struct kaLegacyBlock {
    explicit kaLegacyBlock(const osg::AnimationBlockPtr& block);

    osg::UInt32 id;
    std::string name;
    kaContainerIDs curves;
    osg::UInt32 nodeID;
    bool repeating;
    bool motionBlur;
    bool flipped;
};

struct kaLegacyCurve {
    explicit kaLegacyCurve(const osg::AnimationCurvePtr& curve);
    /// The attribute's name, or the curve's where it has none.
    const std::string& attributeName() const { return attribute.empty() ? name : attribute; }

    osg::UInt32 id;
    std::string name;
    std::string attribute;
    kaContainerIDs points;
    osg::UInt32 nodeID;
    osg::UInt32 fallbackID; ///< any container; counts only when it is a node
};

struct kaLegacyPoint {
    explicit kaLegacyPoint(const osg::AnimationControlPointPtr& point);

    osg::Pnt2f position;
    osg::Pnt2f inTangent;
    osg::Pnt2f outTangent;
    unsigned int tangentType; ///< 1 to 6; anything may stand there
};

/// Entries in all lists of a container that are read, without reading them.
std::size_t kaListedIn(const osg::AnimationClipPtr& clip);
std::size_t kaListedIn(const osg::AnimationTrackPtr& track);
std::size_t kaListedIn(const osg::AnimationBlockPtr& block);
std::size_t kaListedIn(const osg::AnimationCurvePtr& curve);

/// The container's name, where it stands in the container.
template <class Ptr>
const std::string& kaNameOf(const Ptr& container) {
    return container->getName();
}

/// The container of that id if it is of the handle's type, else null.
template <class Ptr>
Ptr kaFindContainer(osg::UInt32 id) {
    return Ptr::dcast(kaSceneAccess::findContainer(id));
}
