#include <OpenSG/OSGGeoNormals3f.h>

namespace osg {

FieldContainerType& GeoNormals3f::getClassType() {
    static FieldContainerType& type = declareType<GeoNormals3f>(
        {
            describe<&GeoNormals3f::_mfNormals>("normals"),
        },
        "GeoNormals");
    return type;
}

} // namespace osg
