#include "kaAnimationUtils.h"

#include "kaAliveGuard.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaFieldAccess.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <cmath>
#include <kaOpenSGUtils.h>
#include <limits>

namespace {

/// The component that a letter at the end of an attribute names; none for other letters.
struct ComponentLetter {
    bool found;
    unsigned int component;
    const char* ending; ///< of the attributes "translation" and "rotation"
};

ComponentLetter componentLetter(char letter) {
    switch (letter) {
    case 'X':
    case 'R':
        return {true, 0, "ionX"};
    case 'Y':
    case 'G':
        return {true, 1, "ionY"};
    case 'Z':
    case 'B':
        return {true, 2, "ionZ"};
    default:
        return {false, 0, ""};
    }
}

/// The attachment of that type; another type's attachment under the same group counts as none.
template <class Attachment>
typename Attachment::Ptr findAttachment(const osg::NodePtr& node) {
    if (node == osg::NullFC)
        return osg::NullFC;
    return Attachment::Ptr::dcast(node->findAttachment(Attachment::getClassType().getGroupId()));
}

/// Takes the first listing of each of `ids`, which are in ascending order, out of a list in one pass.
/// @param removed  a false for each id. Nothing is allocated here.
void removeFirstListings(osg::MFUInt64& list, const std::vector<kaUID>& ids, std::vector<bool>& removed) {
    const auto end = std::remove_if(list.begin(), list.end(), [&](osg::UInt64 listed) {
        const auto found = std::lower_bound(ids.begin(), ids.end(), listed);
        const auto place = static_cast<std::size_t>(found - ids.begin());
        if (found == ids.end() || *found != listed || removed[place])
            return false;
        removed[place] = true;
        return true;
    });
    list.erase(end, list.end());
}

} // namespace

using kaSceneAccess::attachmentOf;
using kaSceneAccess::coreOf;
using kaSceneAccess::isOfGroup;
using kaSceneAccess::recordChange;

// Conversions.

bool kaAnimationUtils::floatToBool(float value) {
    return value >= 0.5F;
}

/// In double precision, where adding a half is exact for every float.
int kaAnimationUtils::floatToInt(float value) {
    const double rounded = std::round(static_cast<double>(value));
    constexpr double LOWEST = std::numeric_limits<int>::min();
    constexpr double HIGHEST = std::numeric_limits<int>::max();
    return rounded >= LOWEST && rounded <= HIGHEST ? static_cast<int>(rounded)
                                                   : std::numeric_limits<int>::min();
}

/// Adding 0 turns -0 into 0: rounding to a whole number and back knows no sign of zero.
float kaAnimationUtils::snap(float value) {
    return std::round(value) + 0.0F;
}

osg::Pnt2f kaAnimationUtils::snap(osg::Pnt2f point, bool snapX, bool snapY) {
    if (snapX)
        point[0] = snap(point[0]);
    if (snapY)
        point[1] = snap(point[1]);
    return point;
}

unsigned int kaAnimationUtils::convertTangentType(unsigned int type) {
    switch (type) {
    case 1:
        return kaControlPoint2D::TANGENT_COLLAPSED;
    case 2:
        return kaControlPoint2D::TANGENT_BROKEN;
    case 3:
        return kaControlPoint2D::TANGENT_SMOOTH;
    case 5:
        return kaControlPoint2D::TANGENT_FORWARD;
    case 6:
        return kaControlPoint2D::TANGENT_USER;
    default:
        return kaControlPoint2D::TANGENT_FLAT;
    }
}

bool kaAnimationUtils::sortBeginBased(kaAnimationObject* a, kaAnimationObject* b) {
    return a && b && a->getBegin() < b->getBegin();
}

bool kaAnimationUtils::sortEndBased(kaAnimationObject* a, kaAnimationObject* b) {
    return a && b && a->getEnd() < b->getEnd();
}

// Fields.

std::string kaAnimationUtils::fullAttributeName(const std::string& attribute) {
    for (const char* legacy : {"translateX", "translateY", "translateZ", "rotateX", "rotateY", "rotateZ"})
        if (attribute == legacy)
            return attribute.substr(0, attribute.size() - 2) + componentLetter(attribute.back()).ending;
    return attribute;
}

