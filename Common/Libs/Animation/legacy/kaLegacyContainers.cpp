#include "kaLegacyContainers.h"

#include "kaStoreIndex.h"

namespace {

template <class List>
kaContainerIDs idsOf(const List& list) {
    kaContainerIDs ids;
    ids.reserve(list.size());
    for (const auto& handle : list)
        if (handle != osg::NullFC)
            ids.push_back(handle.getFieldContainerId());
    return ids;
}

osg::UInt32 idOf(const osg::FieldContainerPtr& handle) {
    return handle == osg::NullFC ? 0 : handle.getFieldContainerId();
}

/// Of a node that a container refers to without counting it: the handle may have outlived the node. One index
/// serves all runs, so that a host may import curve by curve.
osg::UInt32 idOfReference(const osg::FieldContainerPtr& handle) {
    static kaStoreIndex index;
    return index.idOf(handle);
}

osg::Pnt2f pointAt(const osg::Vec2f& position) {
    return osg::Pnt2f(position[0], position[1]);
}

} // namespace

kaLegacyAttachment::kaLegacyAttachment(const osg::AnimationAttachmentPtr& attachment)
    : id(idOf(attachment)), clips(idsOf(attachment->getClips())), blocks(idsOf(attachment->getBlocks())) {}

kaLegacyClip::kaLegacyClip(const osg::AnimationClipPtr& clip)
    : id(idOf(clip)),
      name(clip->getName()),
      blocks(idsOf(clip->getBlocks())),
      nested(idsOf(clip->getEntries())),
      tracks(idsOf(clip->getTracks())),
      flipped(clip->getFlipped()),
      repeating(clip->getRepeating()),
      motionBlur(clip->getMotionBlur()) {}

kaLegacyTrack::kaLegacyTrack(const osg::AnimationTrackPtr& track)
    : id(idOf(track)),
      blocks(idsOf(track->getBlocks())),
      sequences(idsOf(track->getSequences())),
      nested(idsOf(track->getEntries())),
      active(track->getActive()),
      motionBlur(track->getMotionBlur()),
      flipped(track->getFlipped()) {}

kaLegacyBlock::kaLegacyBlock(const osg::AnimationBlockPtr& block)
    : id(idOf(block)),
      name(block->getName()),
      curves(idsOf(block->getCurves())),
      nodeID(idOfReference(block->getNode())),
      repeating(block->getRepeating()),
      motionBlur(block->getMotionBlur()),
      flipped(block->getFlipped()) {}

kaLegacyCurve::kaLegacyCurve(const osg::AnimationCurvePtr& curve)
    : id(idOf(curve)),
      name(curve->getName()),
      attribute(curve->getAttribute()),
      points(idsOf(curve->getPoints())),
      nodeID(idOfReference(curve->getNode())),
      fallbackID(idOfReference(curve->getFallback())) {}

kaLegacyPoint::kaLegacyPoint(const osg::AnimationControlPointPtr& point)
    : position(pointAt(point->getPosition())),
      inTangent(pointAt(point->getInTangent())),
      outTangent(pointAt(point->getOutTangent())),
      tangentType(point->getTangentType()) {}

std::size_t kaListedIn(const osg::AnimationClipPtr& clip) {
    return clip->getBlocks().size() + clip->getEntries().size() + clip->getTracks().size();
}

std::size_t kaListedIn(const osg::AnimationTrackPtr& track) {
    return track->getBlocks().size() + track->getSequences().size() + track->getEntries().size();
}

std::size_t kaListedIn(const osg::AnimationBlockPtr& block) {
    return block->getCurves().size();
}

std::size_t kaListedIn(const osg::AnimationCurvePtr& curve) {
    return curve->getPoints().size();
}
