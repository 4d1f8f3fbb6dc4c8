#pragma once

#include <OpenSG/OSGConfig.h>
#include <cstdint>

/// @file
/// Scalar types of the scene graph. All have the width their name says.

namespace osg {

using Char8 = char;
using UChar8 = unsigned char;
using Int8 = std::int8_t;
using UInt8 = std::uint8_t;
using Int16 = std::int16_t;
using UInt16 = std::uint16_t;
using Int32 = std::int32_t;
using UInt32 = std::uint32_t;
using Int64 = std::int64_t;
using UInt64 = std::uint64_t;
using Real32 = float;
using Real64 = double;

/// A set of fields: bit `n` stands for the field with id `n` (see FieldDescription::getFieldMask).
using BitVector = UInt64;

/// Seconds.
using Time = Real64;

} // namespace osg
