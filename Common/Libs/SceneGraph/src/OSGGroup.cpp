#include <OpenSG/OSGGroup.h>

namespace osg {

FieldContainerType& Group::getClassType() {
    static FieldContainerType& type = declareType<Group>({});
    return type;
}

} // namespace osg
