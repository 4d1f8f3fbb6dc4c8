#pragma once

#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationFields.h>
#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGFieldContainerFields.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// Blocks, sequences and clips one after the other.
/// Part of the older animation format, in which scenes carried their animation themselves. The lists count
/// what they hold through `add...`.
class KA_SCENEGRAPH_API AnimationTrack : public Container<AnimationTrack, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "AnimationTrack";
    enum : UInt32 {
        NameFieldId = Inherited::NextFieldId,
        BlocksFieldId,
        SequencesFieldId,
        EntriesFieldId,
        ActiveFieldId,
        MotionBlurFieldId,
        FlippedFieldId,
        NextFieldId
    };
    static constexpr BitVector NameFieldMask = fieldMask(NameFieldId);
    static constexpr BitVector BlocksFieldMask = fieldMask(BlocksFieldId);
    static constexpr BitVector SequencesFieldMask = fieldMask(SequencesFieldId);
    static constexpr BitVector EntriesFieldMask = fieldMask(EntriesFieldId);
    static constexpr BitVector ActiveFieldMask = fieldMask(ActiveFieldId);
    static constexpr BitVector MotionBlurFieldMask = fieldMask(MotionBlurFieldId);
    static constexpr BitVector FlippedFieldMask = fieldMask(FlippedFieldId);

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

    /// The blocks.
    /// @{
    const MFAnimationBlockPtr& getBlocks() const { return _mfBlocks; }
    MFAnimationBlockPtr& getBlocks() { return _mfBlocks; }
    MFAnimationBlockPtr& editBlocks() { return _mfBlocks; }
    const MFAnimationBlockPtr* getMFBlocks() const { return &_mfBlocks; }
    MFAnimationBlockPtr* getMFBlocks() { return &_mfBlocks; }
    MFAnimationBlockPtr* editMFBlocks() { return &_mfBlocks; }
    void addBlock(const AnimationBlockPtr& block);
    /// @}

    /// Named events: of each only name, begin and end count.
    /// @{
    const MFAnimationBlockPtr& getSequences() const { return _mfSequences; }
    MFAnimationBlockPtr& getSequences() { return _mfSequences; }
    MFAnimationBlockPtr& editSequences() { return _mfSequences; }
    const MFAnimationBlockPtr* getMFSequences() const { return &_mfSequences; }
    MFAnimationBlockPtr* getMFSequences() { return &_mfSequences; }
    MFAnimationBlockPtr* editMFSequences() { return &_mfSequences; }
    void addSequence(const AnimationBlockPtr& sequence);
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

    /// Whether it takes part at all.
    /// @{
    bool getActive() const { return _sfActive.getValue(); }
    bool& getActive() { return _sfActive.getValue(); }
    bool& editActive() { return _sfActive.getValue(); }
    void setActive(bool active) { _sfActive.setValue(active); }
    const SFBool* getSFActive() const { return &_sfActive; }
    SFBool* getSFActive() { return &_sfActive; }
    SFBool* editSFActive() { return &_sfActive; }
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

  protected:
    AnimationTrack() = default;
    AnimationTrack(const AnimationTrack&) = default;
    ~AnimationTrack() override = default;

  private:
    friend struct ContainerAccess;

    SFString _sfName;
    MFAnimationBlockPtr _mfBlocks;
    MFAnimationBlockPtr _mfSequences;
    MFFieldContainerPtr _mfEntries;
    SFBool _sfActive{true};
    SFBool _sfMotionBlur{false};
    SFBool _sfFlipped{false};
};

} // namespace osg
