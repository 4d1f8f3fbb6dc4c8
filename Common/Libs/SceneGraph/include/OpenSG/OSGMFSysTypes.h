#pragma once

#include <OpenSG/OSGMField.h>

namespace osg {

using MFInt8 = MField<Int8>;
using MFUInt8 = MField<UInt8>;
using MFInt16 = MField<Int16>;
using MFUInt16 = MField<UInt16>;
using MFInt32 = MField<Int32>;
using MFUInt32 = MField<UInt32>;
using MFInt64 = MField<Int64>;
using MFUInt64 = MField<UInt64>;
using MFReal32 = MField<Real32>;
using MFReal64 = MField<Real64>;
using MFTime = MField<Time, 1>;
using MFString = MField<std::string>;

extern template class MField<Int8>;
extern template class MField<UInt8>;
extern template class MField<Int16>;
extern template class MField<UInt16>;
extern template class MField<Int32>;
extern template class MField<UInt32>;
extern template class MField<Int64>;
extern template class MField<UInt64>;
extern template class MField<Real32>;
extern template class MField<Real64>;
extern template class MField<Time, 1>;
extern template class MField<std::string>;

} // namespace osg
