#pragma once

#include <OpenSG/OSGAnimationControlPoint.h>
#include <OpenSG/OSGAnimationFields.h>
#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGFieldContainerFields.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// The course of one value over time.
/// Part of the older animation format, in which scenes carried their animation themselves. The points are
/// counted through `addPoint`.
class KA_SCENEGRAPH_API AnimationCurve : public Container<AnimationCurve, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "AnimationCurve";
    enum : UInt32 {
        NameFieldId = Inherited::NextFieldId,
        PointsFieldId,
        AttributeFieldId,
        NodeFieldId,
        FallbackFieldId,
        NextFieldId
    };
    static constexpr BitVector NameFieldMask = fieldMask(NameFieldId);
    static constexpr BitVector PointsFieldMask = fieldMask(PointsFieldId);
    static constexpr BitVector AttributeFieldMask = fieldMask(AttributeFieldId);
    static constexpr BitVector NodeFieldMask = fieldMask(NodeFieldId);
    static constexpr BitVector FallbackFieldMask = fieldMask(FallbackFieldId);

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

    /// The keys, in order of time.
    /// @{
    const MFAnimationControlPointPtr& getPoints() const { return _mfPoints; }
    MFAnimationControlPointPtr& getPoints() { return _mfPoints; }
    MFAnimationControlPointPtr& editPoints() { return _mfPoints; }
    const MFAnimationControlPointPtr* getMFPoints() const { return &_mfPoints; }
    MFAnimationControlPointPtr* getMFPoints() { return &_mfPoints; }
    MFAnimationControlPointPtr* editMFPoints() { return &_mfPoints; }
    void addPoint(const AnimationControlPointPtr& point);
    /// @}

    /// What is animated; when empty, the name says it.
    /// @{
    const std::string& getAttribute() const { return _sfAttribute.getValue(); }
    std::string& getAttribute() { return _sfAttribute.getValue(); }
    std::string& editAttribute() { return _sfAttribute.getValue(); }
    void setAttribute(const std::string& attribute) { _sfAttribute.setValue(attribute); }
    const SFString* getSFAttribute() const { return &_sfAttribute; }
    SFString* getSFAttribute() { return &_sfAttribute; }
    SFString* editSFAttribute() { return &_sfAttribute; }
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

    /// What stands for the node when nothing else tells it. Not counted.
    /// @{
    const FieldContainerPtr& getFallback() const { return _sfFallback.getValue(); }
    FieldContainerPtr& getFallback() { return _sfFallback.getValue(); }
    FieldContainerPtr& editFallback() { return _sfFallback.getValue(); }
    void setFallback(const FieldContainerPtr& fallback) { _sfFallback.setValue(fallback); }
    const SFFieldContainerPtr* getSFFallback() const { return &_sfFallback; }
    SFFieldContainerPtr* getSFFallback() { return &_sfFallback; }
    SFFieldContainerPtr* editSFFallback() { return &_sfFallback; }
    /// @}

  protected:
    AnimationCurve() = default;
    AnimationCurve(const AnimationCurve&) = default;
    ~AnimationCurve() override = default;

  private:
    friend struct ContainerAccess;

    SFString _sfName;
    MFAnimationControlPointPtr _mfPoints;
    SFString _sfAttribute;
    SFNodePtr _sfNode;
    SFFieldContainerPtr _sfFallback;
};

} // namespace osg
