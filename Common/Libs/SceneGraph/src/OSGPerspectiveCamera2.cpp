#include <OpenSG/OSGPerspectiveCamera2.h>

namespace osg {

FieldContainerType& PerspectiveCamera2::getClassType() {
    static FieldContainerType& type = declareType<PerspectiveCamera2>({
        describe<&PerspectiveCamera2::_sfShutterSpeed>("shutterSpeed"),
    });
    return type;
}

} // namespace osg
