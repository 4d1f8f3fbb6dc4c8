#include <OpenSG/OSGMaterialDrawable.h>

namespace osg {

FieldContainerType& MaterialDrawable::getClassType() {
    static FieldContainerType& type = declareAbstractType<MaterialDrawable>({
        describe<&MaterialDrawable::_sfMaterial>("material", FieldDescription::Owning),
    });
    return type;
}

void MaterialDrawable::setMaterial(const MaterialPtr& material) {
    setRefdCP(_sfMaterial.getValue(), material);
}

} // namespace osg
