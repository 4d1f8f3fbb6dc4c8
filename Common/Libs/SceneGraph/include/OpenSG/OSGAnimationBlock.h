#pragma once

#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGAnimationFields.h>
#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// The curves of one node; as a sequence, a named span of time.
/// Part of the older animation format, in which scenes carried their animation themselves. The curves are
/// counted through `addCurve`.
class KA_SCENEGRAPH_API AnimationBlock : public Container<AnimationBlock, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "AnimationBlock";
    enum : UInt32 {
        NameFieldId = Inherited::NextFieldId,
        CurvesFieldId,
        NodeFieldId,
        BeginFieldId,
        EndFieldId,
        FlippedFieldId,
        RepeatingFieldId,
        MotionBlurFieldId,
        NextFieldId
    };
    static constexpr BitVector NameFieldMask = fieldMask(NameFieldId);
    static constexpr BitVector CurvesFieldMask = fieldMask(CurvesFieldId);
    static constexpr BitVector NodeFieldMask = fieldMask(NodeFieldId);
    static constexpr BitVector BeginFieldMask = fieldMask(BeginFieldId);
    static constexpr BitVector EndFieldMask = fieldMask(EndFieldId);
    static constexpr BitVector FlippedFieldMask = fieldMask(FlippedFieldId);
    static constexpr BitVector RepeatingFieldMask = fieldMask(RepeatingFieldId);
    static constexpr BitVector MotionBlurFieldMask = fieldMask(MotionBlurFieldId);

    static FieldContainerType& getClassType();

    /// The name.
    /// @{
    const std::string& getName() const { return _sfName.getValue(); }
    std::string& getName() { return _sfName.getValue(); }
    std::string& editName() { return _sfName.getValue(); }
    void setName(const std::string& name) { _sfName.setValue(name); }
    const SFString* getSFName() const { return &_sfName; }
    SFString* getSFName() { return &_sfName; }
    SFString* editSFName() { return &_sfName; }
    /// @}

    /// The curves.
    /// @{
    const MFAnimationCurvePtr& getCurves() const { return _mfCurves; }
    MFAnimationCurvePtr& getCurves() { return _mfCurves; }
    MFAnimationCurvePtr& editCurves() { return _mfCurves; }
    const MFAnimationCurvePtr* getMFCurves() const { return &_mfCurves; }
    MFAnimationCurvePtr* getMFCurves() { return &_mfCurves; }
    MFAnimationCurvePtr* editMFCurves() { return &_mfCurves; }
    void addCurve(const AnimationCurvePtr& curve);
    /// @}

    /// The node that it animates. Not counted: a node that is gone reads as null.
    /// @{
    const NodePtr& getNode() const { return _sfNode.getValue(); }
    NodePtr& getNode() { return _sfNode.getValue(); }
    NodePtr& editNode() { return _sfNode.getValue(); }
    void setNode(const NodePtr& node) { _sfNode.setValue(node); }
    const SFNodePtr* getSFNode() const { return &_sfNode; }
    SFNodePtr* getSFNode() { return &_sfNode; }
    SFNodePtr* editSFNode() { return &_sfNode; }
    /// @}

    /// First frame.
    /// @{
    Real32 getBegin() const { return _sfBegin.getValue(); }
    Real32& getBegin() { return _sfBegin.getValue(); }
    Real32& editBegin() { return _sfBegin.getValue(); }
    void setBegin(Real32 begin) { _sfBegin.setValue(begin); }
    const SFReal32* getSFBegin() const { return &_sfBegin; }
    SFReal32* getSFBegin() { return &_sfBegin; }
    SFReal32* editSFBegin() { return &_sfBegin; }
    /// @}

    /// Last frame.
    /// @{
    Real32 getEnd() const { return _sfEnd.getValue(); }
    Real32& getEnd() { return _sfEnd.getValue(); }
    Real32& editEnd() { return _sfEnd.getValue(); }
    void setEnd(Real32 end) { _sfEnd.setValue(end); }
    const SFReal32* getSFEnd() const { return &_sfEnd; }
    SFReal32* getSFEnd() { return &_sfEnd; }
    SFReal32* editSFEnd() { return &_sfEnd; }
    /// @}

    /// Whether it runs backwards.
    /// @{
    bool getFlipped() const { return _sfFlipped.getValue(); }
    bool& getFlipped() { return _sfFlipped.getValue(); }
    bool& editFlipped() { return _sfFlipped.getValue(); }
    void setFlipped(bool flipped) { _sfFlipped.setValue(flipped); }
    const SFBool* getSFFlipped() const { return &_sfFlipped; }
    SFBool* getSFFlipped() { return &_sfFlipped; }
    SFBool* editSFFlipped() { return &_sfFlipped; }
    /// @}

    /// Whether it starts again at its end.
    /// @{
    bool getRepeating() const { return _sfRepeating.getValue(); }
    bool& getRepeating() { return _sfRepeating.getValue(); }
    bool& editRepeating() { return _sfRepeating.getValue(); }
    void setRepeating(bool repeating) { _sfRepeating.setValue(repeating); }
    const SFBool* getSFRepeating() const { return &_sfRepeating; }
    SFBool* getSFRepeating() { return &_sfRepeating; }
    SFBool* editSFRepeating() { return &_sfRepeating; }
    /// @}

    /// Whether it takes part in motion blur.
    /// @{
    bool getMotionBlur() const { return _sfMotionBlur.getValue(); }
    bool& getMotionBlur() { return _sfMotionBlur.getValue(); }
    bool& editMotionBlur() { return _sfMotionBlur.getValue(); }
    void setMotionBlur(bool motionBlur) { _sfMotionBlur.setValue(motionBlur); }
    const SFBool* getSFMotionBlur() const { return &_sfMotionBlur; }
    SFBool* getSFMotionBlur() { return &_sfMotionBlur; }
    SFBool* editSFMotionBlur() { return &_sfMotionBlur; }
    /// @}

  protected:
    AnimationBlock() = default;
    AnimationBlock(const AnimationBlock&) = default;
    ~AnimationBlock() override = default;

  private:
    friend struct ContainerAccess;

    SFString _sfName;
    MFAnimationCurvePtr _mfCurves;
    SFNodePtr _sfNode;
    SFReal32 _sfBegin{0.0F};
    SFReal32 _sfEnd{0.0F};
    SFBool _sfFlipped{false};
    SFBool _sfRepeating{false};
    SFBool _sfMotionBlur{false};
};

} // namespace osg
