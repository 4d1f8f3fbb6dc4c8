#include <OpenSG/OSGGeoProperty.h>

namespace osg {

FieldContainerType& GeoProperty::getClassType() {
    static FieldContainerType& type = declareAbstractType<GeoProperty>({});
    return type;
}

} // namespace osg
