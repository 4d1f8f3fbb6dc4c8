#include <OpenSG/OSGAnimationCurve.h>

namespace osg {

FieldContainerType& AnimationCurve::getClassType() {
    static FieldContainerType& type = declareType<AnimationCurve>({
        describe<&AnimationCurve::_sfName>("name"),
        describe<&AnimationCurve::_mfPoints>("points", FieldDescription::Owning),
        describe<&AnimationCurve::_sfAttribute>("attribute"),
        describe<&AnimationCurve::_sfNode>("node"),
        describe<&AnimationCurve::_sfFallback>("fallback"),
    });
    return type;
}

void AnimationCurve::addPoint(const AnimationControlPointPtr& point) {
    if (point == NullFC)
        return;
    addRefCP(point);
    _mfPoints.push_back(point);
}

} // namespace osg
