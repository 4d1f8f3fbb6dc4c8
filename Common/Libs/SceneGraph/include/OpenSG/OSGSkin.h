#pragma once

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGMFSysTypes.h>
#include <OpenSG/OSGMFVecTypes.h>
#include <OpenSG/OSGNodeFields.h>

namespace osg {

/// Binds the corners of a geometry to joints; on the geometry's node.
///
/// A corner v stands in the world at the sum over its four joints j of weight · toWorld(j) · inverseBind(j) · v; where
/// the geometry's own node stands does not count. Corners have the joints `indices[4 * corner]` and the three after it,
/// as places in `joints`, and the weights at the same places, which add up to 1.
class KA_SCENEGRAPH_API Skin : public Container<Skin, Attachment> {
  public:
    static constexpr const Char8* TypeName = "Skin";
    enum : UInt32 {
        JointsFieldId = Inherited::NextFieldId,
        InverseBindsFieldId,
        IndicesFieldId,
        WeightsFieldId,
        NextFieldId
    };
    static constexpr BitVector JointsFieldMask = fieldMask(JointsFieldId);
    static constexpr BitVector InverseBindsFieldMask = fieldMask(InverseBindsFieldId);
    static constexpr BitVector IndicesFieldMask = fieldMask(IndicesFieldId);
    static constexpr BitVector WeightsFieldMask = fieldMask(WeightsFieldId);

    static FieldContainerType& getClassType();

    /// The nodes that move the corners; not counted.
    /// @{
    const MFNodePtr* getMFJoints() const { return &_mfJoints; }
    MFNodePtr* editMFJoints() { return &_mfJoints; }
    /// @}

    /// For each joint what takes a corner from the geometry's axes to those of the joint at rest.
    /// @{
    const MFMatrix* getMFInverseBinds() const { return &_mfInverseBinds; }
    MFMatrix* editMFInverseBinds() { return &_mfInverseBinds; }
    /// @}

    /// Four a corner, each below the number of joints.
    /// @{
    const MFUInt32* getMFIndices() const { return &_mfIndices; }
    MFUInt32* editMFIndices() { return &_mfIndices; }
    /// @}

    /// Four a corner.
    /// @{
    const MFReal32* getMFWeights() const { return &_mfWeights; }
    MFReal32* editMFWeights() { return &_mfWeights; }
    /// @}

  protected:
    Skin() = default;
    Skin(const Skin&) = default;
    ~Skin() override = default;

  private:
    friend struct ContainerAccess;

    MFNodePtr _mfJoints;
    MFMatrix _mfInverseBinds;
    MFUInt32 _mfIndices;
    MFReal32 _mfWeights;
};

using SkinPtr = FCPtr<AttachmentPtr, Skin>;

} // namespace osg