void kaAnimationUtils::computeAnimationFieldAttributes(unsigned long long nodeID, const std::string& input,
                                                       unsigned int& fcID, std::string& attribute,
                                                       std::string& name, unsigned int& valuePos) {
    const osg::NodePtr node = kaSceneNodes::find(static_cast<osg::UInt32>(nodeID));
    if (node == osg::NullFC || input.empty())
        return;
    const osg::NodeCorePtr core = coreOf(node);
    if (core != osg::NullFC) {
        const bool ofNode =
            input == "visible" || input == "rotateX" || input == "rotateY" || input == "rotateZ";
        fcID = ofNode ? node.getFieldContainerId() : core.getFieldContainerId();
    }
    const std::string spelled = input; // the caller may have handed the same string as an output
    const ComponentLetter letter = componentLetter(spelled.back());
    valuePos = letter.component;
    attribute = letter.found ? fullAttributeName(spelled) : spelled;
    const bool isRotation = attribute == "rotationX" || attribute == "rotationY" || attribute == "rotationZ";
    name = letter.found && !isRotation ? attribute.substr(0, spelled.size() - 1) : attribute;
}

void kaAnimationUtils::computeCoreTypeID(kaAnimationField* field) {
    if (!field)
        return;
    const osg::NodePtr node = kaSceneNodes::find(static_cast<osg::UInt32>(field->nodeID));
    const osg::NodeCorePtr core = coreOf(node);
    if (core == osg::NullFC)
        return;
    const std::string& attribute = field->attribute;
    if (attribute == "visible") {
        field->fcID = node.getFieldContainerId();
    } else if (core->getType().isDerivedFrom(osg::Transform3D::getClassType())) {
        const bool ofNode = attribute == "rotationX" || attribute == "rotationY" || attribute == "rotationZ";
        field->fcID = ofNode ? node.getFieldContainerId() : core.getFieldContainerId();
    } else if (isOfGroup<osg::MaterialGroup>(core)) {
        const osg::FieldContainerPtr material = kaSceneAccess::materialOf(core);
        field->fcID = material != osg::NullFC ? material.getFieldContainerId() : 0;
    } else if (isOfGroup<osg::Transform>(core) || isOfGroup<osg::SpotLight>(core) ||
               isOfGroup<osg::PointLight>(core) || isOfGroup<osg::DirectionalLight>(core) ||
               isOfGroup<osg::CameraSetting>(core) || isOfGroup<osg::Switch>(core)) {
        field->fcID = core.getFieldContainerId();
    }
}

osg::Color3f kaAnimationUtils::getDefaultCurveColor(kaAnimationField* field) {
    if (!field || field->attribute.empty())
        return {0.0F, 0.0F, 0.0F};
    switch (field->attribute.back()) {
    case 'R':
    case 'X':
        return {0.898F, 0.298F, 0.298F};
    case 'G':
    case 'Y':
        return {0.298F, 0.898F, 0.298F};
    case 'B':
    case 'Z':
        return {0.4F, 0.624F, 0.816F};
    case 'A':
    case 'I':
    case 'W':
        return {0.898F, 0.827F, 0.298F};
    default:
        return {0.953F, 0.557F, 0.271F};
    }
}

bool kaAnimationUtils::setOSGFieldValue(kaAnimationField* field) {
    return field && kaFieldAccess::write(*field);
}

float kaAnimationUtils::getOSGFieldValue(kaAnimationField* field) {
    return field ? kaFieldAccess::read(*field) : 0.0F;
}

// Animation attachments of scene nodes.

osg::AttachmentPtr kaAnimationUtils::getAnimationAttachment(const osg::NodePtr& node) {
    return findAttachment<osg::AnimAttachment>(node);
}

osg::AttachmentPtr kaAnimationUtils::getOldAnimationAttachment(const osg::NodePtr& node) {
    return findAttachment<osg::AnimationAttachment>(node);
}

