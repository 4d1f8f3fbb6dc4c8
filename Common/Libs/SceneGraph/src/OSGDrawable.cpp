#include <OpenSG/OSGDrawable.h>

namespace osg {

FieldContainerType& Drawable::getClassType() {
    static FieldContainerType& type = declareAbstractType<Drawable>({});
    return type;
}

} // namespace osg
