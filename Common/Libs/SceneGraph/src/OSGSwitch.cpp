#include <OpenSG/OSGSwitch.h>

namespace osg {

FieldContainerType& Switch::getClassType() {
    static FieldContainerType& type = declareType<Switch>({
        describe<&Switch::_sfChoice>("choice"),
    });
    return type;
}

} // namespace osg
