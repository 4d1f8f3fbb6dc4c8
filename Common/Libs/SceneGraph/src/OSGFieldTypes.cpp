#include <OpenSG/OSGAttachmentMapFields.h>
#include <OpenSG/OSGMFSysTypes.h>
#include <OpenSG/OSGMFVecTypes.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

/// @file
/// The field classes of the value types, compiled once.

namespace osg {

Field::~Field() = default;

FieldContainerPtr Field::getPointer(UInt32) const {
    return FieldContainerPtr();
}

bool Field::pushPointer(const FieldContainerPtr&) {
    return false;
}

template class SField<AttachmentMap>;
template class MField<Int8>;
template class MField<UInt8>;
template class MField<Int16>;
template class MField<UInt16>;
template class MField<Int32>;
template class MField<UInt32>;
template class MField<Int64>;
template class MField<UInt64>;
template class MField<Real32>;
template class MField<Real64>;
template class MField<Time, 1>;
template class MField<std::string>;
template class MField<Vec2f>;
template class MField<Vec3f>;
template class MField<Vec4f>;
template class MField<Pnt2f>;
template class MField<Pnt3f>;
template class MField<Pnt4f>;
template class MField<Color3f>;
template class MField<Color4f>;
template class MField<Quaternion>;
template class MField<Matrix>;
template class SField<bool, 2>;
template class SField<Int8>;
template class SField<UInt8>;
template class SField<Int16>;
template class SField<UInt16>;
template class SField<Int32>;
template class SField<UInt32>;
template class SField<Int64>;
template class SField<UInt64>;
template class SField<Real32>;
template class SField<Real64>;
template class SField<Time, 1>;
template class SField<BitVector, 1>;
template class SField<std::string>;
template class SField<Vec2f>;
template class SField<Vec3f>;
template class SField<Vec4f>;
template class SField<Pnt2f>;
template class SField<Pnt3f>;
template class SField<Pnt4f>;
template class SField<Color3f>;
template class SField<Color4f>;
template class SField<Quaternion>;
template class SField<Matrix>;
template class SField<DynamicVolume>;

} // namespace osg
