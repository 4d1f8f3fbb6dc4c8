#pragma once

#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGSFVecTypes.h>

namespace osg {

/// A place in the tree: children in order, one parent, one core.
///
/// The tree never contains a cycle: a node refuses itself and its ancestors as children. No operation needs
/// stack in proportion to the depth of the tree.
class KA_SCENEGRAPH_API Node : public Container<Node, AttachmentContainer, NodePtr> {
  public:
    static constexpr const Char8* TypeName = "Node";
    enum : UInt32 {
        VolumeFieldId = Inherited::NextFieldId,
        TravMaskFieldId,
        ParentFieldId,
        ChildrenFieldId,
        CoreFieldId,
        NextFieldId
    };
    static constexpr BitVector VolumeFieldMask = fieldMask(VolumeFieldId);
    static constexpr BitVector TravMaskFieldMask = fieldMask(TravMaskFieldId);
    static constexpr BitVector ParentFieldMask = fieldMask(ParentFieldId);
    static constexpr BitVector ChildrenFieldMask = fieldMask(ChildrenFieldId);
    static constexpr BitVector CoreFieldMask = fieldMask(CoreFieldId);

    static FieldContainerType& getClassType();

    /// @name Core
    /// @{
    NodeCorePtr getCore() const { return _sfCore.getValue(); }
    const SFNodeCorePtr* getSFCore() const { return &_sfCore; }
    /// Counts the new core up and the old one down; null takes the core away.
    void setCore(const NodeCorePtr& core);
    /// @}

    /// @name Children
    /// A node has one parent: adding it takes it away from its old one. Children are counted. Null, the node
    /// itself and its ancestors are ignored.
    /// @{
    NodePtr getParent() const { return _sfParent.getValue(); }
    UInt32 getNChildren() const { return _mfChildren.getSize(); }
    /// Null when there is no such child.
    NodePtr getChild(UInt32 index) const;
    const MFNodePtr* getMFChildren() const { return &_mfChildren; }

    void addChild(const NodePtr& child);
    /// An index beyond the end appends.
    void insertChild(UInt32 index, const NodePtr& child);
    void replaceChild(UInt32 index, const NodePtr& child);
    /// @return false when `old` is no child of this node or `child` cannot be one; nothing is changed then.
    bool replaceChildBy(const NodePtr& old, const NodePtr& child);
    /// The index of the child, -1 when it is none.
    Int32 findChild(const NodePtr& child) const;
    /// Takes the child away and counts it down: unless somebody else counts on it, it is destroyed.
    void subChild(const NodePtr& child);
    void subChild(UInt32 index);
    /// @}

    /// @name Traversal mask
    /// All ones by default; 0 switches the node and all below it off. traverse() does not look at it.
    /// @{
    UInt32 getTravMask() const { return _sfTravMask.getValue(); }
    void setTravMask(UInt32 mask) { _sfTravMask.setValue(mask); }
    const SFUInt32* getSFTravMask() const { return &_sfTravMask; }
    SFUInt32* getSFTravMask() { return &_sfTravMask; }
    SFUInt32* editSFTravMask() { return &_sfTravMask; }
    bool getActive() const { return getTravMask() != 0; }
    void setActive(bool active) { setTravMask(active ? 0xFFFFFFFFU : 0U); }
    /// @}

    /// The matrix that takes the coordinates inside this node, its core's own placement included, to those of
    /// the world. Cost: the depth of the node.
    Matrix getToWorld() const;
    void getToWorld(Matrix& result) const { result = getToWorld(); }

    /// @name Volume
    /// What the node and all below it fill, in the coordinates of its parent; as of the last updateVolume.
    /// @{
    const DynamicVolume& getVolume() const { return _sfVolume.getValue(); }
    DynamicVolume& editVolume() { return _sfVolume.getValue(); }
    const SFDynamicVolume* getSFVolume() const { return &_sfVolume; }
    /// Works the volumes of this node and of all below it out anew.
    void updateVolume();
    /// Forgets the volume; it is empty until the next updateVolume.
    void invalidateVolume() { _sfVolume.getValue().setEmpty(); }
    /// @}

  protected:
    Node() = default;
    Node(const Node& source);
    ~Node() override = default;

    void onCopied() override;
    void onDestroy() override;

  private:
    friend class NodeCore;
    friend struct ContainerAccess;
    friend class SceneFileLinker;

    bool canAdopt(const NodePtr& child) const;
    void adopt(const NodePtr& child);
    void abandon(UInt32 index);
    /// For who knows already that `child` can be one.
    void appendUnchecked(const NodePtr& child);
    void releaseCore();
    void updateOwnVolume();

    SFDynamicVolume _sfVolume;
    SFUInt32 _sfTravMask{0xFFFFFFFFU};
    SFNodePtr _sfParent;
    MFNodePtr _mfChildren;
    SFNodeCorePtr _sfCore;
};

inline Node* NodePtr::operator->() const {
    return static_cast<Node*>(checked());
}
inline Node& NodePtr::operator*() const {
    return *static_cast<Node*>(checked());
}
inline Node* NodePtr::getCPtr() const {
    return static_cast<Node*>(FieldContainerPtr::getCPtr());
}

} // namespace osg
