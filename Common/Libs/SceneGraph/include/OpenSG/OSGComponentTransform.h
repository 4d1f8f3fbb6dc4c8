#pragma once

#include <OpenSG/OSGSFVecTypes.h>
#include <OpenSG/OSGTransform.h>

namespace osg {

/// A transform whose matrix is put together from parts: T · C · R · SO · S · SO⁻¹ · C⁻¹. The matrix follows
/// the parts, and the parts the matrix, in `changed()`: edit, then endEditCP or changedCP with the fields'
/// masks.
class KA_SCENEGRAPH_API ComponentTransform : public Container<ComponentTransform, Transform> {
  public:
    static constexpr const Char8* TypeName = "ComponentTransform";
    enum : UInt32 {
        CenterFieldId = Inherited::NextFieldId,
        RotationFieldId,
        ScaleFieldId,
        ScaleOrientationFieldId,
        TranslationFieldId,
        NextFieldId
    };
    static constexpr BitVector CenterFieldMask = fieldMask(CenterFieldId);
    static constexpr BitVector RotationFieldMask = fieldMask(RotationFieldId);
    static constexpr BitVector ScaleFieldMask = fieldMask(ScaleFieldId);
    static constexpr BitVector ScaleOrientationFieldMask = fieldMask(ScaleOrientationFieldId);
    static constexpr BitVector TranslationFieldMask = fieldMask(TranslationFieldId);

    static FieldContainerType& getClassType();

    /// The point that rotation and scale leave in place.
    /// @{
    const Vec3f& getCenter() const { return _sfCenter.getValue(); }
    Vec3f& getCenter() { return _sfCenter.getValue(); }
    Vec3f& editCenter() { return _sfCenter.getValue(); }
    void setCenter(const Vec3f& center) { _sfCenter.setValue(center); }
    const SFVec3f* getSFCenter() const { return &_sfCenter; }
    SFVec3f* getSFCenter() { return &_sfCenter; }
    SFVec3f* editSFCenter() { return &_sfCenter; }
    /// @}

    /// Applied after the scale.
    /// @{
    const Quaternion& getRotation() const { return _sfRotation.getValue(); }
    Quaternion& getRotation() { return _sfRotation.getValue(); }
    Quaternion& editRotation() { return _sfRotation.getValue(); }
    void setRotation(const Quaternion& rotation) { _sfRotation.setValue(rotation); }
    const SFQuaternion* getSFRotation() const { return &_sfRotation; }
    SFQuaternion* getSFRotation() { return &_sfRotation; }
    SFQuaternion* editSFRotation() { return &_sfRotation; }
    /// @}

    /// One factor per axis of the scale orientation; 1 1 1 by default.
    /// @{
    const Vec3f& getScale() const { return _sfScale.getValue(); }
    Vec3f& getScale() { return _sfScale.getValue(); }
    Vec3f& editScale() { return _sfScale.getValue(); }
    void setScale(const Vec3f& scale) { _sfScale.setValue(scale); }
    const SFVec3f* getSFScale() const { return &_sfScale; }
    SFVec3f* getSFScale() { return &_sfScale; }
    SFVec3f* editSFScale() { return &_sfScale; }
    /// @}

    /// Turns the axes along which the scale works.
    /// @{
    const Quaternion& getScaleOrientation() const { return _sfScaleOrientation.getValue(); }
    Quaternion& getScaleOrientation() { return _sfScaleOrientation.getValue(); }
    Quaternion& editScaleOrientation() { return _sfScaleOrientation.getValue(); }
    void setScaleOrientation(const Quaternion& scaleOrientation) {
        _sfScaleOrientation.setValue(scaleOrientation);
    }
    const SFQuaternion* getSFScaleOrientation() const { return &_sfScaleOrientation; }
    SFQuaternion* getSFScaleOrientation() { return &_sfScaleOrientation; }
    SFQuaternion* editSFScaleOrientation() { return &_sfScaleOrientation; }
    /// @}

    /// Applied last.
    /// @{
    const Vec3f& getTranslation() const { return _sfTranslation.getValue(); }
    Vec3f& getTranslation() { return _sfTranslation.getValue(); }
    Vec3f& editTranslation() { return _sfTranslation.getValue(); }
    void setTranslation(const Vec3f& translation) { _sfTranslation.setValue(translation); }
    const SFVec3f* getSFTranslation() const { return &_sfTranslation; }
    SFVec3f* getSFTranslation() { return &_sfTranslation; }
    SFVec3f* editSFTranslation() { return &_sfTranslation; }
    /// @}

    /// Brings the matrix up to date when `whichField` holds a part, else the parts when it holds the matrix.
    void changed(BitVector whichField, UInt32 origin) override;

  protected:
    ComponentTransform() = default;
    ComponentTransform(const ComponentTransform&) = default;
    ~ComponentTransform() override = default;

  private:
    friend struct ContainerAccess;

    SFVec3f _sfCenter;
    SFQuaternion _sfRotation;
    SFVec3f _sfScale{Vec3f(1.0F, 1.0F, 1.0F)};
    SFQuaternion _sfScaleOrientation;
    SFVec3f _sfTranslation;
};

} // namespace osg
