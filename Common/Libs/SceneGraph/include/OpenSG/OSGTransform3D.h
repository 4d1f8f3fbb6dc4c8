#pragma once

#include <OpenSG/OSGSFVecTypes.h>
#include <OpenSG/OSGTransform.h>

namespace osg {

/// Moves everything below its node by a translation, three Euler angles and a scale, the form that is
/// animated.
///
/// The angles are not the core's: they are those of the node's TransformAttachment (degrees; 0 0 0 without
/// one), so that nodes that share the core turn each in its own way. The placement of a node is
///
///     matrix · T · Rz · Ry · Rx · S
///
/// on column vectors: what is inside is scaled first, then turned about x, then about y, then about z, then
/// moved, and at last goes through the inherited `matrix`, which is the identity unless somebody sets it (a
/// rest pose).
class KA_SCENEGRAPH_API Transform3D : public Container<Transform3D, Transform> {
  public:
    static constexpr const Char8* TypeName = "Transform3D";
    enum : UInt32 { TranslationFieldId = Inherited::NextFieldId, ScaleFieldId, NextFieldId };
    static constexpr BitVector TranslationFieldMask = fieldMask(TranslationFieldId);
    static constexpr BitVector ScaleFieldMask = fieldMask(ScaleFieldId);

    static FieldContainerType& getClassType();

    /// Applied after scale and rotation.
    /// @{
    const Vec3f& getTranslation() const { return _sfTranslation.getValue(); }
    Vec3f& getTranslation() { return _sfTranslation.getValue(); }
    Vec3f& editTranslation() { return _sfTranslation.getValue(); }
    void setTranslation(const Vec3f& translation) { _sfTranslation.setValue(translation); }
    const SFVec3f* getSFTranslation() const { return &_sfTranslation; }
    SFVec3f* getSFTranslation() { return &_sfTranslation; }
    SFVec3f* editSFTranslation() { return &_sfTranslation; }
    /// @}

    /// One factor per axis; 1 1 1 by default.
    /// @{
    const Vec3f& getScale() const { return _sfScale.getValue(); }
    Vec3f& getScale() { return _sfScale.getValue(); }
    Vec3f& editScale() { return _sfScale.getValue(); }
    void setScale(const Vec3f& scale) { _sfScale.setValue(scale); }
    const SFVec3f* getSFScale() const { return &_sfScale; }
    SFVec3f* getSFScale() { return &_sfScale; }
    SFVec3f* editSFScale() { return &_sfScale; }
    /// @}

    /// The whole product above.
    bool getLocalMatrix(const Node& node, Matrix& result) const override;

    /// T · Rz · Ry · Rx · S.
    /// @param degrees  the angles about x, y and z.
    static Matrix compose(const Vec3f& translation, const Vec3f& degrees, const Vec3f& scale);

  protected:
    Transform3D() = default;
    Transform3D(const Transform3D&) = default;
    ~Transform3D() override = default;

  private:
    friend struct ContainerAccess;

    SFVec3f _sfTranslation;
    SFVec3f _sfScale{Vec3f(1.0F, 1.0F, 1.0F)};
};

} // namespace osg
