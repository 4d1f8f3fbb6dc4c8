#include <OpenSG/OSGSkin.h>

namespace osg {

FieldContainerType& Skin::getClassType() {
    static FieldContainerType& type = declareType<Skin>({
        describe<&Skin::_mfJoints>("joints"),
        describe<&Skin::_mfInverseBinds>("inverseBinds"),
        describe<&Skin::_mfIndices>("indices"),
        describe<&Skin::_mfWeights>("weights"),
    });
    return type;
}

} // namespace osg
