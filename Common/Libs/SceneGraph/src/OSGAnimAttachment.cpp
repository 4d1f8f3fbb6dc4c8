#include <OpenSG/OSGAnimAttachment.h>

namespace osg {

FieldContainerType& AnimAttachment::getClassType() {
    static FieldContainerType& type = declareType<AnimAttachment>({
        describe<&AnimAttachment::_mfObjectIDs>("objectIDs"),
        describe<&AnimAttachment::_mfFieldIDs>("fieldIDs"),
        describe<&AnimAttachment::_mfSecondObjectIDs>("secondObjectIDs"),
        describe<&AnimAttachment::_mfSecondFieldIDs>("secondFieldIDs"),
    });
    return type;
}

} // namespace osg
