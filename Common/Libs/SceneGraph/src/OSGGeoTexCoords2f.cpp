#include <OpenSG/OSGGeoTexCoords2f.h>

namespace osg {

FieldContainerType& GeoTexCoords2f::getClassType() {
    static FieldContainerType& type = declareType<GeoTexCoords2f>(
        {
            describe<&GeoTexCoords2f::_mfTexCoords>("texCoords"),
        },
        "GeoTexCoords");
    return type;
}

} // namespace osg
