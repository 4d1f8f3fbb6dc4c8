#include <OpenSG/OSGDirectionalLight.h>

namespace osg {

FieldContainerType& DirectionalLight::getClassType() {
    static FieldContainerType& type = declareType<DirectionalLight>({
        describe<&DirectionalLight::_sfDirection>("direction"),
    });
    return type;
}

} // namespace osg
