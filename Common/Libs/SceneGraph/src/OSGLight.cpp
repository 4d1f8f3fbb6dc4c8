#include <OpenSG/OSGLight.h>

namespace osg {

FieldContainerType& Light::getClassType() {
    static FieldContainerType& type = declareAbstractType<Light>({
        describe<&Light::_sfAmbient>("ambient"),
        describe<&Light::_sfDiffuse>("diffuse"),
        describe<&Light::_sfSpecular>("specular"),
        describe<&Light::_sfBeacon>("beacon"),
        describe<&Light::_sfOn>("on"),
        describe<&Light::_sfConstantAttenuation>("constantAttenuation"),
        describe<&Light::_sfLinearAttenuation>("linearAttenuation"),
        describe<&Light::_sfQuadraticAttenuation>("quadraticAttenuation"),
        describe<&Light::_sfShadowIntensity>("shadowIntensity"),
        describe<&Light::_sfShadowMode>("shadowMode"),
    });
    return type;
}

void Light::setBeacon(const NodePtr& beacon) {
    _sfBeacon.setValue(beacon);
    _countedBeacon = beacon;
}

} // namespace osg
