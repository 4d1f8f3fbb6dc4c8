#include <OpenSG/OSGGeometry.h>

namespace osg {

FieldContainerType& Geometry::getClassType() {
    static FieldContainerType& type = declareType<Geometry>({
        describe<&Geometry::_sfTypes>("types", FieldDescription::Owning),
        describe<&Geometry::_sfLengths>("lengths", FieldDescription::Owning),
        describe<&Geometry::_sfPositions>("positions", FieldDescription::Owning),
        describe<&Geometry::_sfNormals>("normals", FieldDescription::Owning),
        describe<&Geometry::_sfColors>("colors", FieldDescription::Owning),
        describe<&Geometry::_sfTexCoords>("texCoords", FieldDescription::Owning),
        describe<&Geometry::_sfIndices>("indices", FieldDescription::Owning),
    });
    return type;
}

void Geometry::setTypes(const GeoPTypesUI8Ptr& types) {
    setRefdCP(_sfTypes.getValue(), types);
}

void Geometry::setLengths(const GeoPLengthsUI32Ptr& lengths) {
    setRefdCP(_sfLengths.getValue(), lengths);
}

void Geometry::setPositions(const GeoPositions3fPtr& positions) {
    setRefdCP(_sfPositions.getValue(), positions);
}

void Geometry::setNormals(const GeoNormals3fPtr& normals) {
    setRefdCP(_sfNormals.getValue(), normals);
}

void Geometry::setColors(const GeoColors4fPtr& colors) {
    setRefdCP(_sfColors.getValue(), colors);
}

void Geometry::setTexCoords(const GeoTexCoords2fPtr& texCoords) {
    setRefdCP(_sfTexCoords.getValue(), texCoords);
}

void Geometry::setIndices(const GeoIndicesUI32Ptr& indices) {
    setRefdCP(_sfIndices.getValue(), indices);
}

void Geometry::adjustVolume(DynamicVolume& volume) const {
    const GeoPositions3fPtr& positions = getPositions();
    if (positions == NullFC)
        return;
    for (const Pnt3f& corner : *positions->getMFPositions())
        volume.extendBy(corner);
}

} // namespace osg
