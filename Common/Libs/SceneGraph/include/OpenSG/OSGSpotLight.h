#pragma once

#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// Shines from one point into a cone.
class KA_SCENEGRAPH_API SpotLight : public Container<SpotLight, PointLight> {
  public:
    static constexpr const Char8* TypeName = "SpotLight";
    enum : UInt32 {
        DirectionFieldId = Inherited::NextFieldId,
        SpotExponentFieldId,
        SpotCutOffFieldId,
        NextFieldId
    };
    static constexpr BitVector DirectionFieldMask = fieldMask(DirectionFieldId);
    static constexpr BitVector SpotExponentFieldMask = fieldMask(SpotExponentFieldId);
    static constexpr BitVector SpotCutOffFieldMask = fieldMask(SpotCutOffFieldId);

    static FieldContainerType& getClassType();

    /// The axis of the cone.
    /// @{
    const Vec3f& getDirection() const { return _sfDirection.getValue(); }
    Vec3f& getDirection() { return _sfDirection.getValue(); }
    Vec3f& editDirection() { return _sfDirection.getValue(); }
    void setDirection(const Vec3f& direction) { _sfDirection.setValue(direction); }
    const SFVec3f* getSFDirection() const { return &_sfDirection; }
    SFVec3f* getSFDirection() { return &_sfDirection; }
    SFVec3f* editSFDirection() { return &_sfDirection; }
    /// @}

    /// How much the light is gathered about the axis.
    /// @{
    Real32 getSpotExponent() const { return _sfSpotExponent.getValue(); }
    Real32& getSpotExponent() { return _sfSpotExponent.getValue(); }
    Real32& editSpotExponent() { return _sfSpotExponent.getValue(); }
    void setSpotExponent(Real32 spotExponent) { _sfSpotExponent.setValue(spotExponent); }
    const SFReal32* getSFSpotExponent() const { return &_sfSpotExponent; }
    SFReal32* getSFSpotExponent() { return &_sfSpotExponent; }
    SFReal32* editSFSpotExponent() { return &_sfSpotExponent; }
    /// @}

    /// Half the angle of the cone, in radians; 45 degrees by default.
    /// @{
    Real32 getSpotCutOff() const { return _sfSpotCutOff.getValue(); }
    Real32& getSpotCutOff() { return _sfSpotCutOff.getValue(); }
    Real32& editSpotCutOff() { return _sfSpotCutOff.getValue(); }
    void setSpotCutOff(Real32 spotCutOff) { _sfSpotCutOff.setValue(spotCutOff); }
    const SFReal32* getSFSpotCutOff() const { return &_sfSpotCutOff; }
    SFReal32* getSFSpotCutOff() { return &_sfSpotCutOff; }
    SFReal32* editSFSpotCutOff() { return &_sfSpotCutOff; }
    /// @}

  protected:
    SpotLight() = default;
    SpotLight(const SpotLight&) = default;
    ~SpotLight() override = default;

  private:
    friend struct ContainerAccess;

    SFVec3f _sfDirection{Vec3f(0.0F, 0.0F, 1.0F)};
    SFReal32 _sfSpotExponent{0.0F};
    SFReal32 _sfSpotCutOff{0.7853982F};
};

} // namespace osg
