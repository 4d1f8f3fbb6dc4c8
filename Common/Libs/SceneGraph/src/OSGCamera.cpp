#include <OpenSG/OSGCamera.h>

namespace osg {

FieldContainerType& Camera::getClassType() {
    static FieldContainerType& type = declareAbstractType<Camera>({
        describe<&Camera::_sfBeacon>("beacon"),
        describe<&Camera::_sfNear>("near"),
        describe<&Camera::_sfFar>("far"),
    });
    return type;
}

} // namespace osg
