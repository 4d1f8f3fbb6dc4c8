#include <OpenSG/OSGAnimationClip.h>

namespace osg {

FieldContainerType& AnimationClip::getClassType() {
    static FieldContainerType& type = declareType<AnimationClip>({
        describe<&AnimationClip::_sfName>("name"),
        describe<&AnimationClip::_mfBlocks>("blocks", FieldDescription::Owning),
        describe<&AnimationClip::_mfEntries>("entries", FieldDescription::Owning),
        describe<&AnimationClip::_mfTracks>("tracks", FieldDescription::Owning),
        describe<&AnimationClip::_sfFlipped>("flipped"),
        describe<&AnimationClip::_sfRepeating>("repeating"),
        describe<&AnimationClip::_sfMotionBlur>("motionBlur"),
    });
    return type;
}

void AnimationClip::addBlock(const AnimationBlockPtr& block) {
    if (block == NullFC)
        return;
    addRefCP(block);
    _mfBlocks.push_back(block);
}

void AnimationClip::addEntry(const FieldContainerPtr& entry) {
    if (entry == NullFC)
        return;
    addRefCP(entry);
    _mfEntries.push_back(entry);
}

void AnimationClip::addTrack(const AnimationTrackPtr& track) {
    if (track == NullFC)
        return;
    addRefCP(track);
    _mfTracks.push_back(track);
}

} // namespace osg
