#pragma once

#include "kaAnimationTypes.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>

/// How the module finds its way from a scene node (`kaSceneNodes`) to what hangs on it. Inside the module
/// only.
namespace kaSceneAccess {

/// The container with that id, of which the low 32 bits count; null when there is none (any more).
inline osg::FieldContainerPtr findContainer(kaUID id) {
    return osg::FieldContainerFactory::the()->getContainer(static_cast<osg::UInt32>(id));
}

/// All containers by id. It stays where it is; a look at it takes no lock whatever the scene graph.
inline const osg::FieldContainerStore& store() {
    return *osg::FieldContainerFactory::the()->getFieldContainerStore();
}

/// Whether that container is there.
inline bool isThere(osg::UInt32 id, const osg::FieldContainerStore& store) {
    return id < store.size() && store[id] != osg::NullFC;
}
inline bool isThere(osg::UInt32 id) {
    return isThere(id, store());
}

/// The node's core; null for a null node or one without.
osg::NodeCorePtr coreOf(const osg::NodePtr& node);

/// The material that a material group holds; null for other cores and for a group without material.
osg::FieldContainerPtr materialOf(const osg::NodeCorePtr& core);

/// Records an edit of an attachment's id lists in the current change list without calling the container's
/// `changed`: objects leave their node's list while they are being destroyed, when the host must not be called
/// and nothing may fail. When memory runs out the entry is left out.
void recordChange(const osg::FieldContainerPtr& container, osg::BitVector mask) noexcept;

/// Whether the type of the container is in the same group as `Reference`. A derived type is in a group of its own
/// unless it names its parent's.
template <class Reference>
bool isOfGroup(const osg::FieldContainerPtr& container) {
    return container->getType().getGroupId() == Reference::getClassType().getGroupId();
}

/// Whether the container's type or one of its ancestors is of the group of `Reference`.
template <class Reference>
bool isKindOf(const osg::FieldContainerPtr& container) {
    const osg::FieldContainerType* type = &container->getType();
    while (type && type->getGroupId() != Reference::getClassType().getGroupId())
        type = type->getParent();
    return type != nullptr;
}

} // namespace kaSceneAccess
