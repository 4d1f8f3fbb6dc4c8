#pragma once

#include <OpenSG/OSGSField.h>

namespace osg {

using SFBool = SField<bool, 2>;
using SFInt8 = SField<Int8>;
using SFUInt8 = SField<UInt8>;
using SFInt16 = SField<Int16>;
using SFUInt16 = SField<UInt16>;
using SFInt32 = SField<Int32>;
using SFUInt32 = SField<UInt32>;
using SFInt64 = SField<Int64>;
using SFUInt64 = SField<UInt64>;
using SFReal32 = SField<Real32>;
using SFReal64 = SField<Real64>;
using SFTime = SField<Time, 1>;
using SFBitVector = SField<BitVector, 1>;
using SFString = SField<std::string>;

extern template class SField<bool, 2>;
extern template class SField<Int8>;
extern template class SField<UInt8>;
extern template class SField<Int16>;
extern template class SField<UInt16>;
extern template class SField<Int32>;
extern template class SField<UInt32>;
extern template class SField<Int64>;
extern template class SField<UInt64>;
extern template class SField<Real32>;
extern template class SField<Real64>;
extern template class SField<Time, 1>;
extern template class SField<BitVector, 1>;
extern template class SField<std::string>;

} // namespace osg
