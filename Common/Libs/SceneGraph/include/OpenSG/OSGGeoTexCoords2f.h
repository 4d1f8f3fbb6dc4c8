#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFVecTypes.h>

namespace osg {

/// Texture coordinates, one per corner.
class KA_SCENEGRAPH_API GeoTexCoords2f : public Container<GeoTexCoords2f, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoTexCoords2f";
    enum : UInt32 { TexCoordsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector TexCoordsFieldMask = fieldMask(TexCoordsFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFVec2f& getTexCoords() const { return _mfTexCoords; }
    MFVec2f& getTexCoords() { return _mfTexCoords; }
    MFVec2f& editTexCoords() { return _mfTexCoords; }
    const MFVec2f* getMFTexCoords() const { return &_mfTexCoords; }
    MFVec2f* getMFTexCoords() { return &_mfTexCoords; }
    MFVec2f* editMFTexCoords() { return &_mfTexCoords; }
    /// @}

    UInt32 getSize() const override { return _mfTexCoords.getSize(); }

  protected:
    GeoTexCoords2f() = default;
    GeoTexCoords2f(const GeoTexCoords2f&) = default;
    ~GeoTexCoords2f() override = default;

  private:
    friend struct ContainerAccess;

    MFVec2f _mfTexCoords;
};

} // namespace osg
