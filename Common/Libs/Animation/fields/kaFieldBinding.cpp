#include "kaFieldBinding.h"

#include "kaSceneAccess.h"
#include "kaSceneNodes.h"

#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGSFBaseTypes.h>
#include <OpenSG/OSGSFMathTypes.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>
#include <array>
#include <kaNodeUtils.h>
#include <memory>

namespace {

using Role = kaFieldBinding::Role;

const osg::FieldDescription* findDescription(const osg::FieldContainerType& type, const std::string& name) {
    for (osg::UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
        const osg::FieldDescription* description = type.getFieldDescription(id);
        if (description && name == description->getCName())
            return description;
    }
    return nullptr;
}

constexpr float PI = 3.1415927F;

bool isAngleName(std::string_view name) {
    return name == "fieldOfView" || name.find("rotate") != std::string_view::npos;
}

/// A type of single fields whose value is made of floats side by side.
struct ComponentType {
    osg::UInt32 id;
    unsigned int count;
    osg::Real32* (*components)(osg::Field& field);
};

template <class SingleField>
osg::Real32* componentsOf(osg::Field& field) {
    return &static_cast<SingleField&>(field).getValue()[0];
}

template <>
osg::Real32* componentsOf<osg::SFReal32>(osg::Field& field) {
    return &static_cast<osg::SFReal32&>(field).getValue();
}

template <class SingleField>
ComponentType componentType(unsigned int count) {
    return {SingleField::getClassType().getId(), count, &componentsOf<SingleField>};
}

const ComponentType* findComponentType(const osg::Field& field) {
    static const std::array<ComponentType, 9> types{
        componentType<osg::SFVec3f>(3),   componentType<osg::SFVec2f>(2),   componentType<osg::SFReal32>(1),
        componentType<osg::SFColor4f>(4), componentType<osg::SFColor3f>(3), componentType<osg::SFPnt4f>(4),
        componentType<osg::SFPnt3f>(3),   componentType<osg::SFPnt2f>(2),   componentType<osg::SFVec4f>(4)};
    const osg::UInt32 id = field.getType().getId();
    for (const ComponentType& type : types)
        if (type.id == id)
            return &type;
    return nullptr;
}

bool isDouble(const osg::Field& field) {
    static const osg::UInt32 id = osg::SFReal64::getClassType().getId();
    return field.getType().getId() == id;
}

struct RoleName {
    std::string_view name;
    Role role;
};

constexpr std::array<RoleName, 13> ROLE_NAMES{{{"distance", Role::Distance},
                                               {"height", Role::Height},
                                               {"turnTableAngle", Role::TurnTableAngle},
                                               {"fStop", Role::FStop},
                                               {"focalLength", Role::FocalLength},
                                               {"visible", Role::Visible},
                                               {"rotationX", Role::RotationX},
                                               {"rotationY", Role::RotationY},
                                               {"rotationZ", Role::RotationZ},
                                               {"from", Role::From},
                                               {"at", Role::At},
                                               {"up", Role::Up},
                                               {"roll", Role::Roll}}};

/// The role with that name among those from `first` to `last`.
Role roleNamed(std::string_view name, Role first, Role last) {
    for (const RoleName& entry : ROLE_NAMES)
        if (first <= entry.role && entry.role <= last && name == entry.name)
            return entry.role;
    return Role::None;
}

} // namespace

void kaAnimationField::BindingDeleter::operator()(kaFieldBinding* binding) const {
    delete binding;
}

float kaFieldBinding::storedForm(bool isAngle, float value) {
    return isAngle ? value * 2.0F * PI / 360.0F : value;
}

kaFieldBinding& kaFieldBinding::updated(kaAnimationField& field, const osg::FieldContainerPtr& container) {
    if (!field._binding)
        field._binding.reset(new kaFieldBinding);
    field._binding->resolve(field, container);
    return *field._binding;
}

void kaFieldBinding::resolve(const kaAnimationField& field, const osg::FieldContainerPtr& container) {
    fcID = 0;
    camera = osg::CameraSettingPtr::dcast(container);
    isCamera = camera != osg::NullFC;
    description = findDescription(container->getType(), field.name);
    osg::Field* sceneField = description ? container->getField(description->getFieldId()) : nullptr;
    if (sceneField) {
        name = description->getCName();
        mask = description->getFieldMask();
        resolveSceneField(*sceneField);
    } else {
        resolveAttribute(field);
    }
    fcID = static_cast<osg::UInt32>(field.fcID);
}

void kaFieldBinding::resolveSceneField(osg::Field& sceneField) {
    attribute = std::string_view();
    role = isCamera ? roleNamed(name, Role::From, Role::Roll) : Role::None;
    isAngle = isAngleName(name);
    if (const ComponentType* type = findComponentType(sceneField)) {
        target = Target::Floats;
        componentCount = type->count;
        floats = type->components(sceneField);
    } else if (isDouble(sceneField)) {
        target = Target::Double;
        number = &static_cast<osg::SFReal64&>(sceneField).getValue();
    } else {
        target = Target::Text;
        text = &sceneField;
    }
}

void kaFieldBinding::resolveAttribute(const kaAnimationField& field) {
    name = lasting(field.name, 0);
    attribute = lasting(field.attribute, 1);
    target = isCamera ? Target::Camera : Target::Node;
    role = isCamera ? roleNamed(attribute, Role::Distance, Role::FocalLength)
                    : roleNamed(attribute, Role::Visible, Role::RotationZ);
    nodeID = 0;
    attachmentID = 0;
}

/// The same text where it lasts as long as the binding. Names of attributes last for ever and are shared by
/// all bindings, so that checking them touches little memory.
std::string_view kaFieldBinding::lasting(const std::string& source, std::size_t place) {
    for (const RoleName& entry : ROLE_NAMES)
        if (source == entry.name)
            return entry.name;
    ownNames[place] = source;
    return ownNames[place];
}

bool kaFieldBinding::hasNode(const kaAnimationField& field) {
    const auto wanted = static_cast<osg::UInt32>(field.nodeID);
    if (wanted != 0 && wanted == nodeID && (wanted == fcID || kaSceneAccess::isThere(wanted)))
        return true;
    node = kaSceneNodes::find(wanted);
    nodeID = node != osg::NullFC ? wanted : 0;
    attachmentID = 0;
    return nodeID != 0;
}

/// What hangs on the node is looked up each time; that it is a transform attachment, which takes longer to
/// tell, is remembered by its id.
osg::Vec3f kaFieldBinding::rotation() {
    static const osg::UInt32 key = osg::UInt32(osg::TransformAttachment::getClassType().getGroupId()) << 16;
    const osg::AttachmentMap& attachments = node->getSFAttachments()->getValue();
    const auto found = attachments.find(key);
    if (found == attachments.end())
        return osg::Vec3f(0.0F, 0.0F, 0.0F);
    const osg::UInt32 foundID = found->second.getFieldContainerId();
    if (foundID != attachmentID) {
        attachment = kaNodeUtils::getTransformAttachment(node);
        attachmentID = attachment != osg::NullFC ? foundID : 0;
    }
    return attachmentID != 0 ? attachment->getRotation() : osg::Vec3f(0.0F, 0.0F, 0.0F);
}
