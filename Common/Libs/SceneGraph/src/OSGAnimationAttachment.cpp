#include <OpenSG/OSGAnimationAttachment.h>

namespace osg {

FieldContainerType& AnimationAttachment::getClassType() {
    static FieldContainerType& type = declareType<AnimationAttachment>({
        describe<&AnimationAttachment::_mfClips>("clips", FieldDescription::Owning),
        describe<&AnimationAttachment::_mfBlocks>("blocks", FieldDescription::Owning),
        describe<&AnimationAttachment::_mfEntries>("entries", FieldDescription::Owning),
    });
    return type;
}

void AnimationAttachment::addClip(const AnimationClipPtr& clip) {
    if (clip == NullFC)
        return;
    addRefCP(clip);
    _mfClips.push_back(clip);
}

void AnimationAttachment::addBlock(const AnimationBlockPtr& block) {
    if (block == NullFC)
        return;
    addRefCP(block);
    _mfBlocks.push_back(block);
}

void AnimationAttachment::addEntry(const FieldContainerPtr& entry) {
    if (entry == NullFC)
        return;
    addRefCP(entry);
    _mfEntries.push_back(entry);
}

} // namespace osg
