#pragma once

#include <OpenSG/OSGMField.h>

namespace osg {

using MFVec2f = MField<Vec2f>;
using MFVec3f = MField<Vec3f>;
using MFVec4f = MField<Vec4f>;
using MFPnt2f = MField<Pnt2f>;
using MFPnt3f = MField<Pnt3f>;
using MFPnt4f = MField<Pnt4f>;
using MFColor3f = MField<Color3f>;
using MFColor4f = MField<Color4f>;
using MFQuaternion = MField<Quaternion>;
using MFMatrix = MField<Matrix>;

extern template class MField<Vec2f>;
extern template class MField<Vec3f>;
extern template class MField<Vec4f>;
extern template class MField<Pnt2f>;
extern template class MField<Pnt3f>;
extern template class MField<Pnt4f>;
extern template class MField<Color3f>;
extern template class MField<Color4f>;
extern template class MField<Quaternion>;
extern template class MField<Matrix>;

} // namespace osg
