#pragma once

#include <OpenSG/OSGSField.h>

namespace osg {

using SFVec2f = SField<Vec2f>;
using SFVec3f = SField<Vec3f>;
using SFVec4f = SField<Vec4f>;
using SFPnt2f = SField<Pnt2f>;
using SFPnt3f = SField<Pnt3f>;
using SFPnt4f = SField<Pnt4f>;
using SFColor3f = SField<Color3f>;
using SFColor4f = SField<Color4f>;
using SFQuaternion = SField<Quaternion>;
using SFMatrix = SField<Matrix>;
using SFDynamicVolume = SField<DynamicVolume>;

extern template class SField<Vec2f>;
extern template class SField<Vec3f>;
extern template class SField<Vec4f>;
extern template class SField<Pnt2f>;
extern template class SField<Pnt3f>;
extern template class SField<Pnt4f>;
extern template class SField<Color3f>;
extern template class SField<Color4f>;
extern template class SField<Quaternion>;
extern template class SField<Matrix>;
extern template class SField<DynamicVolume>;

} // namespace osg
