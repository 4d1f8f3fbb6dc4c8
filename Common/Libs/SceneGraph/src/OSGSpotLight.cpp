#include <OpenSG/OSGSpotLight.h>

namespace osg {

FieldContainerType& SpotLight::getClassType() {
    static FieldContainerType& type = declareType<SpotLight>({
        describe<&SpotLight::_sfDirection>("direction"),
        describe<&SpotLight::_sfSpotExponent>("spotExponent"),
        describe<&SpotLight::_sfSpotCutOff>("spotCutOff"),
    });
    return type;
}

} // namespace osg
