#pragma once

#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// A camera with a viewing angle.
class KA_SCENEGRAPH_API PerspectiveCamera : public Container<PerspectiveCamera, Camera> {
  public:
    static constexpr const Char8* TypeName = "PerspectiveCamera";
    enum : UInt32 { FovFieldId = Inherited::NextFieldId, FovModeFieldId, AspectFieldId, NextFieldId };
    static constexpr BitVector FovFieldMask = fieldMask(FovFieldId);
    static constexpr BitVector FovModeFieldMask = fieldMask(FovModeFieldId);
    static constexpr BitVector AspectFieldMask = fieldMask(AspectFieldId);

    static FieldContainerType& getClassType();

    /// Opening angle in radians; 45 degrees by default.
    /// @{
    Real32 getFov() const { return _sfFov.getValue(); }
    Real32& getFov() { return _sfFov.getValue(); }
    Real32& editFov() { return _sfFov.getValue(); }
    void setFov(Real32 fov) { _sfFov.setValue(fov); }
    const SFReal32* getSFFov() const { return &_sfFov; }
    SFReal32* getSFFov() { return &_sfFov; }
    SFReal32* editSFFov() { return &_sfFov; }
    /// @}

    /// Which side of the picture the angle spans: 0 the wider, 1 the vertical, 2 the horizontal.
    /// @{
    UInt32 getFovMode() const { return _sfFovMode.getValue(); }
    UInt32& getFovMode() { return _sfFovMode.getValue(); }
    UInt32& editFovMode() { return _sfFovMode.getValue(); }
    void setFovMode(UInt32 fovMode) { _sfFovMode.setValue(fovMode); }
    const SFUInt32* getSFFovMode() const { return &_sfFovMode; }
    SFUInt32* getSFFovMode() { return &_sfFovMode; }
    SFUInt32* editSFFovMode() { return &_sfFovMode; }
    /// @}

    /// Width of a pixel divided by its height.
    /// @{
    Real32 getAspect() const { return _sfAspect.getValue(); }
    Real32& getAspect() { return _sfAspect.getValue(); }
    Real32& editAspect() { return _sfAspect.getValue(); }
    void setAspect(Real32 aspect) { _sfAspect.setValue(aspect); }
    const SFReal32* getSFAspect() const { return &_sfAspect; }
    SFReal32* getSFAspect() { return &_sfAspect; }
    SFReal32* editSFAspect() { return &_sfAspect; }
    /// @}

  protected:
    PerspectiveCamera() = default;
    PerspectiveCamera(const PerspectiveCamera&) = default;
    ~PerspectiveCamera() override = default;

  private:
    friend struct ContainerAccess;

    SFReal32 _sfFov{0.7853982F};
    SFUInt32 _sfFovMode{1};
    SFReal32 _sfAspect{1.0F};
};

} // namespace osg
