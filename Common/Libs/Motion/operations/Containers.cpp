#include "operations/Containers.h"

#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>

namespace ka::motion {

std::vector<kaAnimationUnit*> blocksBelow(const kaAnimationObject& object) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    std::vector<kaAnimationUnit*> blocks;
    std::vector<kaUID> pending{object.getId()};
    while (!pending.empty()) {
        const kaUID id = pending.back();
        pending.pop_back();
        if (kaAnimationUnit* block = manager->getUnit(id)) {
            blocks.push_back(block);
            continue;
        }
        const kaAnimationObject* container = manager->getObject(id);
        if (container == nullptr || container->getTypeID() == KA_TYPE_POINT ||
            container->getTypeID() == KA_TYPE_CURVE)
            continue;
        const std::vector<kaUID> children = container->getChildIDs();
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return blocks;
}

osg::NodePtr nodeOf(const kaAnimationUnit& block) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    for (const kaUID id : block.getChildIDs())
        if (const kaAnimationCurve2D* curve = manager->getCurve2D(id))
            if (const osg::NodePtr node = curve->getParentOSGNode(); node != osg::NullFC)
                return node;
    return {};
}

kaAnimationObject* topOf(kaAnimationObject* object) {
    while (object != nullptr && object->getParentObject() != nullptr)
        object = object->getParentObject();
    return object;
}

} // namespace ka::motion
