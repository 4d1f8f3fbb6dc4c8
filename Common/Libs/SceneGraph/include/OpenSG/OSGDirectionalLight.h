#pragma once

#include <OpenSG/OSGLight.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// Shines from far away in parallel rays.
class KA_SCENEGRAPH_API DirectionalLight : public Container<DirectionalLight, Light> {
  public:
    static constexpr const Char8* TypeName = "DirectionalLight";
    enum : UInt32 { DirectionFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector DirectionFieldMask = fieldMask(DirectionFieldId);

    static FieldContainerType& getClassType();

    /// Towards the light, in the coordinates of the beacon.
    /// @{
    const Vec3f& getDirection() const { return _sfDirection.getValue(); }
    Vec3f& getDirection() { return _sfDirection.getValue(); }
    Vec3f& editDirection() { return _sfDirection.getValue(); }
    void setDirection(const Vec3f& direction) { _sfDirection.setValue(direction); }
    const SFVec3f* getSFDirection() const { return &_sfDirection; }
    SFVec3f* getSFDirection() { return &_sfDirection; }
    SFVec3f* editSFDirection() { return &_sfDirection; }
    /// @}

  protected:
    DirectionalLight() = default;
    DirectionalLight(const DirectionalLight&) = default;
    ~DirectionalLight() override = default;

  private:
    friend struct ContainerAccess;

    SFVec3f _sfDirection{Vec3f(0.0F, 0.0F, 1.0F)};
};

} // namespace osg
