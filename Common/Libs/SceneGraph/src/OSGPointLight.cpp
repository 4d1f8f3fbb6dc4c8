#include <OpenSG/OSGPointLight.h>

namespace osg {

FieldContainerType& PointLight::getClassType() {
    static FieldContainerType& type = declareType<PointLight>({
        describe<&PointLight::_sfPosition>("position"),
    });
    return type;
}

} // namespace osg
