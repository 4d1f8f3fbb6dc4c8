#pragma once

#include "SceneFileContents.h"
#include "SceneFileLog.h"

#include <OpenSG/OSGNode.h>
#include <vector>

namespace osg {

/// Puts the containers of a file together: looks names up, fills the fields that refer to containers, builds
/// the tree. What cannot be is reported and left out: a name that nothing defines, a container of the wrong
/// type, a second parent, a cycle.
class SceneFileLinker {
  public:
    SceneFileLinker(SceneFileContents& contents, SceneFileLog& log);

    /// @return a new node with a Group that holds, in the order of the file, every container of the top
    /// level: a node that is nobody else's child as it is, a core in a node of its own.
    NodePtr link();

  private:
    using Item = SceneFileContents::Item;
    using Slot = SceneFileContents::Slot;
    using Reference = SceneFileContents::Reference;

    /// Calls `use(reference, container)` for the references of a slot; the handle is null for NULL and where
    /// the container is missing, which is reported.
    template <class Use>
    void forEachReference(const Slot& slot, const Use& use);

    FieldContainerPtr resolve(Reference& reference);
    void linkSlot(const Slot& slot);
    void linkChildren(Node& parent, const Slot& slot);
    void linkCore(Item& node, const Slot& slot);
    void linkAttachments(AttachmentContainer& owner, const Slot& slot);
    void linkField(FieldContainer& owner, const Slot& slot);
    void linkTopLevel(const NodePtr& root, const Slot& slot);
    void adopt(Node& parent, UInt32 parentItem, const Reference& reference,
               const FieldContainerPtr& container);
    void wrongType(const Reference& reference, const FieldContainerPtr& container, const std::string& wanted);

    UInt32 itemOf(const Slot& slot) const { return slot.owner; }
    UInt32 treeOf(UInt32 item);

    SceneFileContents& _contents;
    SceneFileLog& _log;
    std::vector<UInt32>
        _trees; ///< for each item one nearer to the root of its tree; the root itself for a root
};

} // namespace osg
