#include "kaLegacySize.h"

#include "kaAnimationUtils.h"
#include "kaSceneNodes.h"

void kaLegacySize::add(const osg::FieldContainerPtr& container) {
    if (container == osg::NullFC)
        return;
    _pending.push_back(container.getFieldContainerId());
    addPending();
}

void kaLegacySize::addScene(const osg::NodePtr& root) {
    for (osg::UInt32 id : kaSceneNodes::below(root))
        addNode(kaSceneNodes::find(id));
}

void kaLegacySize::addNode(const osg::NodePtr& node) {
    const auto attachment =
        osg::AnimationAttachmentPtr::dcast(kaAnimationUtils::getOldAnimationAttachment(node));
    if (attachment == osg::NullFC)
        return;
    wait(attachment->getClips());
    wait(attachment->getBlocks());
    addPending();
}

void kaLegacySize::addPending() {
    while (!_pending.empty()) {
        const osg::UInt32 id = _pending.back();
        _pending.pop_back();
        if (!_seen.insert(id).second)
            continue;
        ++_count;
        addLists(kaSceneAccess::findContainer(id));
    }
}

void kaLegacySize::addLists(const osg::FieldContainerPtr& container) {
    if (const auto clip = osg::AnimationClipPtr::dcast(container); clip != osg::NullFC) {
        countName(kaNameOf(clip));
        wait(clip->getBlocks());
        wait(clip->getEntries());
        wait(clip->getTracks());
    } else if (const auto track = osg::AnimationTrackPtr::dcast(container); track != osg::NullFC) {
        wait(track->getBlocks());
        wait(track->getSequences());
        wait(track->getEntries());
    } else if (const auto block = osg::AnimationBlockPtr::dcast(container); block != osg::NullFC) {
        countName(kaNameOf(block));
        wait(block->getCurves());
    } else if (const auto curve = osg::AnimationCurvePtr::dcast(container); curve != osg::NullFC) {
        countName(kaNameOf(curve));
        for (const auto& point : curve->getPoints())
            if (point != osg::NullFC && _seen.insert(point.getFieldContainerId()).second)
                ++_count;
    }
}

template <class List>
void kaLegacySize::wait(const List& list) {
    for (const auto& handle : list)
        if (handle != osg::NullFC)
            _pending.push_back(handle.getFieldContainerId());
}
