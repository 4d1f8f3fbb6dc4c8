#include <OpenSG/OSGGeoPTypesUI8.h>

namespace osg {

FieldContainerType& GeoPTypesUI8::getClassType() {
    static FieldContainerType& type = declareType<GeoPTypesUI8>(
        {
            describe<&GeoPTypesUI8::_mfTypes>("types"),
        },
        "GeoPTypes");
    return type;
}

} // namespace osg
