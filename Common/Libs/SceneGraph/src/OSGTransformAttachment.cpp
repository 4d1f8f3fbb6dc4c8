#include <OpenSG/OSGTransformAttachment.h>

namespace osg {

FieldContainerType& TransformAttachment::getClassType() {
    static FieldContainerType& type = declareType<TransformAttachment>({
        describe<&TransformAttachment::_sfRotation>("rotation"),
    });
    return type;
}

} // namespace osg
