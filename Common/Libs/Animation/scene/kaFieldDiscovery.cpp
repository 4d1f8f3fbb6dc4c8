#include "kaFieldDiscovery.h"

#include "kaAnimationField.h"
#include "kaAttributeNames.h"
#include "kaFieldStore.h"
#include "kaSceneAccess.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGFieldContainerType.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGTransform.h>
#include <kaNodeUtils.h>
#include <kaString.h>

using kaSceneAccess::isKindOf;

namespace {

/// The component suffixes of a value, a letter each; empty when its components cannot be animated.
std::string suffixesOf(const std::string& type, const std::string& name, std::size_t count) {
    if (type == "Color3f")
        return "RGB";
    if (type == "Color4f")
        return "RGBA";
    if (type == "Vec2f" || type == "Pnt2f")
        return count == 2 ? "XY" : "";
    if (count < 3)
        return "";
    if (type == "Vec3f" || type == "Pnt3f")
        return "XYZ";
    if (type == "Vec4f")
        return name.find("Color") != std::string::npos ? "XYZI" : "XYZW";
    return "";
}

} // namespace

kaFieldDiscovery::kaFieldDiscovery(const osg::NodePtr& node)
    : _node(node), _nodeID(node.getFieldContainerId()) {}

kaFieldDiscovery::~kaFieldDiscovery() {
    for (kaAnimationField* field : _made)
        kaFieldStore::destroy(field);
}

std::vector<kaAnimationField*> kaFieldDiscovery::run() {
    const osg::NodeCorePtr core = _node->getCore();
    const bool isMaterial = isKindOf<osg::MaterialGroup>(core);
    addContainerFields(isMaterial ? kaSceneAccess::materialOf(core) : osg::FieldContainerPtr(core));
    if (isKindOf<osg::CameraSetting>(core))
        addCameraFields();
    else if (isKindOf<osg::Transform>(core))
        addRotationFields();
    addVisibleField();
    return {_made.rbegin(), _made.rend()};
}

/// A material group without material has nothing to scan. Multi fields are no scalars to animate.
void kaFieldDiscovery::addContainerFields(const osg::FieldContainerPtr& container) {
    if (container == osg::NullFC)
        return;
    const osg::FieldContainerType& type = container->getType();
    for (osg::UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
        const osg::FieldDescription* description = type.getFieldDescription(id);
        if (!description || !kaAttributeNames::the().contains(description->getCName()))
            continue;
        const osg::Field* field = container->getField(id);
        if (!field || field->getCardinality() != osg::FieldType::SINGLE_FIELD)
            continue;
        std::string text;
        addComponents(container.getFieldContainerId(), description->getCName(),
                      field->getContentType().getCName(),
                      kaString::getValuesFromString(field->getValueByStr(text)));
    }
}

void kaFieldDiscovery::addComponents(osg::UInt32 containerID, const std::string& name,
                                     const std::string& type, const std::vector<float>& values) {
    if (type == "Real32" || type == "Real64") {
        add(containerID, name, "", values.empty() ? 0.0F : values.front(), 0);
        return;
    }
    const std::string suffixes = suffixesOf(type, name, values.size());
    for (unsigned int i = 0; i < suffixes.size() && i < values.size(); ++i)
        add(containerID, name, std::string(1, suffixes[i]), values[i], i);
}

void kaFieldDiscovery::addCameraFields() {
    const osg::CameraSettingPtr camera = osg::CameraSettingPtr::dcast(_node->getCore());
    if (camera == osg::NullFC)
        return;
    const osg::UInt32 id = camera.getFieldContainerId();
    add(id, "distance", "", camera->getDistance(), 0);
    add(id, "height", "", camera->getHeight(), 0);
    add(id, "turnTableAngle", "", camera->getTurnTableAngle(), 0);
    add(id, "fStop", "", camera->getFStop(), 0);
    add(id, "focalLength", "", camera->getFocalLength(), 0);
}

void kaFieldDiscovery::addRotationFields() {
    const osg::TransformAttachmentPtr attachment = kaNodeUtils::getTransformAttachment(_node);
    const osg::Vec3f angles =
        attachment != osg::NullFC ? attachment->getRotation() : osg::Vec3f(0.0F, 0.0F, 0.0F);
    add(_nodeID, "rotationX", "", angles[0], 0);
    add(_nodeID, "rotationY", "", angles[1], 0);
    add(_nodeID, "rotationZ", "", angles[2], 0);
}

void kaFieldDiscovery::addVisibleField() {
    add(_nodeID, "visible", "", _node->getTravMask() == 0xFFFFFFFFU ? 1.0F : 0.0F, 0);
}

void kaFieldDiscovery::add(osg::UInt32 containerID, const std::string& name, const std::string& suffix,
                           float value, unsigned int component) {
    _made.push_back(nullptr);
    kaAnimationField* field = kaFieldStore::make(0);
    _made.back() = field;
    field->fcID = containerID;
    field->nodeID = _nodeID;
    field->name = name;
    field->attribute = name + suffix;
    field->value = value;
    field->valuePos = component;
    field->dirty = false;
}
