#pragma once

#include <OpenSG/OSGGeoColors4f.h>
#include <OpenSG/OSGGeoIndicesUI32.h>
#include <OpenSG/OSGGeoNormals3f.h>
#include <OpenSG/OSGGeoPLengthsUI32.h>
#include <OpenSG/OSGGeoPTypesUI8.h>
#include <OpenSG/OSGGeoPositions3f.h>
#include <OpenSG/OSGGeoPropertyFields.h>
#include <OpenSG/OSGGeoTexCoords2f.h>
#include <OpenSG/OSGMaterialDrawable.h>

namespace osg {

/// Lines and surfaces. All properties are counted, may be shared and are null by default.
class KA_SCENEGRAPH_API Geometry : public Container<Geometry, MaterialDrawable> {
  public:
    static constexpr const Char8* TypeName = "Geometry";
    enum : UInt32 {
        TypesFieldId = Inherited::NextFieldId,
        LengthsFieldId,
        PositionsFieldId,
        NormalsFieldId,
        ColorsFieldId,
        TexCoordsFieldId,
        IndicesFieldId,
        NextFieldId
    };
    static constexpr BitVector TypesFieldMask = fieldMask(TypesFieldId);
    static constexpr BitVector LengthsFieldMask = fieldMask(LengthsFieldId);
    static constexpr BitVector PositionsFieldMask = fieldMask(PositionsFieldId);
    static constexpr BitVector NormalsFieldMask = fieldMask(NormalsFieldId);
    static constexpr BitVector ColorsFieldMask = fieldMask(ColorsFieldId);
    static constexpr BitVector TexCoordsFieldMask = fieldMask(TexCoordsFieldId);
    static constexpr BitVector IndicesFieldMask = fieldMask(IndicesFieldId);

    static FieldContainerType& getClassType();

    /// What each primitive is.
    /// @{
    const GeoPTypesUI8Ptr& getTypes() const { return _sfTypes.getValue(); }
    void setTypes(const GeoPTypesUI8Ptr& types);
    const SFGeoPTypesUI8Ptr* getSFTypes() const { return &_sfTypes; }
    /// @}

    /// The number of indices of each primitive.
    /// @{
    const GeoPLengthsUI32Ptr& getLengths() const { return _sfLengths.getValue(); }
    void setLengths(const GeoPLengthsUI32Ptr& lengths);
    const SFGeoPLengthsUI32Ptr* getSFLengths() const { return &_sfLengths; }
    /// @}

    /// The corners.
    /// @{
    const GeoPositions3fPtr& getPositions() const { return _sfPositions.getValue(); }
    void setPositions(const GeoPositions3fPtr& positions);
    const SFGeoPositions3fPtr* getSFPositions() const { return &_sfPositions; }
    /// @}

    /// The normals.
    /// @{
    const GeoNormals3fPtr& getNormals() const { return _sfNormals.getValue(); }
    void setNormals(const GeoNormals3fPtr& normals);
    const SFGeoNormals3fPtr* getSFNormals() const { return &_sfNormals; }
    /// @}

    /// The colours.
    /// @{
    const GeoColors4fPtr& getColors() const { return _sfColors.getValue(); }
    void setColors(const GeoColors4fPtr& colors);
    const SFGeoColors4fPtr* getSFColors() const { return &_sfColors; }
    /// @}

    /// The texture coordinates.
    /// @{
    const GeoTexCoords2fPtr& getTexCoords() const { return _sfTexCoords.getValue(); }
    void setTexCoords(const GeoTexCoords2fPtr& texCoords);
    const SFGeoTexCoords2fPtr* getSFTexCoords() const { return &_sfTexCoords; }
    /// @}

    /// The corners of the primitives, one after the other.
    /// @{
    const GeoIndicesUI32Ptr& getIndices() const { return _sfIndices.getValue(); }
    void setIndices(const GeoIndicesUI32Ptr& indices);
    const SFGeoIndicesUI32Ptr* getSFIndices() const { return &_sfIndices; }
    /// @}

    /// Holds every corner, whether an index names it or not.
    void adjustVolume(DynamicVolume& volume) const override;

  protected:
    Geometry() = default;
    Geometry(const Geometry&) = default;
    ~Geometry() override = default;

  private:
    friend struct ContainerAccess;

    SFGeoPTypesUI8Ptr _sfTypes;
    SFGeoPLengthsUI32Ptr _sfLengths;
    SFGeoPositions3fPtr _sfPositions;
    SFGeoNormals3fPtr _sfNormals;
    SFGeoColors4fPtr _sfColors;
    SFGeoTexCoords2fPtr _sfTexCoords;
    SFGeoIndicesUI32Ptr _sfIndices;
};

} // namespace osg
