#pragma once

#include <OpenSG/OSGLight.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// Shines from one point to all sides.
class KA_SCENEGRAPH_API PointLight : public Container<PointLight, Light> {
  public:
    static constexpr const Char8* TypeName = "PointLight";
    enum : UInt32 { PositionFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector PositionFieldMask = fieldMask(PositionFieldId);

    static FieldContainerType& getClassType();

    /// In the coordinates of the beacon.
    /// @{
    const Pnt3f& getPosition() const { return _sfPosition.getValue(); }
    Pnt3f& getPosition() { return _sfPosition.getValue(); }
    Pnt3f& editPosition() { return _sfPosition.getValue(); }
    void setPosition(const Pnt3f& position) { _sfPosition.setValue(position); }
    const SFPnt3f* getSFPosition() const { return &_sfPosition; }
    SFPnt3f* getSFPosition() { return &_sfPosition; }
    SFPnt3f* editSFPosition() { return &_sfPosition; }
    /// @}

  protected:
    PointLight() = default;
    PointLight(const PointLight&) = default;
    ~PointLight() override = default;

  private:
    friend struct ContainerAccess;

    SFPnt3f _sfPosition;
};

} // namespace osg
