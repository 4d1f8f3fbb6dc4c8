#include "kaSceneNodes.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <unordered_set>

osg::NodePtr kaSceneNodes::find(osg::UInt32 id) {
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

osg::UInt32 kaSceneNodes::idOf(const osg::NodePtr& node) {
    return node == osg::NullFC ? 0 : node.getFieldContainerId();
}

std::vector<osg::UInt32> kaSceneNodes::below(const osg::NodePtr& root) {
    std::vector<osg::UInt32> ids;
    std::unordered_set<osg::UInt32> seen;
    std::vector<osg::NodePtr> pending{root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        if (node == osg::NullFC || !seen.insert(node.getFieldContainerId()).second)
            continue;
        ids.push_back(node.getFieldContainerId());
        for (osg::UInt32 i = node->getNChildren(); i > 0; --i)
            pending.push_back(node->getChild(i - 1));
    }
    return ids;
}
