#pragma once

#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGSField.h>

namespace osg {

using MFAnimationClipPtr = MField<AnimationClipPtr>;
using MFAnimationTrackPtr = MField<AnimationTrackPtr>;
using MFAnimationBlockPtr = MField<AnimationBlockPtr>;
using MFAnimationCurvePtr = MField<AnimationCurvePtr>;
using MFAnimationControlPointPtr = MField<AnimationControlPointPtr>;

extern template class MField<AnimationClipPtr>;
extern template class MField<AnimationTrackPtr>;
extern template class MField<AnimationBlockPtr>;
extern template class MField<AnimationCurvePtr>;
extern template class MField<AnimationControlPointPtr>;

} // namespace osg
