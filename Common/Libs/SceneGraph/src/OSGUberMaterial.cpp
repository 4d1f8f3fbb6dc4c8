#include <OpenSG/OSGUberMaterial.h>

namespace osg {

FieldContainerType& UberMaterial::getClassType() {
    static FieldContainerType& type = declareType<UberMaterial>({
        describe<&UberMaterial::_sfAmbientColor>("ambientColor"),
        describe<&UberMaterial::_sfDiffuseColor>("diffuseColor"),
        describe<&UberMaterial::_sfSpecularColor>("specularColor"),
        describe<&UberMaterial::_sfEmissiveColor>("emissiveColor"),
        describe<&UberMaterial::_sfTransparencyColor>("transparencyColor"),
        describe<&UberMaterial::_sfShininess>("shininess"),
        describe<&UberMaterial::_sfReflectivity>("reflectivity"),
        describe<&UberMaterial::_sfRoughness>("roughness"),
        describe<&UberMaterial::_sfBumpIntensity>("bumpIntensity"),
        describe<&UberMaterial::_sfTextureOffset>("textureOffset"),
        describe<&UberMaterial::_sfTextureRepeat>("textureRepeat"),
    });
    return type;
}

} // namespace osg
