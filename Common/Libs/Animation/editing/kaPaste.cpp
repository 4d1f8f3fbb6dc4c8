#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"
#include "kaFieldStore.h"
#include "kaObjectClass.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"

#include <algorithm>

using kaSceneAccess::coreOf;

namespace {

/// Whether the curve's field addresses a container of the core's type group, or a node.
bool canDrive(const kaAnimationCurve2D& curve, osg::UInt16 coreGroup) {
    const kaAnimationField* field = kaFieldStore::find(curve.getField());
    if (!field)
        return false;
    const osg::FieldContainerPtr container = kaSceneAccess::findContainer(field->fcID);
    if (container == osg::NullFC)
        return false;
    const osg::UInt16 group = container->getType().getGroupId();
    return group == coreGroup || group == osg::Node::getClassType().getGroupId();
}

/// The last of the fields with the same attribute and component; null when there is none.
kaAnimationField* lastMatch(const std::vector<kaAnimationField*>& fields, const kaAnimationField& wanted) {
    const auto found = std::find_if(fields.rbegin(), fields.rend(), [&wanted](const kaAnimationField* field) {
        return field->attribute == wanted.attribute && field->valuePos == wanted.valuePos;
    });
    return found != fields.rend() ? *found : nullptr;
}

} // namespace

bool kaAnimationUtils::checkPasteTo(const osg::NodePtr& node, kaAnimationObject* object) {
    const osg::NodeCorePtr core = coreOf(node);
    if (core == osg::NullFC || !object)
        return false;
    const osg::UInt16 group = core->getType().getGroupId();
    const std::vector<kaAnimationCurve2D*> curves = object->getCurves();
    return std::all_of(curves.begin(), curves.end(),
                       [group](const kaAnimationCurve2D* curve) { return canDrive(*curve, group); });
}

bool kaAnimationUtils::checkPasteTo(const osg::NodePtr& node,
                                    const std::vector<kaAnimationObject*>& objects) {
    return std::all_of(objects.begin(), objects.end(),
                       [&node](kaAnimationObject* object) { return !object || checkPasteTo(node, object); });
}

bool kaAnimationUtils::changeObjectReferenceFields(kaAnimationObject* object, const osg::NodePtr& node) {
    if (!object || coreOf(node) == osg::NullFC)
        return false;
    const std::vector<kaAnimationField*> fields = getAnimationFields(node);
    for (kaAnimationCurve2D* curve : object->getCurves()) {
        const kaAnimationField* current = kaFieldStore::find(curve->getField());
        kaAnimationField* match = current ? lastMatch(fields, *current) : nullptr;
        if (match)
            curve->setAnimationField(match);
    }
    if (auto* block = kaObjectCast<kaAnimationUnit>(object))
        block->setNodeID(kaSceneNodes::idOf(node));
    return true;
}