osg::AttachmentPtr kaAnimationUtils::createAnimationAttachment(osg::NodePtr node, bool createFields) {
    const osg::AttachmentPtr existing = getAnimationAttachment(node);
    if (node == osg::NullFC || existing != osg::NullFC)
        return existing;
    const osg::UInt32 nodeID = node.getFieldContainerId();
    node->addAttachment(osg::AnimAttachment::create());
    kaOpenSGUtils::announceChange(node, osg::AttachmentContainer::AttachmentsFieldMask);
    if (createFields)
        kaAnimationManager::the()->createAnimationFields(kaSceneNodes::find(nodeID));
    return getAnimationAttachment(kaSceneNodes::find(nodeID));
}

std::vector<kaAnimationObject*> kaAnimationUtils::getAnimationObjects(const osg::NodePtr& node) {
    std::vector<kaAnimationObject*> objects;
    const osg::AnimAttachmentPtr attachment = attachmentOf(node);
    if (attachment == osg::NullFC)
        return objects;
    for (const osg::UInt64 id : attachment->getObjectIDs())
        if (kaAnimationObject* object = kaAnimationManager::the()->getObject(id))
            objects.push_back(object);
    return objects;
}

std::vector<kaAnimationField*> kaAnimationUtils::getAnimationFields(const osg::NodePtr& node) {
    std::vector<kaAnimationField*> fields;
    const osg::AnimAttachmentPtr attachment = attachmentOf(node);
    if (attachment == osg::NullFC)
        return fields;
    for (const osg::UInt64 id : attachment->getFieldIDs())
        if (kaAnimationField* field = kaAnimationManager::the()->getField(id))
            fields.push_back(field);
    return fields;
}

bool kaAnimationUtils::addAnimationObject(const osg::NodePtr& node, kaAnimationObject* object) {
    if (!object || node == osg::NullFC)
        return false;
    const kaAliveGuard alive(*object);
    const auto attachment = osg::AnimAttachmentPtr::dcast(createAnimationAttachment(node, true));
    if (!alive || attachment == osg::NullFC)
        return false;
    osg::MFUInt64& listed = attachment->getObjectIDs();
    std::vector<kaUID> curves;
    if (object->getTypeID() == KA_TYPE_UNIT && !listed.empty())
        for (const kaAnimationCurve2D* curve : object->getCurves())
            curves.push_back(curve->getId());
    std::sort(curves.begin(), curves.end());
    std::vector<bool> removed(curves.size(), false);
    listed.push_back(object->getId());
    removeFirstListings(listed, curves, removed);
    recordChange(attachment, osg::AnimAttachment::ObjectIDsFieldMask);
    return true;
}

bool kaAnimationUtils::subAnimationObject(const osg::NodePtr& node, kaAnimationObject* object) {
    if (!object)
        return false;
    const osg::AnimAttachmentPtr attachment = attachmentOf(node);
    if (attachment == osg::NullFC)
        return false;
    osg::MFUInt64& listed = attachment->getObjectIDs();
    const auto found = std::find(listed.begin(), listed.end(), object->getId());
    if (found == listed.end())
        return false;
    listed.erase(found);
    recordChange(attachment, osg::AnimAttachment::ObjectIDsFieldMask);
    return true;
}

bool kaAnimationUtils::removeAnimationAttachment(osg::NodePtr node) {
    const osg::AttachmentPtr attachment = getAnimationAttachment(node);
    if (attachment == osg::NullFC)
        return false;
    node->subAttachment(attachment);
    kaOpenSGUtils::announceChange(node, osg::AttachmentContainer::AttachmentsFieldMask);
    return true;
}

osg::NodePtr kaAnimationUtils::getAnimationNode(const osg::NodePtr& node) {
    const osg::NodeCorePtr core = coreOf(node);
    if (core == osg::NullFC)
        return osg::NullFC;
    const osg::NodePtr parent = node->getParent();
    const bool ofParent = isOfGroup<osg::Geometry>(core) && parent != osg::NullFC &&
                          osg::TransformPtr::dcast(coreOf(parent)) != osg::NullFC;
    return ofParent ? parent : node;
}
