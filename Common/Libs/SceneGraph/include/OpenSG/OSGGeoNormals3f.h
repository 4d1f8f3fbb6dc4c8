#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFVecTypes.h>

namespace osg {

/// Normals, one per corner.
class KA_SCENEGRAPH_API GeoNormals3f : public Container<GeoNormals3f, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoNormals3f";
    enum : UInt32 { NormalsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector NormalsFieldMask = fieldMask(NormalsFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFVec3f& getNormals() const { return _mfNormals; }
    MFVec3f& getNormals() { return _mfNormals; }
    MFVec3f& editNormals() { return _mfNormals; }
    const MFVec3f* getMFNormals() const { return &_mfNormals; }
    MFVec3f* getMFNormals() { return &_mfNormals; }
    MFVec3f* editMFNormals() { return &_mfNormals; }
    /// @}

    UInt32 getSize() const override { return _mfNormals.getSize(); }

  protected:
    GeoNormals3f() = default;
    GeoNormals3f(const GeoNormals3f&) = default;
    ~GeoNormals3f() override = default;

  private:
    friend struct ContainerAccess;

    MFVec3f _mfNormals;
};

} // namespace osg
