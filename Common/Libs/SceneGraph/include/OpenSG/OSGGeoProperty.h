#pragma once

#include <OpenSG/OSGAttachment.h>

namespace osg {

/// One kind of data of a geometry: a list that several geometries may share.
class KA_SCENEGRAPH_API GeoProperty : public Container<GeoProperty, Attachment> {
  public:
    static constexpr const Char8* TypeName = "GeoProperty";

    static FieldContainerType& getClassType();

    /// The number of entries.
    virtual UInt32 getSize() const = 0;

  protected:
    GeoProperty() = default;
    GeoProperty(const GeoProperty&) = default;
    ~GeoProperty() override = default;
};

} // namespace osg
