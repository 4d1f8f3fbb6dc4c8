#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFVecTypes.h>

namespace osg {

/// Colours, one per corner.
class KA_SCENEGRAPH_API GeoColors4f : public Container<GeoColors4f, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoColors4f";
    enum : UInt32 { ColorsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector ColorsFieldMask = fieldMask(ColorsFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFColor4f& getColors() const { return _mfColors; }
    MFColor4f& getColors() { return _mfColors; }
    MFColor4f& editColors() { return _mfColors; }
    const MFColor4f* getMFColors() const { return &_mfColors; }
    MFColor4f* getMFColors() { return &_mfColors; }
    MFColor4f* editMFColors() { return &_mfColors; }
    /// @}

    UInt32 getSize() const override { return _mfColors.getSize(); }

  protected:
    GeoColors4f() = default;
    GeoColors4f(const GeoColors4f&) = default;
    ~GeoColors4f() override = default;

  private:
    friend struct ContainerAccess;

    MFColor4f _mfColors;
};

} // namespace osg
