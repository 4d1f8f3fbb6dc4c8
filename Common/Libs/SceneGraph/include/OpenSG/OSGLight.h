#pragma once

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// What all lights have. A light shines from where its beacon stands.
class KA_SCENEGRAPH_API Light : public Container<Light, Group> {
  public:
    static constexpr const Char8* TypeName = "Light";
    enum : UInt32 {
        AmbientFieldId = Inherited::NextFieldId,
        DiffuseFieldId,
        SpecularFieldId,
        BeaconFieldId,
        OnFieldId,
        ConstantAttenuationFieldId,
        LinearAttenuationFieldId,
        QuadraticAttenuationFieldId,
        ShadowIntensityFieldId,
        ShadowModeFieldId,
        NextFieldId
    };
    static constexpr BitVector AmbientFieldMask = fieldMask(AmbientFieldId);
    static constexpr BitVector DiffuseFieldMask = fieldMask(DiffuseFieldId);
    static constexpr BitVector SpecularFieldMask = fieldMask(SpecularFieldId);
    static constexpr BitVector BeaconFieldMask = fieldMask(BeaconFieldId);
    static constexpr BitVector OnFieldMask = fieldMask(OnFieldId);
    static constexpr BitVector ConstantAttenuationFieldMask = fieldMask(ConstantAttenuationFieldId);
    static constexpr BitVector LinearAttenuationFieldMask = fieldMask(LinearAttenuationFieldId);
    static constexpr BitVector QuadraticAttenuationFieldMask = fieldMask(QuadraticAttenuationFieldId);
    static constexpr BitVector ShadowIntensityFieldMask = fieldMask(ShadowIntensityFieldId);
    static constexpr BitVector ShadowModeFieldMask = fieldMask(ShadowModeFieldId);

    static FieldContainerType& getClassType();

    /// Colour of what it adds everywhere; black by default.
    /// @{
    const Color4f& getAmbient() const { return _sfAmbient.getValue(); }
    Color4f& getAmbient() { return _sfAmbient.getValue(); }
    Color4f& editAmbient() { return _sfAmbient.getValue(); }
    void setAmbient(const Color4f& ambient) { _sfAmbient.setValue(ambient); }
    const SFColor4f* getSFAmbient() const { return &_sfAmbient; }
    SFColor4f* getSFAmbient() { return &_sfAmbient; }
    SFColor4f* editSFAmbient() { return &_sfAmbient; }
    /// @}

    /// Colour of what falls on surfaces; white by default.
    /// @{
    const Color4f& getDiffuse() const { return _sfDiffuse.getValue(); }
    Color4f& getDiffuse() { return _sfDiffuse.getValue(); }
    Color4f& editDiffuse() { return _sfDiffuse.getValue(); }
    void setDiffuse(const Color4f& diffuse) { _sfDiffuse.setValue(diffuse); }
    const SFColor4f* getSFDiffuse() const { return &_sfDiffuse; }
    SFColor4f* getSFDiffuse() { return &_sfDiffuse; }
    SFColor4f* editSFDiffuse() { return &_sfDiffuse; }
    /// @}

    /// Colour of highlights; white by default.
    /// @{
    const Color4f& getSpecular() const { return _sfSpecular.getValue(); }
    Color4f& getSpecular() { return _sfSpecular.getValue(); }
    Color4f& editSpecular() { return _sfSpecular.getValue(); }
    void setSpecular(const Color4f& specular) { _sfSpecular.setValue(specular); }
    const SFColor4f* getSFSpecular() const { return &_sfSpecular; }
    SFColor4f* getSFSpecular() { return &_sfSpecular; }
    SFColor4f* editSFSpecular() { return &_sfSpecular; }
    /// @}

    /// The node that gives the light its place. The setter counts it, a scene file does not: a beacon that
    /// holds the light would never go away.
    /// @{
    const NodePtr& getBeacon() const { return _sfBeacon.getValue(); }
    void setBeacon(const NodePtr& beacon);
    const SFNodePtr* getSFBeacon() const { return &_sfBeacon; }
    /// @}

    /// Whether it shines.
    /// @{
    bool getOn() const { return _sfOn.getValue(); }
    bool& getOn() { return _sfOn.getValue(); }
    bool& editOn() { return _sfOn.getValue(); }
    void setOn(bool on) { _sfOn.setValue(on); }
    const SFBool* getSFOn() const { return &_sfOn; }
    SFBool* getSFOn() { return &_sfOn; }
    SFBool* editSFOn() { return &_sfOn; }
    /// @}

