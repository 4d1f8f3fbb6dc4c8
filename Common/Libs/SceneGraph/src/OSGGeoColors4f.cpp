#include <OpenSG/OSGGeoColors4f.h>

namespace osg {

FieldContainerType& GeoColors4f::getClassType() {
    static FieldContainerType& type = declareType<GeoColors4f>(
        {
            describe<&GeoColors4f::_mfColors>("colors"),
        },
        "GeoColors");
    return type;
}

} // namespace osg
