#pragma once

#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// A key of a curve.
/// Part of the older animation format, in which scenes carried their animation themselves.
class KA_SCENEGRAPH_API AnimationControlPoint : public Container<AnimationControlPoint, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "AnimationControlPoint";
    enum : UInt32 {
        PositionFieldId = Inherited::NextFieldId,
        InTangentFieldId,
        OutTangentFieldId,
        TangentTypeFieldId,
        NextFieldId
    };
    static constexpr BitVector PositionFieldMask = fieldMask(PositionFieldId);
    static constexpr BitVector InTangentFieldMask = fieldMask(InTangentFieldId);
    static constexpr BitVector OutTangentFieldMask = fieldMask(OutTangentFieldId);
    static constexpr BitVector TangentTypeFieldMask = fieldMask(TangentTypeFieldId);

    static FieldContainerType& getClassType();

    /// Frame and value.
    /// @{
    const Vec2f& getPosition() const { return _sfPosition.getValue(); }
    Vec2f& getPosition() { return _sfPosition.getValue(); }
    Vec2f& editPosition() { return _sfPosition.getValue(); }
    void setPosition(const Vec2f& position) { _sfPosition.setValue(position); }
    const SFVec2f* getSFPosition() const { return &_sfPosition; }
    SFVec2f* getSFPosition() { return &_sfPosition; }
    SFVec2f* editSFPosition() { return &_sfPosition; }
    /// @}

    /// Where the handle before the key stands.
    /// @{
    const Vec2f& getInTangent() const { return _sfInTangent.getValue(); }
    Vec2f& getInTangent() { return _sfInTangent.getValue(); }
    Vec2f& editInTangent() { return _sfInTangent.getValue(); }
    void setInTangent(const Vec2f& inTangent) { _sfInTangent.setValue(inTangent); }
    const SFVec2f* getSFInTangent() const { return &_sfInTangent; }
    SFVec2f* getSFInTangent() { return &_sfInTangent; }
    SFVec2f* editSFInTangent() { return &_sfInTangent; }
    /// @}

    /// Where the handle after the key stands.
    /// @{
    const Vec2f& getOutTangent() const { return _sfOutTangent.getValue(); }
    Vec2f& getOutTangent() { return _sfOutTangent.getValue(); }
    Vec2f& editOutTangent() { return _sfOutTangent.getValue(); }
    void setOutTangent(const Vec2f& outTangent) { _sfOutTangent.setValue(outTangent); }
    const SFVec2f* getSFOutTangent() const { return &_sfOutTangent; }
    SFVec2f* getSFOutTangent() { return &_sfOutTangent; }
    SFVec2f* editSFOutTangent() { return &_sfOutTangent; }
    /// @}

    /// The older code of the tangent type, 1 to 6.
    /// @{
    UInt8 getTangentType() const { return _sfTangentType.getValue(); }
    UInt8& getTangentType() { return _sfTangentType.getValue(); }
    UInt8& editTangentType() { return _sfTangentType.getValue(); }
    void setTangentType(UInt8 tangentType) { _sfTangentType.setValue(tangentType); }
    const SFUInt8* getSFTangentType() const { return &_sfTangentType; }
    SFUInt8* getSFTangentType() { return &_sfTangentType; }
    SFUInt8* editSFTangentType() { return &_sfTangentType; }
    /// @}

  protected:
    AnimationControlPoint() = default;
    AnimationControlPoint(const AnimationControlPoint&) = default;
    ~AnimationControlPoint() override = default;

  private:
    friend struct ContainerAccess;

    SFVec2f _sfPosition;
    SFVec2f _sfInTangent;
    SFVec2f _sfOutTangent;
    SFUInt8 _sfTangentType{4};
};

} // namespace osg
