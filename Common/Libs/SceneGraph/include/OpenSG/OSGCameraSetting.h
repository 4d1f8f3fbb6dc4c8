#pragma once

#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// A camera of the host: where it stands, what it looks at, and its lens. Five values are no fields and
/// reached by getters and setters only; they are kept in step with nothing else here.
class KA_SCENEGRAPH_API CameraSetting : public Container<CameraSetting, NodeCore> {
  public:
    static constexpr const Char8* TypeName = "CameraSetting";
    enum : UInt32 {
        FromFieldId = Inherited::NextFieldId,
        AtFieldId,
        UpFieldId,
        RollFieldId,
        FieldOfViewFieldId,
        NextFieldId
    };
    static constexpr BitVector FromFieldMask = fieldMask(FromFieldId);
    static constexpr BitVector AtFieldMask = fieldMask(AtFieldId);
    static constexpr BitVector UpFieldMask = fieldMask(UpFieldId);
    static constexpr BitVector RollFieldMask = fieldMask(RollFieldId);
    static constexpr BitVector FieldOfViewFieldMask = fieldMask(FieldOfViewFieldId);

    static FieldContainerType& getClassType();

    /// Where the camera stands.
    /// @{
    const Pnt3f& getFrom() const { return _sfFrom.getValue(); }
    Pnt3f& getFrom() { return _sfFrom.getValue(); }
    Pnt3f& editFrom() { return _sfFrom.getValue(); }
    void setFrom(const Pnt3f& from) { _sfFrom.setValue(from); }
    const SFPnt3f* getSFFrom() const { return &_sfFrom; }
    SFPnt3f* getSFFrom() { return &_sfFrom; }
    SFPnt3f* editSFFrom() { return &_sfFrom; }
    /// @}

    /// The point that it looks at.
    /// @{
    const Pnt3f& getAt() const { return _sfAt.getValue(); }
    Pnt3f& getAt() { return _sfAt.getValue(); }
    Pnt3f& editAt() { return _sfAt.getValue(); }
    void setAt(const Pnt3f& at) { _sfAt.setValue(at); }
    const SFPnt3f* getSFAt() const { return &_sfAt; }
    SFPnt3f* getSFAt() { return &_sfAt; }
    SFPnt3f* editSFAt() { return &_sfAt; }
    /// @}

    /// Which way is up in the picture.
    /// @{
    const Vec3f& getUp() const { return _sfUp.getValue(); }
    Vec3f& getUp() { return _sfUp.getValue(); }
    Vec3f& editUp() { return _sfUp.getValue(); }
    void setUp(const Vec3f& up) { _sfUp.setValue(up); }
    const SFVec3f* getSFUp() const { return &_sfUp; }
    SFVec3f* getSFUp() { return &_sfUp; }
    SFVec3f* editSFUp() { return &_sfUp; }
    /// @}

    /// Turn about the line of sight.
    /// @{
    Real32 getRoll() const { return _sfRoll.getValue(); }
    Real32& getRoll() { return _sfRoll.getValue(); }
    Real32& editRoll() { return _sfRoll.getValue(); }
    void setRoll(Real32 roll) { _sfRoll.setValue(roll); }
    const SFReal32* getSFRoll() const { return &_sfRoll; }
    SFReal32* getSFRoll() { return &_sfRoll; }
    SFReal32* editSFRoll() { return &_sfRoll; }
    /// @}

    /// Opening angle in radians; 45 degrees by default.
    /// @{
    Real32 getFieldOfView() const { return _sfFieldOfView.getValue(); }
    Real32& getFieldOfView() { return _sfFieldOfView.getValue(); }
    Real32& editFieldOfView() { return _sfFieldOfView.getValue(); }
    void setFieldOfView(Real32 fieldOfView) { _sfFieldOfView.setValue(fieldOfView); }
    const SFReal32* getSFFieldOfView() const { return &_sfFieldOfView; }
    SFReal32* getSFFieldOfView() { return &_sfFieldOfView; }
    SFReal32* editSFFieldOfView() { return &_sfFieldOfView; }
    /// @}

    /// Distance from `at`, in units of the scene.
    Real32 getDistance() const { return _distance; }
    void setDistance(Real32 distance) { _distance = distance; }
    /// Height above ground, in units of the scene.
    Real32 getHeight() const { return _height; }
    void setHeight(Real32 height) { _height = height; }
    /// Angle of the turn table that the object stands on, in degrees.
    Real32 getTurnTableAngle() const { return _turnTableAngle; }
    void setTurnTableAngle(Real32 turnTableAngle) { _turnTableAngle = turnTableAngle; }
    /// Focal length divided by aperture.
    Real32 getFStop() const { return _fStop; }
    void setFStop(Real32 fStop) { _fStop = fStop; }
    /// Millimetres.
    Real32 getFocalLength() const { return _focalLength; }
    void setFocalLength(Real32 focalLength) { _focalLength = focalLength; }

    /// True when animation moves the host's camera along a path and leaves the fields alone.
    bool isCameraPath() const { return _cameraPath; }
    bool getCameraPath() const { return _cameraPath; }
    void setCameraPath(bool cameraPath) { _cameraPath = cameraPath; }

    /// The values that are no fields.
    void visitProperties(const PropertyVisitor& visitor) override;

  protected:
    CameraSetting() = default;
    CameraSetting(const CameraSetting&) = default;
    ~CameraSetting() override = default;

  private:
    friend struct ContainerAccess;

    SFPnt3f _sfFrom;
    SFPnt3f _sfAt;
    SFVec3f _sfUp{Vec3f(0.0F, 1.0F, 0.0F)};
    SFReal32 _sfRoll{0.0F};
    SFReal32 _sfFieldOfView{0.7853982F};

    Real32 _distance = 0.0F;
    Real32 _height = 0.0F;
    Real32 _turnTableAngle = 0.0F;
    Real32 _fStop = 5.6F;
    Real32 _focalLength = 35.0F;
    bool _cameraPath = false;
};

} // namespace osg
