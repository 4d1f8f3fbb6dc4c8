#pragma once

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMFVecTypes.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// One shape that a geometry can take on: its node stands below the geometry's. A corner is moved by weight · offset for
/// each of them, before a skin takes it on.
class KA_SCENEGRAPH_API MorphTarget : public Container<MorphTarget, Group> {
  public:
    static constexpr const Char8* TypeName = "MorphTarget";
    enum : UInt32 { WeightFieldId = Inherited::NextFieldId, OffsetsFieldId, NextFieldId };
    static constexpr BitVector WeightFieldMask = fieldMask(WeightFieldId);
    static constexpr BitVector OffsetsFieldMask = fieldMask(OffsetsFieldId);

    static FieldContainerType& getClassType();

    /// How much of the shape: 0 none of it, 1 all. An animated value like any other ("weight").
    /// @{
    Real32 getWeight() const { return _sfWeight.getValue(); }
    void setWeight(Real32 weight) { _sfWeight.setValue(weight); }
    const SFReal32* getSFWeight() const { return &_sfWeight; }
    SFReal32* editSFWeight() { return &_sfWeight; }
    /// @}

    /// One for each corner of the geometry.
    /// @{
    const MFVec3f* getMFOffsets() const { return &_mfOffsets; }
    MFVec3f* editMFOffsets() { return &_mfOffsets; }
    /// @}

  protected:
    MorphTarget() = default;
    MorphTarget(const MorphTarget&) = default;
    ~MorphTarget() override = default;

  private:
    friend struct ContainerAccess;

    SFReal32 _sfWeight{0.0F};
    MFVec3f _mfOffsets;
};

using MorphTargetPtr = FCPtr<GroupPtr, MorphTarget>;

} // namespace osg
