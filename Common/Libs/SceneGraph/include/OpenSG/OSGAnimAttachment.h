#pragma once

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGMFSysTypes.h>

namespace osg {

/// Says which animation belongs to a node: ids of animation objects and of animation fields. The ids are
/// those of the animation registry, not of containers.
class KA_SCENEGRAPH_API AnimAttachment : public Container<AnimAttachment, Attachment> {
  public:
    static constexpr const Char8* TypeName = "AnimAttachment";
    enum : UInt32 {
        ObjectIDsFieldId = Inherited::NextFieldId,
        FieldIDsFieldId,
        SecondObjectIDsFieldId,
        SecondFieldIDsFieldId,
        NextFieldId
    };
    static constexpr BitVector ObjectIDsFieldMask = fieldMask(ObjectIDsFieldId);
    static constexpr BitVector FieldIDsFieldMask = fieldMask(FieldIDsFieldId);
    static constexpr BitVector SecondObjectIDsFieldMask = fieldMask(SecondObjectIDsFieldId);
    static constexpr BitVector SecondFieldIDsFieldMask = fieldMask(SecondFieldIDsFieldId);

    static FieldContainerType& getClassType();

    /// Animation objects, in the order in which they came; may hold an id twice.
    /// @{
    const MFUInt64& getObjectIDs() const { return _mfObjectIDs; }
    MFUInt64& getObjectIDs() { return _mfObjectIDs; }
    MFUInt64& editObjectIDs() { return _mfObjectIDs; }
    const MFUInt64* getMFObjectIDs() const { return &_mfObjectIDs; }
    MFUInt64* getMFObjectIDs() { return &_mfObjectIDs; }
    MFUInt64* editMFObjectIDs() { return &_mfObjectIDs; }
    /// @}

    /// Animation fields: the node's animatable values.
    /// @{
    const MFUInt64& getFieldIDs() const { return _mfFieldIDs; }
    MFUInt64& getFieldIDs() { return _mfFieldIDs; }
    MFUInt64& editFieldIDs() { return _mfFieldIDs; }
    const MFUInt64* getMFFieldIDs() const { return &_mfFieldIDs; }
    MFUInt64* getMFFieldIDs() { return &_mfFieldIDs; }
    MFUInt64* editMFFieldIDs() { return &_mfFieldIDs; }
    /// @}

    /// A second list of objects, the host's own.
    /// @{
    const MFUInt64& getSecondObjectIDs() const { return _mfSecondObjectIDs; }
    MFUInt64& getSecondObjectIDs() { return _mfSecondObjectIDs; }
    MFUInt64& editSecondObjectIDs() { return _mfSecondObjectIDs; }
    const MFUInt64* getMFSecondObjectIDs() const { return &_mfSecondObjectIDs; }
    MFUInt64* getMFSecondObjectIDs() { return &_mfSecondObjectIDs; }
    MFUInt64* editMFSecondObjectIDs() { return &_mfSecondObjectIDs; }
    /// @}

    /// A second list of fields, the host's own.
    /// @{
    const MFUInt64& getSecondFieldIDs() const { return _mfSecondFieldIDs; }
    MFUInt64& getSecondFieldIDs() { return _mfSecondFieldIDs; }
    MFUInt64& editSecondFieldIDs() { return _mfSecondFieldIDs; }
    const MFUInt64* getMFSecondFieldIDs() const { return &_mfSecondFieldIDs; }
    MFUInt64* getMFSecondFieldIDs() { return &_mfSecondFieldIDs; }
    MFUInt64* editMFSecondFieldIDs() { return &_mfSecondFieldIDs; }
    /// @}

  protected:
    AnimAttachment() = default;
    AnimAttachment(const AnimAttachment&) = default;
    ~AnimAttachment() override = default;

  private:
    friend struct ContainerAccess;

    MFUInt64 _mfObjectIDs;
    MFUInt64 _mfFieldIDs;
    MFUInt64 _mfSecondObjectIDs;
    MFUInt64 _mfSecondFieldIDs;
};

} // namespace osg
