#include <OpenSG/OSGGeoPLengthsUI32.h>

namespace osg {

FieldContainerType& GeoPLengthsUI32::getClassType() {
    static FieldContainerType& type = declareType<GeoPLengthsUI32>(
        {
            describe<&GeoPLengthsUI32::_mfLengths>("lengths"),
        },
        "GeoPLengths");
    return type;
}

} // namespace osg
