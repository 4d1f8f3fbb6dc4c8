#pragma once

#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGNodeFields.h>
#include <OpenSG/OSGParentIndex.h>

namespace osg {

/// What a node is: a group, a transformation, a light, a geometry. One core may serve several nodes.
class KA_SCENEGRAPH_API NodeCore : public Container<NodeCore, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "NodeCore";
    enum : UInt32 { ParentsFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector ParentsFieldMask = fieldMask(ParentsFieldId);

    static FieldContainerType& getClassType();

    /// The nodes that have this core, in no particular order.
    const MFNodePtr& getParents() const { return _mfParents; }
    const MFNodePtr* getMFParents() const { return &_mfParents; }

    /// How the core places everything in `node`, itself included, within the node's parent. `node` is one of
    /// the core's nodes; a core that several share may place each differently.
    /// @param matrix  receives the placement; untouched when false is returned.
    /// @return false when the core does not move anything.
    virtual bool getLocalMatrix(const Node& node, Matrix& matrix) const;

    /// Widens `volume` by what the core itself draws, in the core's own coordinates.
    virtual void adjustVolume(DynamicVolume& volume) const;

  protected:
    NodeCore() = default;
    NodeCore(const NodeCore& source);
    ~NodeCore() override = default;

    void onDestroy() override;

  private:
    friend class Node;

    MFNodePtr _mfParents;
    ParentIndex _parentIndex;
};

} // namespace osg
