#pragma once

#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// The host's camera, with a shutter for motion blur.
class KA_SCENEGRAPH_API PerspectiveCamera2 : public Container<PerspectiveCamera2, PerspectiveCamera> {
  public:
    static constexpr const Char8* TypeName = "PerspectiveCamera2";
    enum : UInt32 { ShutterSpeedFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector ShutterSpeedFieldMask = fieldMask(ShutterSpeedFieldId);

    static FieldContainerType& getClassType();

    /// The shutter is open for 1 / this many seconds.
    /// @{
    Real32 getShutterSpeed() const { return _sfShutterSpeed.getValue(); }
    Real32& getShutterSpeed() { return _sfShutterSpeed.getValue(); }
    Real32& editShutterSpeed() { return _sfShutterSpeed.getValue(); }
    void setShutterSpeed(Real32 shutterSpeed) { _sfShutterSpeed.setValue(shutterSpeed); }
    const SFReal32* getSFShutterSpeed() const { return &_sfShutterSpeed; }
    SFReal32* getSFShutterSpeed() { return &_sfShutterSpeed; }
    SFReal32* editSFShutterSpeed() { return &_sfShutterSpeed; }
    /// @}

  protected:
    PerspectiveCamera2() = default;
    PerspectiveCamera2(const PerspectiveCamera2&) = default;
    ~PerspectiveCamera2() override = default;

  private:
    friend struct ContainerAccess;

    SFReal32 _sfShutterSpeed{50.0F};
};

} // namespace osg