    /// Factor on distance to the power of 0.
    /// @{
    Real32 getConstantAttenuation() const { return _sfConstantAttenuation.getValue(); }
    Real32& getConstantAttenuation() { return _sfConstantAttenuation.getValue(); }
    Real32& editConstantAttenuation() { return _sfConstantAttenuation.getValue(); }
    void setConstantAttenuation(Real32 constantAttenuation) {
        _sfConstantAttenuation.setValue(constantAttenuation);
    }
    const SFReal32* getSFConstantAttenuation() const { return &_sfConstantAttenuation; }
    SFReal32* getSFConstantAttenuation() { return &_sfConstantAttenuation; }
    SFReal32* editSFConstantAttenuation() { return &_sfConstantAttenuation; }
    /// @}

    /// Factor on distance.
    /// @{
    Real32 getLinearAttenuation() const { return _sfLinearAttenuation.getValue(); }
    Real32& getLinearAttenuation() { return _sfLinearAttenuation.getValue(); }
    Real32& editLinearAttenuation() { return _sfLinearAttenuation.getValue(); }
    void setLinearAttenuation(Real32 linearAttenuation) { _sfLinearAttenuation.setValue(linearAttenuation); }
    const SFReal32* getSFLinearAttenuation() const { return &_sfLinearAttenuation; }
    SFReal32* getSFLinearAttenuation() { return &_sfLinearAttenuation; }
    SFReal32* editSFLinearAttenuation() { return &_sfLinearAttenuation; }
    /// @}

    /// Factor on distance squared.
    /// @{
    Real32 getQuadraticAttenuation() const { return _sfQuadraticAttenuation.getValue(); }
    Real32& getQuadraticAttenuation() { return _sfQuadraticAttenuation.getValue(); }
    Real32& editQuadraticAttenuation() { return _sfQuadraticAttenuation.getValue(); }
    void setQuadraticAttenuation(Real32 quadraticAttenuation) {
        _sfQuadraticAttenuation.setValue(quadraticAttenuation);
    }
    const SFReal32* getSFQuadraticAttenuation() const { return &_sfQuadraticAttenuation; }
    SFReal32* getSFQuadraticAttenuation() { return &_sfQuadraticAttenuation; }
    SFReal32* editSFQuadraticAttenuation() { return &_sfQuadraticAttenuation; }
    /// @}

    /// 0 no shadow to 1 black.
    /// @{
    Real32 getShadowIntensity() const { return _sfShadowIntensity.getValue(); }
    Real32& getShadowIntensity() { return _sfShadowIntensity.getValue(); }
    Real32& editShadowIntensity() { return _sfShadowIntensity.getValue(); }
    void setShadowIntensity(Real32 shadowIntensity) { _sfShadowIntensity.setValue(shadowIntensity); }
    const SFReal32* getSFShadowIntensity() const { return &_sfShadowIntensity; }
    SFReal32* getSFShadowIntensity() { return &_sfShadowIntensity; }
    SFReal32* editSFShadowIntensity() { return &_sfShadowIntensity; }
    /// @}

    /// 0: as the light source says, 1: off, 2: on.
    /// @{
    Int32 getShadowMode() const { return _sfShadowMode.getValue(); }
    Int32& getShadowMode() { return _sfShadowMode.getValue(); }
    Int32& editShadowMode() { return _sfShadowMode.getValue(); }
    void setShadowMode(Int32 shadowMode) { _sfShadowMode.setValue(shadowMode); }
    const SFInt32* getSFShadowMode() const { return &_sfShadowMode; }
    SFInt32* getSFShadowMode() { return &_sfShadowMode; }
    SFInt32* editSFShadowMode() { return &_sfShadowMode; }
    /// @}

  protected:
    Light() = default;
    Light(const Light&) = default;
    ~Light() override = default;

  private:
    SFColor4f _sfAmbient{Color4f(0.0F, 0.0F, 0.0F, 1.0F)};
    SFColor4f _sfDiffuse{Color4f(1.0F, 1.0F, 1.0F, 1.0F)};
    SFColor4f _sfSpecular{Color4f(1.0F, 1.0F, 1.0F, 1.0F)};
    SFNodePtr _sfBeacon;
    SFBool _sfOn{true};
    SFReal32 _sfConstantAttenuation{1.0F};
    SFReal32 _sfLinearAttenuation{0.0F};
    SFReal32 _sfQuadraticAttenuation{0.0F};
    SFReal32 _sfShadowIntensity{1.0F};
    SFInt32 _sfShadowMode{0};
    NodeRefPtr _countedBeacon;
};

} // namespace osg
