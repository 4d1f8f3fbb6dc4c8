#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>

/// @file
/// The field classes of handles, compiled once, where the containers are known.

namespace osg {

template class MField<AnimationBlockPtr>;
template class MField<AnimationClipPtr>;
template class MField<AnimationCurvePtr>;
template class MField<AnimationTrackPtr>;
template class MField<AnimationControlPointPtr>;
template class SField<FieldContainerPtr>;
template class MField<FieldContainerPtr>;
template class SField<GeoColors4fPtr>;
template class SField<GeoIndicesUI32Ptr>;
template class SField<GeoNormals3fPtr>;
template class SField<GeoPLengthsUI32Ptr>;
template class SField<GeoPTypesUI8Ptr>;
template class SField<GeoPositions3fPtr>;
template class SField<GeoTexCoords2fPtr>;
template class SField<MaterialPtr>;
template class SField<NodePtr>;
template class MField<NodePtr>;
template class SField<NodeCorePtr>;

} // namespace osg
