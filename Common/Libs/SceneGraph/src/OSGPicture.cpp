#include <OpenSG/OSGPicture.h>

namespace osg {

FieldContainerType& Picture::getClassType() {
    static FieldContainerType& type = declareType<Picture>({
        describe<&Picture::_sfFileName>("fileName"),
        describe<&Picture::_mfBytes>("bytes"),
    });
    return type;
}

} // namespace osg
