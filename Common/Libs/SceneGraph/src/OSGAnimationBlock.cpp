#include <OpenSG/OSGAnimationBlock.h>

namespace osg {

FieldContainerType& AnimationBlock::getClassType() {
    static FieldContainerType& type = declareType<AnimationBlock>({
        describe<&AnimationBlock::_sfName>("name"),
        describe<&AnimationBlock::_mfCurves>("curves", FieldDescription::Owning),
        describe<&AnimationBlock::_sfNode>("node"),
        describe<&AnimationBlock::_sfBegin>("begin"),
        describe<&AnimationBlock::_sfEnd>("end"),
        describe<&AnimationBlock::_sfFlipped>("flipped"),
        describe<&AnimationBlock::_sfRepeating>("repeating"),
        describe<&AnimationBlock::_sfMotionBlur>("motionBlur"),
    });
    return type;
}

void AnimationBlock::addCurve(const AnimationCurvePtr& curve) {
    if (curve == NullFC)
        return;
    addRefCP(curve);
    _mfCurves.push_back(curve);
}

} // namespace osg
