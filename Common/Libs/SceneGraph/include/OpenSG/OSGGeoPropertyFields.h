#pragma once

#include <OpenSG/OSGMField.h>
#include <OpenSG/OSGSField.h>

namespace osg {

using SFGeoPTypesUI8Ptr = SField<GeoPTypesUI8Ptr>;
using SFGeoPLengthsUI32Ptr = SField<GeoPLengthsUI32Ptr>;
using SFGeoPositions3fPtr = SField<GeoPositions3fPtr>;
using SFGeoNormals3fPtr = SField<GeoNormals3fPtr>;
using SFGeoColors4fPtr = SField<GeoColors4fPtr>;
using SFGeoTexCoords2fPtr = SField<GeoTexCoords2fPtr>;
using SFGeoIndicesUI32Ptr = SField<GeoIndicesUI32Ptr>;

extern template class SField<GeoPTypesUI8Ptr>;
extern template class SField<GeoPLengthsUI32Ptr>;
extern template class SField<GeoPositions3fPtr>;
extern template class SField<GeoNormals3fPtr>;
extern template class SField<GeoColors4fPtr>;
extern template class SField<GeoTexCoords2fPtr>;
extern template class SField<GeoIndicesUI32Ptr>;

} // namespace osg
