#include "kaFieldAccess.h"

#include "kaFieldBinding.h"
#include "kaHostCamera.h"
#include "kaRounding.h"
#include "kaSceneAccess.h"

#include <cmath>
#include <kaNodeUtils.h>
#include <kaOpenSGUtils.h>
#include <kaString.h>
#include <string>
#include <string_view>
#include <vector>

// A call out to the host (an announcement, a camera callback) may destroy or change the record, its binding
// and the container: nothing of them is touched after the first one, what follows goes by copies.

using kaSceneAccess::findContainer;

namespace {

using Role = kaFieldBinding::Role;
using Target = kaFieldBinding::Target;

constexpr float TWO_PI = 6.2831855F;
constexpr double TWO_PI_DOUBLE = 6.283185307179586;
constexpr osg::UInt32 VISIBLE_MASK = 0xFFFFFFFFU;

float toDegrees(float radians) {
    return radians / TWO_PI * 360.0F;
}

unsigned int axisOf(Role rotation) {
    return static_cast<unsigned int>(rotation) - static_cast<unsigned int>(Role::RotationX);
}

struct CameraValue {
    osg::Real32 (*get)(const osg::CameraSetting& camera);
    void (*set)(osg::CameraSetting& camera, osg::Real32 value);
};

/// The accessors of a camera value; null for other roles.
const CameraValue* cameraValue(Role role) {
    using Camera = osg::CameraSetting;
    static constexpr CameraValue values[] = {
        {[](const Camera& camera) { return camera.getDistance(); },
         [](Camera& camera, osg::Real32 value) { camera.setDistance(value); }},
        {[](const Camera& camera) { return camera.getHeight(); },
         [](Camera& camera, osg::Real32 value) { camera.setHeight(value); }},
        {[](const Camera& camera) { return camera.getTurnTableAngle(); },
         [](Camera& camera, osg::Real32 value) { camera.setTurnTableAngle(value); }},
        {[](const Camera& camera) { return camera.getFStop(); },
         [](Camera& camera, osg::Real32 value) { camera.setFStop(value); }},
        {[](const Camera& camera) { return camera.getFocalLength(); },
         [](Camera& camera, osg::Real32 value) { camera.setFocalLength(value); }}};
    const auto place = static_cast<std::size_t>(role) - static_cast<std::size_t>(Role::Distance);
    return place < std::size(values) ? &values[place] : nullptr;
}

/// Announces a store and mirrors a camera setting to the host's camera, if it outlived the announcement.
void announce(const osg::FieldContainerPtr& container, osg::BitVector mask, Role role) {
    const osg::UInt32 id = container.getFieldContainerId();
    kaOpenSGUtils::announceChange(container, mask);
    if (role == Role::None)
        return;
    const osg::CameraSettingPtr camera = osg::CameraSettingPtr::dcast(findContainer(id));
    if (camera == osg::NullFC)
        return;
    if (role == Role::Roll)
        kaHostCamera::setRoll(camera->getRoll());
    else
        kaHostCamera::setFromAtUp(camera->getFrom(), camera->getAt(), camera->getUp());
}

bool differs(const kaFieldBinding& binding, const kaAnimationField& field) {
    return kaFieldBinding::differs(binding.floats, binding.componentCount, field);
}

/// The one that the record addresses; there is such a one.
float& componentOf(const kaFieldBinding& binding, const kaAnimationField& field) {
    return binding.floats[kaFieldBinding::componentAt(field.valuePos, binding.componentCount)];
}

/// Apart from `write`, which stays small for the writes that change nothing.
[[gnu::noinline]] void storeFloat(const kaFieldBinding& binding, const kaAnimationField& field,
                                  const osg::FieldContainerPtr& container) {
    componentOf(binding, field) = kaFieldBinding::storedForm(binding.isAngle, field.value);
    announce(container, binding.mask, binding.role);
}

void writeDouble(const kaFieldBinding& binding, float value, const osg::FieldContainerPtr& container) {
    if (*binding.number == static_cast<double>(value))
        return;
    *binding.number = kaFieldBinding::storedForm(binding.isAngle, value);
    announce(container, binding.mask, binding.role);
}

/// Whether the type's text form is digits alone, so that anything after them ("e-05") would be lost.
bool isWholeNumber(const osg::Field& field) {
    const std::string type = field.getContentType().getCName();
    return type.compare(0, 3, "Int") == 0 || type.compare(0, 4, "UInt") == 0;
}

/// Whether the type can be read from its text form: handles are written as addresses, attachments as their
/// number, and reading either complains.
bool isReadFromText(const osg::Field& field) {
    constexpr std::string_view Handle = "Ptr";
    const std::string_view type = field.getContentType().getCName();
    const bool isHandle = type.size() >= Handle.size() && type.substr(type.size() - Handle.size()) == Handle;
    return !isHandle && type != "AttachmentMap";
}

std::vector<float> numbersOf(const osg::Field& field) {
    std::string text;
    return kaString::getValuesFromString(field.getValueByStr(text));
}

/// A multi field appends what is read from text, so that it would grow at every frame: it is left alone.
void writeText(const kaFieldBinding& binding, const kaAnimationField& field,
               const osg::FieldContainerPtr& container) {
    osg::Field& sceneField = *binding.text;
    if (sceneField.getCardinality() != osg::FieldType::SINGLE_FIELD || !isReadFromText(sceneField))
        return;
    std::vector<float> numbers = numbersOf(sceneField);
    if (field.valuePos >= numbers.size() || numbers[field.valuePos] == field.value)
        return;
    const float value = kaFieldBinding::storedForm(binding.isAngle, field.value);
    numbers[field.valuePos] = isWholeNumber(sceneField) ? std::trunc(value) : value;
    sceneField.pushValueByStr(kaString::createStringFromValues(numbers).c_str());
    announce(container, binding.mask, binding.role);
}

void writeCamera(const kaFieldBinding& binding, float value) {
    const CameraValue* accessors = cameraValue(binding.role);
    if (accessors && accessors->get(*binding.camera) != value)
        accessors->set(*binding.camera, value);
}

void writeVisible(const osg::NodePtr& node, bool visible) {
    if ((node->getTravMask() == VISIBLE_MASK) == visible)
        return;
    node->setTravMask(visible ? VISIBLE_MASK : 0);
    kaOpenSGUtils::announceChange(node, osg::Node::TravMaskFieldMask);
}

bool writeNode(kaFieldBinding& binding, const kaAnimationField& field) {
    if (!binding.hasNode(field))
        return false;
    const osg::NodePtr node = binding.node;
    if (binding.role == Role::Visible) {
        writeVisible(node, kaRounding::toBool(field.value));
    } else if (binding.role != Role::None) {
        osg::Vec3f angles = binding.rotation();
        osg::Real32& angle = angles[axisOf(binding.role)];
        if (angle != field.value) {
            angle = field.value;
            kaNodeUtils::setTransformNodeRotation(node, angles[0], angles[1], angles[2], -1);
        }
    }
    return true;
}

/// Replaces one component. @return false when it is out of range or equal already.
template <class Tuple>
bool replaceComponent(Tuple& tuple, unsigned int component, float value) {
    if (component > 2 || tuple[component] == value)
        return false;
    tuple[component] = value;
    return true;
}

/// While a camera setting follows the host's camera path, its fields drive the host's camera instead of the
/// scene. A changed roll is not handed on here; the call without it still tells the host to refresh its
/// camera.
void writeHostCamera(Role role, unsigned int component, float value) {
    osg::Pnt3f from;
    osg::Pnt3f at;
    osg::Vec3f up;
    kaHostCamera::getFromAtUp(from, at, up);
    const float roll = kaHostCamera::getRoll();
    if ((role == Role::From && !replaceComponent(from, component, value)) ||
        (role == Role::At && !replaceComponent(at, component, value)) ||
        (role == Role::Up && !replaceComponent(up, component, value)) ||
        (role == Role::Roll && roll == value))
        return;
    kaHostCamera::setFromAtUp(from, at, up);
}

float readNode(kaFieldBinding& binding, const kaAnimationField& field) {
    if (binding.role == Role::None || !binding.hasNode(field))
        return 0.0F;
    if (binding.role == Role::Visible)
        return binding.node->getTravMask() == VISIBLE_MASK ? 1.0F : 0.0F;
    return binding.rotation()[axisOf(binding.role)];
}

/// The stored number, before angles are turned into degrees; nothing beyond the components.
float readSceneField(const kaFieldBinding& binding, unsigned int valuePos) {
    if (binding.target == Target::Floats) {
        const unsigned int component = kaFieldBinding::componentAt(valuePos, binding.componentCount);
        return component < binding.componentCount ? binding.floats[component] : 0.0F;
    }
    const std::vector<float> numbers = numbersOf(*binding.text);
    return valuePos < numbers.size() ? numbers[valuePos] : 0.0F;
}

/// All writes but those of float components of plain containers.
[[gnu::noinline]] bool writeOther(kaFieldBinding& binding, const kaAnimationField& field,
                                  const osg::FieldContainerPtr& container) {
    if (binding.target == Target::Node)
        return writeNode(binding, field);
    if (binding.target == Target::Camera)
        writeCamera(binding, field.value);
    else if (binding.isCamera && binding.camera->getCameraPath())
        writeHostCamera(binding.role, field.valuePos, field.value);
    else if (binding.target == Target::Double)
        writeDouble(binding, field.value, container);
    else if (binding.target == Target::Text)
        writeText(binding, field, container);
    else if (differs(binding, field))
        storeFloat(binding, field, container);
    return true;
}

} // namespace

bool kaFieldAccess::write(kaAnimationField& field) {
    const osg::FieldContainerPtr container = findContainer(field.fcID);
    if (container == osg::NullFC)
        return false;
    kaFieldBinding& binding = kaFieldBinding::of(field, container);
    if (binding.target != Target::Floats || binding.isCamera)
        return writeOther(binding, field, container);
    if (differs(binding, field))
        storeFloat(binding, field, container);
    return true;
}

float kaFieldAccess::read(kaAnimationField& field) {
    const osg::FieldContainerPtr container = findContainer(field.fcID);
    if (container == osg::NullFC)
        return 0.0F;
    kaFieldBinding& binding = kaFieldBinding::of(field, container);
    if (binding.target == Target::Node)
        return readNode(binding, field);
    if (binding.target == Target::Camera) {
        const CameraValue* accessors = cameraValue(binding.role);
        return accessors ? accessors->get(*binding.camera) : 0.0F;
    }
    if (binding.target == Target::Double)
        return static_cast<float>(binding.isAngle ? *binding.number / TWO_PI_DOUBLE * 360.0
                                                  : *binding.number);
    const float value = readSceneField(binding, field.valuePos);
    return binding.isAngle ? toDegrees(value) : value;
}
