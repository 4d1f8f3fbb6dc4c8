#pragma once

#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGSField.h>

namespace osg {

using SFMaterialPtr = SField<MaterialPtr>;

extern template class SField<MaterialPtr>;

} // namespace osg
