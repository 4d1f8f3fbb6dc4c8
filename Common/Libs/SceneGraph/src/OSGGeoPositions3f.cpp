#include <OpenSG/OSGGeoPositions3f.h>

namespace osg {

FieldContainerType& GeoPositions3f::getClassType() {
    static FieldContainerType& type = declareType<GeoPositions3f>(
        {
            describe<&GeoPositions3f::_mfPositions>("positions"),
        },
        "GeoPositions");
    return type;
}

} // namespace osg
