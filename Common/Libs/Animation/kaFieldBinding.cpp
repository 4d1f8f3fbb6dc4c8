#include "kaFieldBinding.h"

#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"

#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGSFBaseTypes.h>
#include <OpenSG/OSGSFMathTypes.h>
#include <OpenSG/OSGSFSysTypes.h>
#include <OpenSG/OSGSFVecTypes.h>
#include <array>
#include <cmath>
#include <kaNodeUtils.h>
#include <kaOpenSGUtils.h>
#include <kaString.h>
#include <memory>
#include <vector>

using kaSceneAccess::findContainer;

namespace {

constexpr float TWO_PI = 6.2831855F;
constexpr double TWO_PI_DOUBLE = 6.283185307179586;
constexpr float PI = 3.1415927F;
constexpr osg::UInt32 VISIBLE_MASK = 0xFFFFFFFFU;

float toDegrees(float radians) {
    return radians / TWO_PI * 360.0F;
}

float toRadians(float degrees) {
    return degrees * 2.0F * PI / 360.0F;
}

bool isAngleName(const std::string& name) {
    return name == "fieldOfView" || name.find("rotate") != std::string::npos;
}

const osg::FieldDescription* findDescription(const osg::FieldContainerType& type, const std::string& name) {
    for (osg::UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
        const osg::FieldDescription* description = type.getFieldDescription(id);
        if (description && name == description->getCName())
            return description;
    }
    return nullptr;
}

/// A single field whose value is made of floats side by side.
struct ComponentType {
    osg::UInt32 fieldType;
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
        if (type.fieldType == id)
            return &type;
    return nullptr;
}

bool isDouble(const osg::Field& field) {
    static const osg::UInt32 id = osg::SFReal64::getClassType().getId();
    return field.getType().getId() == id;
}

/// The node's Euler angles in degrees; zeros without transform attachment.
osg::Vec3f rotationOf(const osg::NodePtr& node) {
    const osg::TransformAttachmentPtr attachment = kaNodeUtils::getTransformAttachment(node);
    return attachment != osg::NullFC ? attachment->getRotation() : osg::Vec3f();
}

void writeVisible(const osg::NodePtr& node, bool visible) {
    if ((node->getTravMask() == VISIBLE_MASK) == visible)
        return;
    node->setTravMask(visible ? VISIBLE_MASK : 0);
    kaOpenSGUtils::announceChange(node, osg::Node::TravMaskFieldMask);
}

void writeRotation(const osg::NodePtr& node, unsigned int axis, float degrees) {
    osg::Vec3f angles = rotationOf(node);
    if (angles[axis] == degrees)
        return;
    angles[axis] = degrees;
    kaNodeUtils::setTransformNodeRotation(node, angles[0], angles[1], angles[2], -1);
}

/// Whether the type's text form is digits alone, so that anything after them ("e-05") would be lost.
bool isWholeNumber(const osg::Field& field) {
    const std::string type = field.getContentType().getCName();
    return type.compare(0, 3, "Int") == 0 || type.compare(0, 4, "UInt") == 0;
}

/// Replaces one component. @return false when it is out of range or equal already.
template <class Tuple>
bool replaceComponent(Tuple& tuple, unsigned int component, float value) {
    if (component > 2 || tuple[component] == value)
        return false;
    tuple[component] = value;
    return true;
}

} // namespace

// Resolving.

struct kaFieldBinding::RoleName {
    const char* name;
    Role role;
};

