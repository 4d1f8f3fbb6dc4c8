#include <OpenSG/OSGMaterial.h>

namespace osg {

FieldContainerType& Material::getClassType() {
    static FieldContainerType& type = declareAbstractType<Material>({
        describe<&Material::_sfSortKey>("sortKey"),
    });
    return type;
}

} // namespace osg
