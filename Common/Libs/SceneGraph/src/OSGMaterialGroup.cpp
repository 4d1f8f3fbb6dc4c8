#include <OpenSG/OSGMaterialGroup.h>

namespace osg {

FieldContainerType& MaterialGroup::getClassType() {
    static FieldContainerType& type = declareType<MaterialGroup>({
        describe<&MaterialGroup::_sfMaterial>("material", FieldDescription::Owning),
    });
    return type;
}

void MaterialGroup::setMaterial(const MaterialPtr& material) {
    setRefdCP(_sfMaterial.getValue(), material);
}

} // namespace osg
