#include "kaChangedNodes.h"

#include "kaSceneAccess.h"
#include "kaSceneNodes.h"
#include "kaSceneRoot.h"

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGMaterialDrawable.h>
#include <OpenSG/OSGThread.h>
#include <vector>

namespace {

osg::UInt32 materialIdOf(const osg::NodeCorePtr& core) {
    const osg::FieldContainerPtr material = kaSceneAccess::materialOf(core);
    if (material != osg::NullFC)
        return material.getFieldContainerId();
    const osg::MaterialDrawablePtr drawable = osg::MaterialDrawablePtr::dcast(core);
    const bool hasOne = drawable != osg::NullFC && drawable->getMaterial() != osg::NullFC;
    return hasOne ? drawable->getMaterial().getFieldContainerId() : 0;
}

} // namespace

kaChangedNodes::kaChangedNodes() {
    const osg::ChangeList* changes = osg::PThreadBase::getCurrentChangeList();
    if (!changes)
        return;
    for (auto entry = changes->beginChanged(); entry != changes->endChanged(); ++entry)
        if (kaSceneAccess::isThere(entry->first))
            follow(kaSceneAccess::findContainer(entry->first));
    if (!_loose.empty())
        findByMaterial();
    _areMore = !_loose.empty();
}

/// From a container up to the nodes that it hangs on: of attachments of attachments, too, on a list of its
/// own.
void kaChangedNodes::follow(const osg::FieldContainerPtr& changed) {
    std::vector<osg::FieldContainerPtr> open{changed};
    while (!open.empty()) {
        const osg::FieldContainerPtr container = open.back();
        open.pop_back();
        if (!_seen.insert(container.getFieldContainerId()).second)
            continue;
        const std::size_t before = open.size();
        if (osg::NodePtr::dcast(container) != osg::NullFC) {
            _nodes.insert(container.getFieldContainerId());
            continue;
        }
        if (const osg::NodeCorePtr core = osg::NodeCorePtr::dcast(container); core != osg::NullFC)
            for (osg::UInt32 i = 0; i < core->getParents().size(); ++i)
                open.push_back(core->getParents()[i]);
        else if (const osg::AttachmentPtr attachment = osg::AttachmentPtr::dcast(container);
                 attachment != osg::NullFC)
            for (osg::UInt32 i = 0; i < attachment->getParents().size(); ++i)
                open.push_back(attachment->getParents()[i]);
        if (open.size() == before)
            _loose.insert(container.getFieldContainerId());
    }
}

void kaChangedNodes::findByMaterial() {
    std::set<osg::UInt32> found;
    kaSceneNodes::forEach(kaSceneRoot::get(), [this, &found](const osg::NodePtr& node) {
        const osg::UInt32 material = materialIdOf(node->getCore());
        if (material == 0 || _loose.count(material) == 0)
            return;
        _nodes.insert(kaSceneNodes::idOf(node));
        found.insert(material);
    });
    for (const osg::UInt32 id : found)
        _loose.erase(id);
}
