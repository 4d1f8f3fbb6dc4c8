#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFVecTypes.h>

namespace osg {

/// Corners.
class KA_SCENEGRAPH_API GeoPositions3f : public Container<GeoPositions3f, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoPositions3f";
    enum : UInt32 { PositionsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector PositionsFieldMask = fieldMask(PositionsFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFPnt3f& getPositions() const { return _mfPositions; }
    MFPnt3f& getPositions() { return _mfPositions; }
    MFPnt3f& editPositions() { return _mfPositions; }
    const MFPnt3f* getMFPositions() const { return &_mfPositions; }
    MFPnt3f* getMFPositions() { return &_mfPositions; }
    MFPnt3f* editMFPositions() { return &_mfPositions; }
    /// @}

    UInt32 getSize() const override { return _mfPositions.getSize(); }

  protected:
    GeoPositions3f() = default;
    GeoPositions3f(const GeoPositions3f&) = default;
    ~GeoPositions3f() override = default;

  private:
    friend struct ContainerAccess;

    MFPnt3f _mfPositions;
};

} // namespace osg
