#pragma once

#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// Plain lighting: one colour for each kind of light.
class KA_SCENEGRAPH_API SimpleMaterial : public Container<SimpleMaterial, Material> {
  public:
    static constexpr const Char8* TypeName = "SimpleMaterial";
    enum : UInt32 {
        AmbientFieldId = Inherited::NextFieldId,
        DiffuseFieldId,
        SpecularFieldId,
        ShininessFieldId,
        EmissionFieldId,
        TransparencyFieldId,
        LitFieldId,
        NextFieldId
    };
    static constexpr BitVector AmbientFieldMask = fieldMask(AmbientFieldId);
    static constexpr BitVector DiffuseFieldMask = fieldMask(DiffuseFieldId);
    static constexpr BitVector SpecularFieldMask = fieldMask(SpecularFieldId);
    static constexpr BitVector ShininessFieldMask = fieldMask(ShininessFieldId);
    static constexpr BitVector EmissionFieldMask = fieldMask(EmissionFieldId);
    static constexpr BitVector TransparencyFieldMask = fieldMask(TransparencyFieldId);
    static constexpr BitVector LitFieldMask = fieldMask(LitFieldId);

    static FieldContainerType& getClassType();

    /// Colour under light from everywhere.
    /// @{
    const Color3f& getAmbient() const { return _sfAmbient.getValue(); }
    Color3f& getAmbient() { return _sfAmbient.getValue(); }
    Color3f& editAmbient() { return _sfAmbient.getValue(); }
    void setAmbient(const Color3f& ambient) { _sfAmbient.setValue(ambient); }
    const SFColor3f* getSFAmbient() const { return &_sfAmbient; }
    SFColor3f* getSFAmbient() { return &_sfAmbient; }
    SFColor3f* editSFAmbient() { return &_sfAmbient; }
    /// @}

    /// Colour under light that falls on it.
    /// @{
    const Color3f& getDiffuse() const { return _sfDiffuse.getValue(); }
    Color3f& getDiffuse() { return _sfDiffuse.getValue(); }
    Color3f& editDiffuse() { return _sfDiffuse.getValue(); }
    void setDiffuse(const Color3f& diffuse) { _sfDiffuse.setValue(diffuse); }
    const SFColor3f* getSFDiffuse() const { return &_sfDiffuse; }
    SFColor3f* getSFDiffuse() { return &_sfDiffuse; }
    SFColor3f* editSFDiffuse() { return &_sfDiffuse; }
    /// @}

    /// Colour of highlights.
    /// @{
    const Color3f& getSpecular() const { return _sfSpecular.getValue(); }
    Color3f& getSpecular() { return _sfSpecular.getValue(); }
    Color3f& editSpecular() { return _sfSpecular.getValue(); }
    void setSpecular(const Color3f& specular) { _sfSpecular.setValue(specular); }
    const SFColor3f* getSFSpecular() const { return &_sfSpecular; }
    SFColor3f* getSFSpecular() { return &_sfSpecular; }
    SFColor3f* editSFSpecular() { return &_sfSpecular; }
    /// @}

    /// Sharpness of highlights, 0 to 128.
    /// @{
    Real32 getShininess() const { return _sfShininess.getValue(); }
    Real32& getShininess() { return _sfShininess.getValue(); }
    Real32& editShininess() { return _sfShininess.getValue(); }
    void setShininess(Real32 shininess) { _sfShininess.setValue(shininess); }
    const SFReal32* getSFShininess() const { return &_sfShininess; }
    SFReal32* getSFShininess() { return &_sfShininess; }
    SFReal32* editSFShininess() { return &_sfShininess; }
    /// @}

    /// Light that the surface gives by itself.
    /// @{
    const Color3f& getEmission() const { return _sfEmission.getValue(); }
    Color3f& getEmission() { return _sfEmission.getValue(); }
    Color3f& editEmission() { return _sfEmission.getValue(); }
    void setEmission(const Color3f& emission) { _sfEmission.setValue(emission); }
    const SFColor3f* getSFEmission() const { return &_sfEmission; }
    SFColor3f* getSFEmission() { return &_sfEmission; }
    SFColor3f* editSFEmission() { return &_sfEmission; }
    /// @}

    /// 0 opaque to 1 invisible.
    /// @{
    Real32 getTransparency() const { return _sfTransparency.getValue(); }
    Real32& getTransparency() { return _sfTransparency.getValue(); }
    Real32& editTransparency() { return _sfTransparency.getValue(); }
    void setTransparency(Real32 transparency) { _sfTransparency.setValue(transparency); }
    const SFReal32* getSFTransparency() const { return &_sfTransparency; }
    SFReal32* getSFTransparency() { return &_sfTransparency; }
    SFReal32* editSFTransparency() { return &_sfTransparency; }
    /// @}

    /// Whether lights count at all.
    /// @{
    bool getLit() const { return _sfLit.getValue(); }
    bool& getLit() { return _sfLit.getValue(); }
    bool& editLit() { return _sfLit.getValue(); }
    void setLit(bool lit) { _sfLit.setValue(lit); }
    const SFBool* getSFLit() const { return &_sfLit; }
    SFBool* getSFLit() { return &_sfLit; }
    SFBool* editSFLit() { return &_sfLit; }
    /// @}

  protected:
    SimpleMaterial() = default;
    SimpleMaterial(const SimpleMaterial&) = default;
    ~SimpleMaterial() override = default;

  private:
    friend struct ContainerAccess;

    SFColor3f _sfAmbient;
    SFColor3f _sfDiffuse;
    SFColor3f _sfSpecular;
    SFReal32 _sfShininess{1.0F};
    SFColor3f _sfEmission;
    SFReal32 _sfTransparency{0.0F};
    SFBool _sfLit{true};
};

} // namespace osg
