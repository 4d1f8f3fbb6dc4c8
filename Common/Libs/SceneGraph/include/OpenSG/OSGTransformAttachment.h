#pragma once

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// The Euler angles of a node that a Transform3D places.
class KA_SCENEGRAPH_API TransformAttachment : public Container<TransformAttachment, Attachment> {
  public:
    static constexpr const Char8* TypeName = "TransformAttachment";
    enum : UInt32 { RotationFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector RotationFieldMask = fieldMask(RotationFieldId);

    static FieldContainerType& getClassType();

    /// Angles about x, y and z, in degrees; x is applied first.
    /// @{
    const Vec3f& getRotation() const { return _sfRotation.getValue(); }
    Vec3f& getRotation() { return _sfRotation.getValue(); }
    Vec3f& editRotation() { return _sfRotation.getValue(); }
    void setRotation(const Vec3f& rotation) { _sfRotation.setValue(rotation); }
    const SFVec3f* getSFRotation() const { return &_sfRotation; }
    SFVec3f* getSFRotation() { return &_sfRotation; }
    SFVec3f* editSFRotation() { return &_sfRotation; }
    /// @}

    void setRotation(Real32 x, Real32 y, Real32 z) { _sfRotation.setValue(Vec3f(x, y, z)); }

  protected:
    TransformAttachment() = default;
    TransformAttachment(const TransformAttachment&) = default;
    ~TransformAttachment() override = default;

  private:
    friend struct ContainerAccess;

    SFVec3f _sfRotation;
};

} // namespace osg
