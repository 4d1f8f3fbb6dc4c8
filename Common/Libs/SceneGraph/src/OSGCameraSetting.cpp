#include <OpenSG/OSGCameraSetting.h>

namespace osg {

FieldContainerType& CameraSetting::getClassType() {
    static FieldContainerType& type = declareType<CameraSetting>({
        describe<&CameraSetting::_sfFrom>("from"),
        describe<&CameraSetting::_sfAt>("at"),
        describe<&CameraSetting::_sfUp>("up"),
        describe<&CameraSetting::_sfRoll>("roll"),
        describe<&CameraSetting::_sfFieldOfView>("fieldOfView"),
    });
    return type;
}

void CameraSetting::visitProperties(const PropertyVisitor& visitor) {
    visitor("distance", &_distance);
    visitor("height", &_height);
    visitor("turnTableAngle", &_turnTableAngle);
    visitor("fStop", &_fStop);
    visitor("focalLength", &_focalLength);
    visitor("cameraPath", &_cameraPath);
}

} // namespace osg
