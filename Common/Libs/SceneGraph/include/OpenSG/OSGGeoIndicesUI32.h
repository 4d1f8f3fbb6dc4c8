#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFSysTypes.h>

namespace osg {

/// Indices into the corners.
class KA_SCENEGRAPH_API GeoIndicesUI32 : public Container<GeoIndicesUI32, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoIndicesUI32";
    enum : UInt32 { IndicesFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector IndicesFieldMask = fieldMask(IndicesFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFUInt32& getIndices() const { return _mfIndices; }
    MFUInt32& getIndices() { return _mfIndices; }
    MFUInt32& editIndices() { return _mfIndices; }
    const MFUInt32* getMFIndices() const { return &_mfIndices; }
    MFUInt32* getMFIndices() { return &_mfIndices; }
    MFUInt32* editMFIndices() { return &_mfIndices; }
    /// @}

    UInt32 getSize() const override { return _mfIndices.getSize(); }

  protected:
    GeoIndicesUI32() = default;
    GeoIndicesUI32(const GeoIndicesUI32&) = default;
    ~GeoIndicesUI32() override = default;

  private:
    friend struct ContainerAccess;

    MFUInt32 _mfIndices;
};

} // namespace osg
