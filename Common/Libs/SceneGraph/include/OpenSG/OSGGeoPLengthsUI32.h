#pragma once

#include <OpenSG/OSGGeoProperty.h>
#include <OpenSG/OSGMFSysTypes.h>

namespace osg {

/// The number of indices of each primitive.
class KA_SCENEGRAPH_API GeoPLengthsUI32 : public Container<GeoPLengthsUI32, GeoProperty> {
  public:
    static constexpr const Char8* TypeName = "GeoPLengthsUI32";
    enum : UInt32 { LengthsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector LengthsFieldMask = fieldMask(LengthsFieldId);

    static FieldContainerType& getClassType();

    /// One entry each.
    /// @{
    const MFUInt32& getLengths() const { return _mfLengths; }
    MFUInt32& getLengths() { return _mfLengths; }
    MFUInt32& editLengths() { return _mfLengths; }
    const MFUInt32* getMFLengths() const { return &_mfLengths; }
    MFUInt32* getMFLengths() { return &_mfLengths; }
    MFUInt32* editMFLengths() { return &_mfLengths; }
    /// @}

    UInt32 getSize() const override { return _mfLengths.getSize(); }

  protected:
    GeoPLengthsUI32() = default;
    GeoPLengthsUI32(const GeoPLengthsUI32&) = default;
    ~GeoPLengthsUI32() override = default;

  private:
    friend struct ContainerAccess;

    MFUInt32 _mfLengths;
};

} // namespace osg
