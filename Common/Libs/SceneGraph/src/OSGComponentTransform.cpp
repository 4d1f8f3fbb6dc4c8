#include <OpenSG/OSGComponentTransform.h>

namespace osg {

FieldContainerType& ComponentTransform::getClassType() {
    static FieldContainerType& type = declareType<ComponentTransform>({
        describe<&ComponentTransform::_sfCenter>("center"),
        describe<&ComponentTransform::_sfRotation>("rotation"),
        describe<&ComponentTransform::_sfScale>("scale"),
        describe<&ComponentTransform::_sfScaleOrientation>("scaleOrientation"),
        describe<&ComponentTransform::_sfTranslation>("translation"),
    });
    return type;
}

void ComponentTransform::changed(BitVector whichField, UInt32 origin) {
    constexpr BitVector parts = CenterFieldMask | RotationFieldMask | ScaleFieldMask |
                                ScaleOrientationFieldMask | TranslationFieldMask;
    if ((whichField & parts) != 0)
        editMatrix().setTransform(getTranslation(), getRotation(), getScale(), getScaleOrientation(),
                                  getCenter());
    else if ((whichField & MatrixFieldMask) != 0)
        getMatrix().getTransform(editTranslation(), editRotation(), editScale(), editScaleOrientation(),
                                 getCenter());
    Inherited::changed(whichField, origin);
}

} // namespace osg
