#pragma once

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGAttachmentMapFields.h>

namespace osg {

/// A container that attachments can be hung on: at most one per (group of the attachment, binding).
class KA_SCENEGRAPH_API AttachmentContainer : public Container<AttachmentContainer, FieldContainer> {
  public:
    static constexpr const Char8* TypeName = "AttachmentContainer";
    enum : UInt32 { AttachmentsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector AttachmentsFieldMask = fieldMask(AttachmentsFieldId);

    static FieldContainerType& getClassType();

    /// Hangs the attachment on and counts it up. What was there under the same group and binding is taken off
    /// and counted down. Null is ignored.
    void addAttachment(const AttachmentPtr& attachment, UInt16 binding = 0);

    /// Takes off whatever hangs under the group of `attachment` and the binding, and counts it down.
    void subAttachment(const AttachmentPtr& attachment, UInt16 binding = 0);

    /// The attachment of that group; null when there is none. Cost: a look into a small map.
    AttachmentPtr findAttachment(UInt32 groupId, UInt16 binding = 0) const;
    AttachmentPtr findAttachment(const FieldContainerType& type, UInt16 binding = 0) const;

    /// By key: group id times 65536 plus binding.
    const AttachmentMap& getAttachments() const { return _sfAttachments.getValue(); }
    const SFAttachmentMap* getSFAttachments() const { return &_sfAttachments; }

  protected:
    AttachmentContainer() = default;
    /// Shares the attachments of the source.
    AttachmentContainer(const AttachmentContainer&) = default;
    ~AttachmentContainer() override = default;

    void onCopied() override;
    void onDestroy() override;

  private:
    friend class Attachment;

    void detach(UInt32 key);

    SFAttachmentMap _sfAttachments;
};

} // namespace osg
