#include "kaSceneAccess.h"

#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGThread.h>

osg::NodeCorePtr kaSceneAccess::coreOf(const osg::NodePtr& node) {
    return node != osg::NullFC ? node->getCore() : osg::NodeCorePtr();
}

osg::FieldContainerPtr kaSceneAccess::materialOf(const osg::NodeCorePtr& core) {
    const osg::MaterialGroupPtr group = osg::MaterialGroupPtr::dcast(core);
    return group != osg::NullFC ? osg::FieldContainerPtr(group->getMaterial()) : osg::FieldContainerPtr();
}

void kaSceneAccess::recordChange(const osg::FieldContainerPtr& container, osg::BitVector mask) noexcept {
    try {
        if (osg::ChangeList* changes = osg::PThreadBase::getCurrentChangeList())
            changes->addChanged(container, mask);
    } catch (...) { // objects leave their node in the middle of being destroyed
    }
}
