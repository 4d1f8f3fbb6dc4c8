#pragma once

#include <OpenSG/OSGContainer.h>
#include <OpenSG/OSGFieldContainerFields.h>
#include <OpenSG/OSGParentIndex.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// What can be hung on nodes, cores, materials and cameras: data that the graph itself does not need. One
/// attachment may hang on several containers.
class KA_SCENEGRAPH_API Attachment : public Container<Attachment, FieldContainer> {
  public:
    static constexpr const Char8* TypeName = "Attachment";
    enum : UInt32 { ParentsFieldId = Inherited::NextFieldId, InternalFieldId, NextFieldId };
    static constexpr BitVector ParentsFieldMask = fieldMask(ParentsFieldId);
    static constexpr BitVector InternalFieldMask = fieldMask(InternalFieldId);

    static FieldContainerType& getClassType();

    /// The containers that the attachment hangs on, in no particular order.
    const MFFieldContainerPtr& getParents() const { return _mfParents; }
    const MFFieldContainerPtr* getMFParents() const { return &_mfParents; }

    /// An internal attachment is not written to scene files. False by default.
    bool getInternal() const { return _sfInternal.getValue(); }
    void setInternal(bool internal) { _sfInternal.setValue(internal); }
    const SFBool* getSFInternal() const { return &_sfInternal; }

  protected:
    Attachment() = default;
    Attachment(const Attachment& source);
    ~Attachment() override = default;

    void onDestroy() override;

  private:
    friend class AttachmentContainer;

    MFFieldContainerPtr _mfParents;
    ParentIndex _parentIndex;
    SFBool _sfInternal{false};
};

} // namespace osg
