#include <OpenSG/OSGTransform.h>

namespace osg {

FieldContainerType& Transform::getClassType() {
    static FieldContainerType& type = declareType<Transform>({
        describe<&Transform::_sfMatrix>("matrix"),
    });
    return type;
}

bool Transform::getLocalMatrix(const Node&, Matrix& matrix) const {
    matrix = getMatrix();
    return true;
}

} // namespace osg
