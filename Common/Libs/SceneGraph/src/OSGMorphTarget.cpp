#include <OpenSG/OSGMorphTarget.h>

namespace osg {

FieldContainerType& MorphTarget::getClassType() {
    static FieldContainerType& type = declareType<MorphTarget>({
        describe<&MorphTarget::_sfWeight>("weight"),
        describe<&MorphTarget::_mfOffsets>("offsets"),
    });
    return type;
}

} // namespace osg
