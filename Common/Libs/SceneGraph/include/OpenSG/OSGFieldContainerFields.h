#pragma once

#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGSField.h>

namespace osg {

using SFFieldContainerPtr = SField<FieldContainerPtr>;
using MFFieldContainerPtr = MField<FieldContainerPtr>;

extern template class SField<FieldContainerPtr>;
extern template class MField<FieldContainerPtr>;

} // namespace osg
