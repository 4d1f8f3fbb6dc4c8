#pragma once

#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationFields.h>
#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGFieldContainerFields.h>

namespace osg {

/// The animation of a node.
/// Part of the older animation format, in which scenes carried their animation themselves. The lists count
/// what they hold through `add...`.
class KA_SCENEGRAPH_API AnimationAttachment : public Container<AnimationAttachment, Attachment> {
  public:
    static constexpr const Char8* TypeName = "AnimationAttachment";
    enum : UInt32 { ClipsFieldId = Inherited::NextFieldId, BlocksFieldId, EntriesFieldId, NextFieldId };
    static constexpr BitVector ClipsFieldMask = fieldMask(ClipsFieldId);
    static constexpr BitVector BlocksFieldMask = fieldMask(BlocksFieldId);
    static constexpr BitVector EntriesFieldMask = fieldMask(EntriesFieldId);

    static FieldContainerType& getClassType();

    /// Clips; meant for the root of the scene only.
    /// @{
    const MFAnimationClipPtr& getClips() const { return _mfClips; }
    MFAnimationClipPtr& getClips() { return _mfClips; }
    MFAnimationClipPtr& editClips() { return _mfClips; }
    const MFAnimationClipPtr* getMFClips() const { return &_mfClips; }
    MFAnimationClipPtr* getMFClips() { return &_mfClips; }
    MFAnimationClipPtr* editMFClips() { return &_mfClips; }
    void addClip(const AnimationClipPtr& clip);
    /// @}

    /// Blocks of the node; those of the root are of the camera.
    /// @{
    const MFAnimationBlockPtr& getBlocks() const { return _mfBlocks; }
    MFAnimationBlockPtr& getBlocks() { return _mfBlocks; }
    MFAnimationBlockPtr& editBlocks() { return _mfBlocks; }
    const MFAnimationBlockPtr* getMFBlocks() const { return &_mfBlocks; }
    MFAnimationBlockPtr* getMFBlocks() { return &_mfBlocks; }
    MFAnimationBlockPtr* editMFBlocks() { return &_mfBlocks; }
    void addBlock(const AnimationBlockPtr& block);
    /// @}

    /// Whatever else belongs to it.
    /// @{
    const MFFieldContainerPtr& getEntries() const { return _mfEntries; }
    MFFieldContainerPtr& getEntries() { return _mfEntries; }
    MFFieldContainerPtr& editEntries() { return _mfEntries; }
    const MFFieldContainerPtr* getMFEntries() const { return &_mfEntries; }
    MFFieldContainerPtr* getMFEntries() { return &_mfEntries; }
    MFFieldContainerPtr* editMFEntries() { return &_mfEntries; }
    void addEntry(const FieldContainerPtr& entry);
    /// @}

  protected:
    AnimationAttachment() = default;
    AnimationAttachment(const AnimationAttachment&) = default;
    ~AnimationAttachment() override = default;

  private:
    friend struct ContainerAccess;

    MFAnimationClipPtr _mfClips;
    MFAnimationBlockPtr _mfBlocks;
    MFFieldContainerPtr _mfEntries;
};

} // namespace osg
