#pragma once

#include <OpenSG/OSGBaseTypes.h>

namespace osg {

/// Masks over the fields of a container; see FieldDescription::getFieldMask for one field's bit.
namespace FieldBits {
constexpr BitVector NoField = 0;
constexpr BitVector AllFields = ~BitVector(0);
} // namespace FieldBits

/// The mask of the field with that id.
constexpr BitVector fieldMask(UInt32 fieldId) {
    return BitVector(1) << fieldId;
}

/// Where a change comes from; handed to FieldContainer::changed.
namespace ChangedOrigin {
constexpr UInt32 External = 0x0001;
constexpr UInt32 Sync = 0x0002;
constexpr UInt32 Child = 0x0004;
/// The container is being filled by a reader.
constexpr UInt32 Abstract = 0x0008;
constexpr UInt32 AbstrIgnoreCore = 0x0100;
constexpr UInt32 AbstrIgnoreChild = 0x0200;
constexpr UInt32 AbstrCheckValid = 0x0400;
constexpr UInt32 AbstrIncRefCount = 0x0800;
} // namespace ChangedOrigin

} // namespace osg
