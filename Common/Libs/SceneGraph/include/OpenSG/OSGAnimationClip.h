#pragma once

#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationFields.h>
#include <OpenSG/OSGAnimationTrack.h>
#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGFieldContainerFields.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// Tracks on top of one another.
/// Part of the older animation format, in which scenes carried their animation themselves. The lists count
/// what they hold through `add...`.
class KA_SCENEGRAPH_API AnimationClip : public Container<AnimationClip, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "AnimationClip";
    enum : UInt32 {
        NameFieldId = Inherited::NextFieldId,
        BlocksFieldId,
        EntriesFieldId,
        TracksFieldId,
        FlippedFieldId,
        RepeatingFieldId,
        MotionBlurFieldId,
        NextFieldId
    };
    static constexpr BitVector NameFieldMask = fieldMask(NameFieldId);
    static constexpr BitVector BlocksFieldMask = fieldMask(BlocksFieldId);
    static constexpr BitVector EntriesFieldMask = fieldMask(EntriesFieldId);
    static constexpr BitVector TracksFieldMask = fieldMask(TracksFieldId);
    static constexpr BitVector FlippedFieldMask = fieldMask(FlippedFieldId);
    static constexpr BitVector RepeatingFieldMask = fieldMask(RepeatingFieldId);
    static constexpr BitVector MotionBlurFieldMask = fieldMask(MotionBlurFieldId);

    static FieldContainerType& getClassType();

    /// The name.
    /// @{
    const std::string& getName() const { return _sfName.getValue(); }
    std::string& getName() { return _sfName.getValue(); }
    std::string& editName() { return _sfName.getValue(); }
    void setName(const std::string& name) { _sfName.setValue(name); }
    const SFString* getSFName() const { return &_sfName; }
    SFString* getSFName() { return &_sfName; }
    SFString* editSFName() { return &_sfName; }
    /// @}

    /// Blocks outside of tracks.
    /// @{
    const MFAnimationBlockPtr& getBlocks() const { return _mfBlocks; }
    MFAnimationBlockPtr& getBlocks() { return _mfBlocks; }
    MFAnimationBlockPtr& editBlocks() { return _mfBlocks; }
    const MFAnimationBlockPtr* getMFBlocks() const { return &_mfBlocks; }
    MFAnimationBlockPtr* getMFBlocks() { return &_mfBlocks; }
    MFAnimationBlockPtr* editMFBlocks() { return &_mfBlocks; }
    void addBlock(const AnimationBlockPtr& block);
    /// @}

    /// Nested entries; those that are clips are nested clips.
    /// @{
    const MFFieldContainerPtr& getEntries() const { return _mfEntries; }
    MFFieldContainerPtr& getEntries() { return _mfEntries; }
    MFFieldContainerPtr& editEntries() { return _mfEntries; }
    const MFFieldContainerPtr* getMFEntries() const { return &_mfEntries; }
    MFFieldContainerPtr* getMFEntries() { return &_mfEntries; }
    MFFieldContainerPtr* editMFEntries() { return &_mfEntries; }
    void addEntry(const FieldContainerPtr& entry);
    /// @}

    /// The tracks.
    /// @{
    const MFAnimationTrackPtr& getTracks() const { return _mfTracks; }
    MFAnimationTrackPtr& getTracks() { return _mfTracks; }
    MFAnimationTrackPtr& editTracks() { return _mfTracks; }
    const MFAnimationTrackPtr* getMFTracks() const { return &_mfTracks; }
    MFAnimationTrackPtr* getMFTracks() { return &_mfTracks; }
    MFAnimationTrackPtr* editMFTracks() { return &_mfTracks; }
    void addTrack(const AnimationTrackPtr& track);
    /// @}

    /// Whether it runs backwards.
    /// @{
    bool getFlipped() const { return _sfFlipped.getValue(); }
    bool& getFlipped() { return _sfFlipped.getValue(); }
    bool& editFlipped() { return _sfFlipped.getValue(); }
    void setFlipped(bool flipped) { _sfFlipped.setValue(flipped); }
    const SFBool* getSFFlipped() const { return &_sfFlipped; }
    SFBool* getSFFlipped() { return &_sfFlipped; }
    SFBool* editSFFlipped() { return &_sfFlipped; }
    /// @}

    /// Whether it starts again at its end.
    /// @{
    bool getRepeating() const { return _sfRepeating.getValue(); }
    bool& getRepeating() { return _sfRepeating.getValue(); }
    bool& editRepeating() { return _sfRepeating.getValue(); }
    void setRepeating(bool repeating) { _sfRepeating.setValue(repeating); }
    const SFBool* getSFRepeating() const { return &_sfRepeating; }
    SFBool* getSFRepeating() { return &_sfRepeating; }
    SFBool* editSFRepeating() { return &_sfRepeating; }
    /// @}

    /// Whether it takes part in motion blur.
    /// @{
    bool getMotionBlur() const { return _sfMotionBlur.getValue(); }
    bool& getMotionBlur() { return _sfMotionBlur.getValue(); }
    bool& editMotionBlur() { return _sfMotionBlur.getValue(); }
    void setMotionBlur(bool motionBlur) { _sfMotionBlur.setValue(motionBlur); }
    const SFBool* getSFMotionBlur() const { return &_sfMotionBlur; }
    SFBool* getSFMotionBlur() { return &_sfMotionBlur; }
    SFBool* editSFMotionBlur() { return &_sfMotionBlur; }
    /// @}

  protected:
    AnimationClip() = default;
    AnimationClip(const AnimationClip&) = default;
    ~AnimationClip() override = default;

  private:
    friend struct ContainerAccess;

    SFString _sfName;
    MFAnimationBlockPtr _mfBlocks;
    MFFieldContainerPtr _mfEntries;
    MFAnimationTrackPtr _mfTracks;
    SFBool _sfFlipped{false};
    SFBool _sfRepeating{false};
    SFBool _sfMotionBlur{false};
};

} // namespace osg
