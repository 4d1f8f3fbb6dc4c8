#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFSysTypes.h>

namespace osg {

/// What the indices make, one OpenGL primitive type per primitive (1 lines, 4 triangles ...).
class KA_SCENEGRAPH_API GeoPTypesUI8 : public Container<GeoPTypesUI8, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoPTypesUI8";
    enum : UInt32 { TypesFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector TypesFieldMask = fieldMask(TypesFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFUInt8& getTypes() const { return _mfTypes; }
    MFUInt8& getTypes() { return _mfTypes; }
    MFUInt8& editTypes() { return _mfTypes; }
    const MFUInt8* getMFTypes() const { return &_mfTypes; }
    MFUInt8* getMFTypes() { return &_mfTypes; }
    MFUInt8* editMFTypes() { return &_mfTypes; }
    /// @}

    UInt32 getSize() const override { return _mfTypes.getSize(); }

  protected:
    GeoPTypesUI8() = default;
    GeoPTypesUI8(const GeoPTypesUI8&) = default;
    ~GeoPTypesUI8() override = default;

  private:
    friend struct ContainerAccess;

    MFUInt8 _mfTypes;
};

} // namespace osg
