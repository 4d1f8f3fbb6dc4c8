#include <OpenSG/OSGAnimationTrack.h>

namespace osg {

FieldContainerType& AnimationTrack::getClassType() {
    static FieldContainerType& type = declareType<AnimationTrack>({
        describe<&AnimationTrack::_sfName>("name"),
        describe<&AnimationTrack::_mfBlocks>("blocks", FieldDescription::Owning),
        describe<&AnimationTrack::_mfSequences>("sequences", FieldDescription::Owning),
        describe<&AnimationTrack::_mfEntries>("entries", FieldDescription::Owning),
        describe<&AnimationTrack::_sfActive>("active"),
        describe<&AnimationTrack::_sfMotionBlur>("motionBlur"),
        describe<&AnimationTrack::_sfFlipped>("flipped"),
    });
    return type;
}

void AnimationTrack::addBlock(const AnimationBlockPtr& block) {
    if (block == NullFC)
        return;
    addRefCP(block);
    _mfBlocks.push_back(block);
}

void AnimationTrack::addSequence(const AnimationBlockPtr& sequence) {
    if (sequence == NullFC)
        return;
    addRefCP(sequence);
    _mfSequences.push_back(sequence);
}

void AnimationTrack::addEntry(const FieldContainerPtr& entry) {
    if (entry == NullFC)
        return;
    addRefCP(entry);
    _mfEntries.push_back(entry);
}

} // namespace osg
