#include "kaAnimationUtils.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAttachments.h"
#include "kaFieldAccess.h"
#include "kaFieldInfo.h"
#include "kaNodeFields.h"
#include "kaRounding.h"
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

using kaSceneAccess::coreOf;
using kaSceneAccess::isOfGroup;

// Conversions.

bool kaAnimationUtils::floatToBool(float value) {
    return kaRounding::toBool(value);
}

int kaAnimationUtils::floatToInt(float value) {
    return kaRounding::toInt(value);
}

float kaAnimationUtils::snap(float value) {
    return kaRounding::snap(value);
}

osg::Pnt2f kaAnimationUtils::snap(osg::Pnt2f point, bool snapX, bool snapY) {
    return kaRounding::snap(point, snapX, snapY);
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
    return kaFieldInfo::fullAttributeName(attribute);
}

void kaAnimationUtils::computeAnimationFieldAttributes(kaUID nodeID, const std::string& input,
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
    const kaFieldInfo::ComponentLetter letter = kaFieldInfo::componentLetter(spelled.back());
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
    return field ? kaFieldInfo::defaultColor(*field) : osg::Color3f(0.0F, 0.0F, 0.0F);
}

bool kaAnimationUtils::setOSGFieldValue(kaAnimationField* field) {
    return field && kaFieldAccess::write(*field);
}

float kaAnimationUtils::getOSGFieldValue(kaAnimationField* field) {
    return field ? kaFieldAccess::read(*field) : 0.0F;
}

// Animation attachments of scene nodes.

osg::AttachmentPtr kaAnimationUtils::getAnimationAttachment(const osg::NodePtr& node) {
    return kaAttachments::of(node);
}

osg::AttachmentPtr kaAnimationUtils::getOldAnimationAttachment(const osg::NodePtr& node) {
    return kaAttachments::olderOf(node);
}

osg::AttachmentPtr kaAnimationUtils::createAnimationAttachment(osg::NodePtr node, bool createFields) {
    return createFields ? kaNodeFields::attachmentWithFields(node) : kaAttachments::make(node);
}

std::vector<kaAnimationObject*> kaAnimationUtils::getAnimationObjects(const osg::NodePtr& node) {
    return kaAttachments::objectsOf(node);
}

std::vector<kaAnimationField*> kaAnimationUtils::getAnimationFields(const osg::NodePtr& node) {
    return kaAttachments::fieldsOf(node);
}

bool kaAnimationUtils::addAnimationObject(const osg::NodePtr& node, kaAnimationObject* object) {
    return kaNodeFields::list(node, object);
}

bool kaAnimationUtils::subAnimationObject(const osg::NodePtr& node, kaAnimationObject* object) {
    return object && kaAttachments::unlist(node, object->getId());
}

bool kaAnimationUtils::removeAnimationAttachment(osg::NodePtr node) {
    return kaAttachments::remove(node);
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
