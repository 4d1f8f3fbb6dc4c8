#pragma once

#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// The host's material: colours with an intensity as fourth component, and the parameters of its shaders.
class KA_SCENEGRAPH_API UberMaterial : public Container<UberMaterial, Material> {
  public:
    static constexpr const Char8* TypeName = "UberMaterial";
    enum : UInt32 {
        AmbientColorFieldId = Inherited::NextFieldId,
        DiffuseColorFieldId,
        SpecularColorFieldId,
        EmissiveColorFieldId,
        TransparencyColorFieldId,
        ShininessFieldId,
        ReflectivityFieldId,
        RoughnessFieldId,
        BumpIntensityFieldId,
        TextureOffsetFieldId,
        TextureRepeatFieldId,
        NextFieldId
    };
    static constexpr BitVector AmbientColorFieldMask = fieldMask(AmbientColorFieldId);
    static constexpr BitVector DiffuseColorFieldMask = fieldMask(DiffuseColorFieldId);
    static constexpr BitVector SpecularColorFieldMask = fieldMask(SpecularColorFieldId);
    static constexpr BitVector EmissiveColorFieldMask = fieldMask(EmissiveColorFieldId);
    static constexpr BitVector TransparencyColorFieldMask = fieldMask(TransparencyColorFieldId);
    static constexpr BitVector ShininessFieldMask = fieldMask(ShininessFieldId);
    static constexpr BitVector ReflectivityFieldMask = fieldMask(ReflectivityFieldId);
    static constexpr BitVector RoughnessFieldMask = fieldMask(RoughnessFieldId);
    static constexpr BitVector BumpIntensityFieldMask = fieldMask(BumpIntensityFieldId);
    static constexpr BitVector TextureOffsetFieldMask = fieldMask(TextureOffsetFieldId);
    static constexpr BitVector TextureRepeatFieldMask = fieldMask(TextureRepeatFieldId);

    static FieldContainerType& getClassType();

    /// Red, green, blue and intensity under light from everywhere.
    /// @{
    const Vec4f& getAmbientColor() const { return _sfAmbientColor.getValue(); }
    Vec4f& getAmbientColor() { return _sfAmbientColor.getValue(); }
    Vec4f& editAmbientColor() { return _sfAmbientColor.getValue(); }
    void setAmbientColor(const Vec4f& ambientColor) { _sfAmbientColor.setValue(ambientColor); }
    const SFVec4f* getSFAmbientColor() const { return &_sfAmbientColor; }
    SFVec4f* getSFAmbientColor() { return &_sfAmbientColor; }
    SFVec4f* editSFAmbientColor() { return &_sfAmbientColor; }
    /// @}

    /// Red, green, blue and intensity under light that falls on it.
    /// @{
    const Vec4f& getDiffuseColor() const { return _sfDiffuseColor.getValue(); }
    Vec4f& getDiffuseColor() { return _sfDiffuseColor.getValue(); }
    Vec4f& editDiffuseColor() { return _sfDiffuseColor.getValue(); }
    void setDiffuseColor(const Vec4f& diffuseColor) { _sfDiffuseColor.setValue(diffuseColor); }
    const SFVec4f* getSFDiffuseColor() const { return &_sfDiffuseColor; }
    SFVec4f* getSFDiffuseColor() { return &_sfDiffuseColor; }
    SFVec4f* editSFDiffuseColor() { return &_sfDiffuseColor; }
    /// @}

    /// Red, green, blue and intensity of highlights.
    /// @{
    const Vec4f& getSpecularColor() const { return _sfSpecularColor.getValue(); }
    Vec4f& getSpecularColor() { return _sfSpecularColor.getValue(); }
    Vec4f& editSpecularColor() { return _sfSpecularColor.getValue(); }
    void setSpecularColor(const Vec4f& specularColor) { _sfSpecularColor.setValue(specularColor); }
    const SFVec4f* getSFSpecularColor() const { return &_sfSpecularColor; }
    SFVec4f* getSFSpecularColor() { return &_sfSpecularColor; }
    SFVec4f* editSFSpecularColor() { return &_sfSpecularColor; }
    /// @}

    /// Red, green, blue and intensity of its own light.
    /// @{
    const Vec4f& getEmissiveColor() const { return _sfEmissiveColor.getValue(); }
    Vec4f& getEmissiveColor() { return _sfEmissiveColor.getValue(); }
    Vec4f& editEmissiveColor() { return _sfEmissiveColor.getValue(); }
    void setEmissiveColor(const Vec4f& emissiveColor) { _sfEmissiveColor.setValue(emissiveColor); }
    const SFVec4f* getSFEmissiveColor() const { return &_sfEmissiveColor; }
    SFVec4f* getSFEmissiveColor() { return &_sfEmissiveColor; }
    SFVec4f* editSFEmissiveColor() { return &_sfEmissiveColor; }
    /// @}

    /// How much of each colour passes through.
    /// @{
    const Color3f& getTransparencyColor() const { return _sfTransparencyColor.getValue(); }
    Color3f& getTransparencyColor() { return _sfTransparencyColor.getValue(); }
    Color3f& editTransparencyColor() { return _sfTransparencyColor.getValue(); }
    void setTransparencyColor(const Color3f& transparencyColor) {
        _sfTransparencyColor.setValue(transparencyColor);
    }
    const SFColor3f* getSFTransparencyColor() const { return &_sfTransparencyColor; }
    SFColor3f* getSFTransparencyColor() { return &_sfTransparencyColor; }
    SFColor3f* editSFTransparencyColor() { return &_sfTransparencyColor; }
    /// @}

