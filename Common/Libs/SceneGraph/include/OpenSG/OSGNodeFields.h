#pragma once

#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGSField.h>

namespace osg {

using SFNodePtr = SField<NodePtr>;
using MFNodePtr = MField<NodePtr>;
using SFNodeCorePtr = SField<NodeCorePtr>;

extern template class SField<NodePtr>;
extern template class MField<NodePtr>;
extern template class SField<NodeCorePtr>;

} // namespace osg
