#include <OpenSG/OSGGeoIndicesUI32.h>

namespace osg {

FieldContainerType& GeoIndicesUI32::getClassType() {
    static FieldContainerType& type = declareType<GeoIndicesUI32>(
        {
            describe<&GeoIndicesUI32::_mfIndices>("indices"),
        },
        "GeoIndices");
    return type;
}

} // namespace osg
