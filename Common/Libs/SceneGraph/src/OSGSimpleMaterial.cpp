#include <OpenSG/OSGSimpleMaterial.h>

namespace osg {

FieldContainerType& SimpleMaterial::getClassType() {
    static FieldContainerType& type = declareType<SimpleMaterial>({
        describe<&SimpleMaterial::_sfAmbient>("ambient"),
        describe<&SimpleMaterial::_sfDiffuse>("diffuse"),
        describe<&SimpleMaterial::_sfSpecular>("specular"),
        describe<&SimpleMaterial::_sfShininess>("shininess"),
        describe<&SimpleMaterial::_sfEmission>("emission"),
        describe<&SimpleMaterial::_sfTransparency>("transparency"),
        describe<&SimpleMaterial::_sfLit>("lit"),
    });
    return type;
}

} // namespace osg
