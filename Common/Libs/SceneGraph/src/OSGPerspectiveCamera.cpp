#include <OpenSG/OSGPerspectiveCamera.h>

namespace osg {

FieldContainerType& PerspectiveCamera::getClassType() {
    static FieldContainerType& type = declareType<PerspectiveCamera>({
        describe<&PerspectiveCamera::_sfFov>("fov"),
        describe<&PerspectiveCamera::_sfFovMode>("fovMode"),
        describe<&PerspectiveCamera::_sfAspect>("aspect"),
    });
    return type;
}

} // namespace osg