/// The role with that name among those from `first` to `last`.
kaFieldBinding::Role kaFieldBinding::roleNamed(const std::string& name, Role first, Role last) {
    static constexpr std::array<RoleName, 13> names{{{"distance", Role::Distance},
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
    for (const RoleName& entry : names)
        if (first <= entry.role && entry.role <= last && name == entry.name)
            return entry.role;
    return Role::None;
}

kaFieldBinding& kaFieldBinding::of(kaAnimationField& field, const osg::FieldContainerPtr& container) {
    if (!field._binding)
        field._binding = std::make_unique<kaFieldBinding>();
    kaFieldBinding& binding = *field._binding;
    if (!binding.standsFor(field))
        binding.resolve(field, container);
    return binding;
}

bool kaFieldBinding::standsFor(const kaAnimationField& field) const {
    return _fcID == static_cast<osg::UInt32>(field.fcID) && _name == field.name &&
           (_target < Target::Camera || _attribute == field.attribute);
}

void kaFieldBinding::resolve(const kaAnimationField& field, const osg::FieldContainerPtr& container) {
    _fcID = 0;
    _name = field.name;
    _camera = osg::CameraSettingPtr::dcast(container);
    _isCamera = _camera != osg::NullFC;
    const osg::FieldDescription* description = findDescription(container->getType(), field.name);
    osg::Field* sceneField = description ? container->getField(description->getFieldId()) : nullptr;
    if (sceneField)
        resolveSceneField(*sceneField, description->getFieldMask());
    else
        resolveAttribute(field);
    _fcID = static_cast<osg::UInt32>(field.fcID);
}

void kaFieldBinding::resolveSceneField(osg::Field& sceneField, osg::BitVector mask) {
    _mask = mask;
    _role = _isCamera ? roleNamed(_name, Role::From, Role::Roll) : Role::None;
    _isAngle = isAngleName(_name);
    if (const ComponentType* type = findComponentType(sceneField)) {
        _target = Target::Floats;
        _componentCount = type->count;
        _floats = type->components(sceneField);
    } else if (isDouble(sceneField)) {
        _target = Target::Double;
        _double = &static_cast<osg::SFReal64&>(sceneField).getValue();
    } else {
        _target = Target::Text;
        _text = &sceneField;
    }
}

void kaFieldBinding::resolveAttribute(const kaAnimationField& field) {
    _attribute = field.attribute;
    _target = _isCamera ? Target::Camera : Target::Node;
    _role = _isCamera ? roleNamed(_attribute, Role::Distance, Role::FocalLength)
                      : roleNamed(_attribute, Role::Visible, Role::RotationZ);
    _nodeID = 0;
}

/// The record's node, null when there is none now.
osg::NodePtr kaFieldBinding::currentNode(const kaAnimationField& field) {
    const auto nodeID = static_cast<osg::UInt32>(field.nodeID);
    if (nodeID != 0 && nodeID == _nodeID && (nodeID == _fcID || findContainer(nodeID) != osg::NullFC))
        return _node;
    _node = kaSceneNodes::find(nodeID);
    _nodeID = _node != osg::NullFC ? nodeID : 0;
    return _node;
}

bool kaFieldBinding::followsCameraPath() const {
    return _target < Target::Camera && _camera->getCameraPath();
}

// Writing. A call out to the host (an announcement, a camera callback) may destroy or change the record, its
// binding and the container; each of these functions ends with its last call out, and what follows one goes
// by copies.

bool kaFieldBinding::write(kaAnimationField& field) {
    const osg::FieldContainerPtr container = findContainer(field.fcID);
    if (container == osg::NullFC)
        return false;
    kaFieldBinding& binding = of(field, container);
    if (binding._isCamera && binding.followsCameraPath()) {
        writeHostCamera(binding._role, field.valuePos, field.value);
        return true;
    }
    switch (binding._target) {
    case Target::Floats:
        binding.writeFloat(field, container);
        return true;
    case Target::Double:
        binding.writeDouble(field, container);
        return true;
    case Target::Text:
        binding.writeText(field, container);
        return true;
    case Target::Camera:
        binding.writeCamera(field.value);
        return true;
    case Target::Node:
        break;
    }
    return binding.writeNode(field);
}

/// Angles are compared in radians with the record's degrees: an angle whose two forms differ is stored, and
/// announced, at every write. Hosts see the announcements, so the order of compare and conversion stands.
void kaFieldBinding::writeFloat(const kaAnimationField& field,
                                const osg::FieldContainerPtr& container) const {
    const unsigned int component = componentAt(field.valuePos);
    if (component >= _componentCount || _floats[component] == field.value)
        return;
    _floats[component] = _isAngle ? toRadians(field.value) : field.value;
    announce(container, _mask, _role);
}

void kaFieldBinding::writeDouble(const kaAnimationField& field,
                                 const osg::FieldContainerPtr& container) const {
    if (*_double == static_cast<double>(field.value))
        return;
    *_double = _isAngle ? toRadians(field.value) : field.value;
    announce(container, _mask, _role);
}

/// A multi field appends what is read from text, so that it would grow at every frame: it is left alone.
void kaFieldBinding::writeText(const kaAnimationField& field, const osg::FieldContainerPtr& container) const {
    if (_text->getCardinality() != osg::FieldType::SINGLE_FIELD)
        return;
    std::string text;
    std::vector<float> values = kaString::getValuesFromString(_text->getValueByStr(text));
    if (field.valuePos >= values.size() || values[field.valuePos] == field.value)
        return;
    const float value = _isAngle ? toRadians(field.value) : field.value;
    values[field.valuePos] = isWholeNumber(*_text) ? std::trunc(value) : value;
    _text->pushValueByStr(kaString::createStringFromValues(values).c_str());
    announce(container, _mask, _role);
}

void kaFieldBinding::writeCamera(float value) const {
    if (_role == Role::None || readCamera() == value)
        return;
    switch (_role) {
    case Role::Distance:
        _camera->setDistance(value);
        break;
    case Role::Height:
        _camera->setHeight(value);
        break;
    case Role::TurnTableAngle:
        _camera->setTurnTableAngle(value);
        break;
    case Role::FStop:
        _camera->setFStop(value);
        break;
    case Role::FocalLength:
        _camera->setFocalLength(value);
        break;
    default:
        break;
    }
}

bool kaFieldBinding::writeNode(const kaAnimationField& field) {
    const osg::NodePtr node = currentNode(field);
    if (node == osg::NullFC)
        return false;
    switch (_role) {
    case Role::Visible:
        writeVisible(node, kaAnimationUtils::floatToBool(field.value));
        break;
    case Role::RotationX:
        writeRotation(node, 0, field.value);
        break;
    case Role::RotationY:
        writeRotation(node, 1, field.value);
        break;
    case Role::RotationZ:
        writeRotation(node, 2, field.value);
        break;
    default:
        break;
    }
    return true;
}

/// While a camera setting follows the host's camera path, its fields drive the host's camera instead of the
/// scene. A changed roll is not handed on here; the call without it still tells the host to refresh its
/// camera.
void kaFieldBinding::writeHostCamera(Role role, unsigned int component, float value) {
    kaAnimationManager& manager = *kaAnimationManager::the();
    osg::Pnt3f from;
    osg::Pnt3f at;
    osg::Vec3f up;
    float roll = 0.0F;
    manager.getFromAtUp(from, at, up);
    manager.getRoll(roll);
    if ((role == Role::From && !replaceComponent(from, component, value)) ||
        (role == Role::At && !replaceComponent(at, component, value)) ||
        (role == Role::Up && !replaceComponent(up, component, value)) ||
        (role == Role::Roll && roll == value))
        return;
    manager.setFromAtUp(from, at, up);
}

/// Announces a store and mirrors a camera setting to the host's camera, if it outlived the announcement.
void kaFieldBinding::announce(const osg::FieldContainerPtr& container, osg::BitVector mask, Role role) {
    const osg::UInt32 id = container.getFieldContainerId();
    kaOpenSGUtils::announceChange(container, mask);
    if (role == Role::None)
        return;
    const osg::CameraSettingPtr camera = osg::CameraSettingPtr::dcast(findContainer(id));
    if (camera == osg::NullFC)
        return;
    if (role == Role::Roll)
        kaAnimationManager::the()->setRoll(camera->getRoll());
    else
        kaAnimationManager::the()->setFromAtUp(camera->getFrom(), camera->getAt(), camera->getUp());
}

// Reading.

float kaFieldBinding::read(kaAnimationField& field) {
    const osg::FieldContainerPtr container = findContainer(field.fcID);
    if (container == osg::NullFC)
        return 0.0F;
    kaFieldBinding& binding = of(field, container);
    switch (binding._target) {
    case Target::Floats:
        return binding.readFloat(field.valuePos);
    case Target::Double:
        return binding.readDouble();
    case Target::Text:
        return binding.readText(field.valuePos);
    case Target::Camera:
        return binding.readCamera();
    case Target::Node:
        break;
    }
    return binding.readNode(field);
}

float kaFieldBinding::readFloat(unsigned int valuePos) const {
    const unsigned int component = componentAt(valuePos);
    if (component >= _componentCount)
        return 0.0F;
    return _isAngle ? toDegrees(_floats[component]) : _floats[component];
}

float kaFieldBinding::readDouble() const {
    return static_cast<float>(_isAngle ? *_double / TWO_PI_DOUBLE * 360.0 : *_double);
}

float kaFieldBinding::readText(unsigned int valuePos) const {
    std::string text;
    const std::vector<float> values = kaString::getValuesFromString(_text->getValueByStr(text));
    if (valuePos >= values.size())
        return 0.0F;
    return _isAngle ? toDegrees(values[valuePos]) : values[valuePos];
}

float kaFieldBinding::readCamera() const {
    switch (_role) {
    case Role::Distance:
        return _camera->getDistance();
    case Role::Height:
        return _camera->getHeight();
    case Role::TurnTableAngle:
        return _camera->getTurnTableAngle();
    case Role::FStop:
        return _camera->getFStop();
    case Role::FocalLength:
        return _camera->getFocalLength();
    default:
        return 0.0F;
    }
}

float kaFieldBinding::readNode(const kaAnimationField& field) {
    const osg::NodePtr node = currentNode(field);
    if (node == osg::NullFC)
        return 0.0F;
    switch (_role) {
    case Role::Visible:
        return node->getTravMask() == VISIBLE_MASK ? 1.0F : 0.0F;
    case Role::RotationX:
        return rotationOf(node)[0];
    case Role::RotationY:
        return rotationOf(node)[1];
    case Role::RotationZ:
        return rotationOf(node)[2];
    default:
        return 0.0F;
    }
}
