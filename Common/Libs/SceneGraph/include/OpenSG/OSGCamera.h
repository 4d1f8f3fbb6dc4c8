#pragma once

#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// A camera that looks from its beacon's place. Not part of the tree.
class KA_SCENEGRAPH_API Camera : public Container<Camera, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "Camera";
    enum : UInt32 { BeaconFieldId = Inherited::NextFieldId, NearFieldId, FarFieldId, NextFieldId };
    static constexpr BitVector BeaconFieldMask = fieldMask(BeaconFieldId);
    static constexpr BitVector NearFieldMask = fieldMask(NearFieldId);
    static constexpr BitVector FarFieldMask = fieldMask(FarFieldId);

    static FieldContainerType& getClassType();

    /// The node whose world matrix gives the pose. Not counted: a node that is gone reads as null.
    /// @{
    const NodePtr& getBeacon() const { return _sfBeacon.getValue(); }
    NodePtr& getBeacon() { return _sfBeacon.getValue(); }
    NodePtr& editBeacon() { return _sfBeacon.getValue(); }
    void setBeacon(const NodePtr& beacon) { _sfBeacon.setValue(beacon); }
    const SFNodePtr* getSFBeacon() const { return &_sfBeacon; }
    SFNodePtr* getSFBeacon() { return &_sfBeacon; }
    SFNodePtr* editSFBeacon() { return &_sfBeacon; }
    /// @}

    /// Distance of what is just visible, in units of the scene.
    /// @{
    Real32 getNear() const { return _sfNear.getValue(); }
    Real32& getNear() { return _sfNear.getValue(); }
    Real32& editNear() { return _sfNear.getValue(); }
    void setNear(Real32 near) { _sfNear.setValue(near); }
    const SFReal32* getSFNear() const { return &_sfNear; }
    SFReal32* getSFNear() { return &_sfNear; }
    SFReal32* editSFNear() { return &_sfNear; }
    /// @}

    /// Distance of what is still visible, in units of the scene.
    /// @{
    Real32 getFar() const { return _sfFar.getValue(); }
    Real32& getFar() { return _sfFar.getValue(); }
    Real32& editFar() { return _sfFar.getValue(); }
    void setFar(Real32 far) { _sfFar.setValue(far); }
    const SFReal32* getSFFar() const { return &_sfFar; }
    SFReal32* getSFFar() { return &_sfFar; }
    SFReal32* editSFFar() { return &_sfFar; }
    /// @}

  protected:
    Camera() = default;
    Camera(const Camera&) = default;
    ~Camera() override = default;

  private:
    SFNodePtr _sfBeacon;
    SFReal32 _sfNear{0.1F};
    SFReal32 _sfFar{10000.0F};
};

} // namespace osg
