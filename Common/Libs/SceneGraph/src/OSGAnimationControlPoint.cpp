#include <OpenSG/OSGAnimationControlPoint.h>

namespace osg {

FieldContainerType& AnimationControlPoint::getClassType() {
    static FieldContainerType& type = declareType<AnimationControlPoint>({
        describe<&AnimationControlPoint::_sfPosition>("position"),
        describe<&AnimationControlPoint::_sfInTangent>("inTangent"),
        describe<&AnimationControlPoint::_sfOutTangent>("outTangent"),
        describe<&AnimationControlPoint::_sfTangentType>("tangentType"),
    });
    return type;
}

} // namespace osg