    /// Sharpness of highlights.
    /// @{
    Real32 getShininess() const { return _sfShininess.getValue(); }
    Real32& getShininess() { return _sfShininess.getValue(); }
    Real32& editShininess() { return _sfShininess.getValue(); }
    void setShininess(Real32 shininess) { _sfShininess.setValue(shininess); }
    const SFReal32* getSFShininess() const { return &_sfShininess; }
    SFReal32* getSFShininess() { return &_sfShininess; }
    SFReal32* editSFShininess() { return &_sfShininess; }
    /// @}

    /// 0 dull to 1 mirror.
    /// @{
    Real32 getReflectivity() const { return _sfReflectivity.getValue(); }
    Real32& getReflectivity() { return _sfReflectivity.getValue(); }
    Real32& editReflectivity() { return _sfReflectivity.getValue(); }
    void setReflectivity(Real32 reflectivity) { _sfReflectivity.setValue(reflectivity); }
    const SFReal32* getSFReflectivity() const { return &_sfReflectivity; }
    SFReal32* getSFReflectivity() { return &_sfReflectivity; }
    SFReal32* editSFReflectivity() { return &_sfReflectivity; }
    /// @}

    /// 0 smooth to 1 rough.
    /// @{
    Real32 getRoughness() const { return _sfRoughness.getValue(); }
    Real32& getRoughness() { return _sfRoughness.getValue(); }
    Real32& editRoughness() { return _sfRoughness.getValue(); }
    void setRoughness(Real32 roughness) { _sfRoughness.setValue(roughness); }
    const SFReal32* getSFRoughness() const { return &_sfRoughness; }
    SFReal32* getSFRoughness() { return &_sfRoughness; }
    SFReal32* editSFRoughness() { return &_sfRoughness; }
    /// @}

    /// Depth of the surface structure.
    /// @{
    Real32 getBumpIntensity() const { return _sfBumpIntensity.getValue(); }
    Real32& getBumpIntensity() { return _sfBumpIntensity.getValue(); }
    Real32& editBumpIntensity() { return _sfBumpIntensity.getValue(); }
    void setBumpIntensity(Real32 bumpIntensity) { _sfBumpIntensity.setValue(bumpIntensity); }
    const SFReal32* getSFBumpIntensity() const { return &_sfBumpIntensity; }
    SFReal32* getSFBumpIntensity() { return &_sfBumpIntensity; }
    SFReal32* editSFBumpIntensity() { return &_sfBumpIntensity; }
    /// @}

    /// Where the texture starts.
    /// @{
    const Vec2f& getTextureOffset() const { return _sfTextureOffset.getValue(); }
    Vec2f& getTextureOffset() { return _sfTextureOffset.getValue(); }
    Vec2f& editTextureOffset() { return _sfTextureOffset.getValue(); }
    void setTextureOffset(const Vec2f& textureOffset) { _sfTextureOffset.setValue(textureOffset); }
    const SFVec2f* getSFTextureOffset() const { return &_sfTextureOffset; }
    SFVec2f* getSFTextureOffset() { return &_sfTextureOffset; }
    SFVec2f* editSFTextureOffset() { return &_sfTextureOffset; }
    /// @}

    /// How often the texture fits.
    /// @{
    const Vec2f& getTextureRepeat() const { return _sfTextureRepeat.getValue(); }
    Vec2f& getTextureRepeat() { return _sfTextureRepeat.getValue(); }
    Vec2f& editTextureRepeat() { return _sfTextureRepeat.getValue(); }
    void setTextureRepeat(const Vec2f& textureRepeat) { _sfTextureRepeat.setValue(textureRepeat); }
    const SFVec2f* getSFTextureRepeat() const { return &_sfTextureRepeat; }
    SFVec2f* getSFTextureRepeat() { return &_sfTextureRepeat; }
    SFVec2f* editSFTextureRepeat() { return &_sfTextureRepeat; }
    /// @}

  protected:
    UberMaterial() = default;
    UberMaterial(const UberMaterial&) = default;
    ~UberMaterial() override = default;

  private:
    friend struct ContainerAccess;

    SFVec4f _sfAmbientColor{Vec4f(0.2F, 0.2F, 0.2F, 1.0F)};
    SFVec4f _sfDiffuseColor{Vec4f(0.8F, 0.8F, 0.8F, 1.0F)};
    SFVec4f _sfSpecularColor{Vec4f(0.0F, 0.0F, 0.0F, 1.0F)};
    SFVec4f _sfEmissiveColor{Vec4f(0.0F, 0.0F, 0.0F, 1.0F)};
    SFColor3f _sfTransparencyColor;
    SFReal32 _sfShininess{1.0F};
    SFReal32 _sfReflectivity{0.0F};
    SFReal32 _sfRoughness{0.0F};
    SFReal32 _sfBumpIntensity{1.0F};
    SFVec2f _sfTextureOffset;
    SFVec2f _sfTextureRepeat{Vec2f(1.0F, 1.0F)};
};

} // namespace osg
